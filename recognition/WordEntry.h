#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What the dictionary gives the aligner: the words of a sentence, each with its alternative
// pronunciations. Entries are views; a WordSequence keeps alive what they view.
namespace veral3 {

// One way to say a word. A slot that failed to parse is empty: no phonemes, no syllables; every
// user passes over it.
struct Pronunciation {
  std::string_view phonemes;                      // expanded, one symbol a phoneme
  std::span<const std::int32_t> syllable_marks;   // tone (Chinese) or stress (English) a syllable
  std::span<const std::int32_t> syllable_starts;  // index in `phonemes` of each syllable's first

  int NumSyllables() const { return static_cast<int>(syllable_starts.size()); }
  bool IsUsable() const { return !phonemes.empty(); }
};

struct WordEntry {
  std::wstring_view word;  // as spelt in the file (upper case), or as written inline
  std::span<const Pronunciation> pronunciations;  // in file order, the first is the canonical one
};

// A word entry that owns its texts: inline pronunciations, and sentences made by hand.
class OwnedWordEntry {
 public:
  struct Variant {
    std::string phonemes;
    std::vector<std::int32_t> syllable_marks;
    std::vector<std::int32_t> syllable_starts;
  };

  OwnedWordEntry(std::wstring word, std::vector<Variant> variants);
  OwnedWordEntry(const OwnedWordEntry&) = delete;
  OwnedWordEntry& operator=(const OwnedWordEntry&) = delete;

  const WordEntry& Entry() const { return m_entry; }

 private:
  std::wstring m_word;
  std::vector<Variant> m_variants;
  std::vector<Pronunciation> m_pronunciations;
  WordEntry m_entry;
};

// The words of one sentence, at most kMaxWords. Copies share the entries.
class WordSequence {
 public:
  static constexpr int kMaxWords = 256;

  int Count() const { return static_cast<int>(m_entries.size()); }
  const WordEntry& operator[](int word) const { return *m_entries[static_cast<std::size_t>(word)]; }

  // Append one word; false (and nothing appended) when there are kMaxWords already. A shared entry
  // must live as long as an owner given to KeepAlive.
  bool AppendShared(const WordEntry& entry);
  bool AppendOwned(std::shared_ptr<const OwnedWordEntry> entry);

  // Holds what shared entries point into (the dictionary) for as long as this sequence lives.
  void KeepAlive(std::shared_ptr<const void> owner) { m_owners.push_back(std::move(owner)); }

 private:
  std::vector<const WordEntry*> m_entries;
  std::vector<std::shared_ptr<const void>> m_owners;
};

}  // namespace veral3
