#include "recognition/WordEntry.h"

#include <utility>

namespace veral3 {

OwnedWordEntry::OwnedWordEntry(std::wstring word, std::vector<Variant> variants)
    : m_word(std::move(word)), m_variants(std::move(variants)) {
  m_pronunciations.reserve(m_variants.size());
  for (const Variant& variant : m_variants) {
    m_pronunciations.push_back({variant.phonemes, variant.syllable_marks, variant.syllable_starts});
  }
  m_entry = {m_word, m_pronunciations};
}

bool WordSequence::AppendShared(const WordEntry& entry) {
  if (Count() >= kMaxWords) return false;
  m_entries.push_back(&entry);
  return true;
}

bool WordSequence::AppendOwned(std::shared_ptr<const OwnedWordEntry> entry) {
  if (Count() >= kMaxWords) return false;
  m_entries.push_back(&entry->Entry());
  m_owners.push_back(std::move(entry));
  return true;
}

}  // namespace veral3
