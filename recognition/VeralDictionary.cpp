#include "recognition/VeralDictionary.h"

#include <algorithm>
#include <string>
#include <utility>

#include "common/MessageWriter.h"
#include "common/Unicode.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/EnglishNumbers.h"
#include "recognition/LineTokens.h"
#include "recognition/SentenceTokens.h"

using veral3::Message;
using veral3::MessageStream;
using veral3::OwnedWordEntry;
using veral3::WordSequence;

namespace {

constexpr int kMissingWord = -1;
constexpr int kIllegalSegment = -1;
constexpr int kTooManyWords = -400;

std::wstring UpperCased(std::wstring_view text) {
  std::wstring upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), veral3::UpperCase);
  return upper;
}

bool IsUsable(const veral3::WordEntry& entry) {
  return std::any_of(
      entry.pronunciations.begin(), entry.pronunciations.end(),
      [](const veral3::Pronunciation& pronunciation) { return pronunciation.IsUsable(); });
}

int Append(std::shared_ptr<const OwnedWordEntry> entry, WordSequence& words) {
  if (words.AppendOwned(std::move(entry))) return 0;
  Message(MessageStream::kError) << "ERROR in VeralDictionary::LookupSentence(), more than "
                                 << WordSequence::kMaxWords << " words in a sentence\n";
  return kTooManyWords;
}

}  // namespace

VeralDictionary::VeralDictionary(const char* path) : m_File(veral3::ReadDictionaryFile(path)) {}

std::shared_ptr<const OwnedWordEntry> VeralDictionary::EntryAt(int index) const {
  if (index < 0 || index >= GetWordCount()) return nullptr;
  const auto place = static_cast<std::size_t>(index);
  return std::make_shared<const OwnedWordEntry>(veral3::WideFromUtf8(m_File.Word(place)),
                                                veral3::ParseVariants(m_File, place));
}

int VeralDictionary::FindWord(std::wstring_view word) const {
  // The bytes of well-formed UTF-8 are in the order of its code points.
  const std::string key = veral3::Utf8FromWide(UpperCased(word));
  int low = 0;
  int high = GetWordCount() - 1;
  while (low <= high) {
    const int mid = low + (high - low) / 2;
    const int order = key.compare(m_File.Word(static_cast<std::size_t>(mid)));
    if (order == 0) return mid;
    if (order < 0) {
      high = mid - 1;
    } else {
      low = mid + 1;
    }
  }
  return -1;
}

std::string_view VeralDictionary::NoteAt(int index) const {
  if (index < 0 || index >= GetWordCount()) return {};
  return veral3::NoteOf(m_File, static_cast<std::size_t>(index));
}

std::shared_ptr<const OwnedWordEntry> VeralDictionary::LookupWord(std::wstring_view word) const {
  if (const int index = FindWord(word); index >= 0) {
    auto entry = EntryAt(index);
    if (entry != nullptr && IsUsable(entry->Entry())) return entry;
  }
  Message(MessageStream::kWideError) << "*** Error: Word <" << UpperCased(word)
                                     << "> not found in VeralDictionary::LookupWord()\n";
  return nullptr;
}

int VeralDictionary::LookupSentence(std::wstring_view sentence, WordSequence& words) const {
  if (sentence.starts_with(L"| ")) return -1;
  for (std::size_t position = 0;;) {
    const auto token = veral3::NextSentenceToken(m_File.phoneme_set, sentence, position);
    if (token.text.empty()) return 0;
    position = token.next;
    int result = 0;
    if (token.is_number) {
      result = AppendNumber(token.text, words);
    } else if (token.text.starts_with(L"|1")) {
      auto entry = AllocateSpecifiedWord(token.text);
      if (entry == nullptr) return -100;
      result = Append(std::move(entry), words);
    } else if (token.text.starts_with(L"|3")) {
      result = LookupDigits(token.text, words);
      if (result < 0 && result != kTooManyWords) return -300;
    } else if (token.text.starts_with(L'|')) {
      return -200;
    } else {
      result = AppendWord(token.text, words);
    }
    if (result == kTooManyWords) return kTooManyWords;
  }
}

int VeralDictionary::ReadAPronunEntry(std::string_view line, std::size_t start,
                                      std::span<OwnedWordEntry::Variant> entry, int slot) const {
  if (slot < 0 || static_cast<std::size_t>(slot) >= entry.size()) return -1;
  return veral3::ReadAPronunEntry(m_File.phoneme_set, line.substr(std::min(start, line.size())),
                                  entry[static_cast<std::size_t>(slot)]);
}

std::shared_ptr<const OwnedWordEntry> VeralDictionary::AllocateSpecifiedWord(
    std::wstring_view token) const {
  // "|1 K ? ": K is anything but 0.
  const bool is_legal = token.size() >= 7 && token.starts_with(L"|1 ") && token[3] != L'0' &&
                        token.substr(4).starts_with(L" ? ");
  if (!is_legal) {
    Message(MessageStream::kOutput) << "Error in VeralDictionary::AllocateSpecifiedWord(), "
                                       "illegal specified pronunciation!\n";
    return nullptr;
  }
  constexpr std::size_t kPronunciation = 5;
  const std::size_t bar = token.find(L'|', kPronunciation);
  if (bar == std::wstring_view::npos) return nullptr;
  const std::wstring_view pronunciation =
      token.substr(kPronunciation, std::min(bar - kPronunciation, veral3::kMaxLineCharacters));
  std::vector<OwnedWordEntry::Variant> variants(1);
  if (ReadAPronunEntry(veral3::Utf8FromWide(pronunciation), 0, variants, 0) < 0) return nullptr;
  return std::make_shared<const OwnedWordEntry>(std::wstring(token.substr(bar + 1)),
                                                std::move(variants));
}

int VeralDictionary::LookupDigits(std::wstring_view token, WordSequence& words) const {
  if (!token.starts_with(L"|3 ")) return kIllegalSegment;
  const auto is_blank = [this](wchar_t c) {
    return veral3::IsSentenceSpace(m_File.phoneme_set, c);
  };
  for (auto begin = token.begin() + 3; begin != token.end();) {
    begin = std::find_if_not(begin, token.end(), is_blank);
    const auto end = std::find_if(begin, token.end(), is_blank);
    const std::wstring_view run(begin, end);
    begin = end;
    if (run.find(L'|') != std::wstring_view::npos) continue;
    for (std::size_t position = 0; position < run.size();) {
      const auto part = veral3::NextSentenceToken(m_File.phoneme_set, run, position);
      if (part.text.empty()) break;
      position = part.next;
      const int result =
          part.is_number ? AppendNumber(part.text, words) : AppendWord(part.text, words);
      if (result < 0) return result;
    }
  }
  return 0;
}

int VeralDictionary::GetNextIndexOfVaildChar(std::wstring_view text, int start) const {
  return static_cast<int>(veral3::GetNextIndexOfVaildChar(
      m_File.phoneme_set, text, static_cast<std::size_t>(std::max(start, 0))));
}

// A word as the tokens have it, one last apostrophe off. 0, kMissingWord or kTooManyWords.
int VeralDictionary::AppendWord(std::wstring_view word, WordSequence& words) const {
  if (word.ends_with(L'\'')) word.remove_suffix(1);
  auto entry = LookupWord(word);
  return entry == nullptr ? kMissingWord : Append(std::move(entry), words);
}

// 0 or kTooManyWords. Words of the number that the dictionary lacks are passed over.
int VeralDictionary::AppendNumber(std::wstring_view number, WordSequence& words) const {
  switch (m_File.phoneme_set) {
    case CPhonemeSet::kEnglish:
      for (const std::wstring_view word : veral3::EnglishNumberWords(number)) {
        if (AppendWord(word, words) == kTooManyWords) return kTooManyWords;
      }
      return 0;
    case CPhonemeSet::kChinese:
    case CPhonemeSet::kJapanese:
      return 0;
    default:
      Message(MessageStream::kError)
          << "ERROR: Unknown language in VeralDictionary::LookupDigits()\n";
      return 0;
  }
}
