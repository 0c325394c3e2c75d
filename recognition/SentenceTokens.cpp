#include "recognition/SentenceTokens.h"

#include <algorithm>

#include "common/MessageWriter.h"
#include "common/Unicode.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/Languages.h"

namespace veral3 {
namespace {

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

bool IsKnown(int phoneme_set) { return FindLanguageOfPhonemeSet(phoneme_set) != nullptr; }

template <typename Predicate>
std::size_t SkipWhile(std::wstring_view text, std::size_t position, Predicate predicate) {
  while (position < text.size() && predicate(text[position])) ++position;
  return position;
}

// From the opening bar at `begin`. Without a closing bar everything up to the end belongs to it.
SentenceToken InlineSegment(int phoneme_set, std::wstring_view sentence, std::size_t begin) {
  const std::size_t closing = std::min(sentence.find(L'|', begin + 1), sentence.size());
  const std::size_t end = SkipWhile(
      sentence, closing, [phoneme_set](wchar_t c) { return !IsSentenceSpace(phoneme_set, c); });
  return {sentence.substr(begin, end - begin), end, false};
}

// A double quote would belong to a word if it followed a bar; but a bar ends the word before it.
SentenceToken Word(int phoneme_set, std::wstring_view sentence, std::size_t begin) {
  const std::size_t end = SkipWhile(sentence, begin, [phoneme_set](wchar_t c) {
    if (c == L'\'') return true;
    return !IsSentenceSpace(phoneme_set, c) && !IsSentencePunctuation(phoneme_set, c);
  });
  std::wstring_view text = sentence.substr(begin, end - begin);
  if (text.ends_with(L'\'')) text.remove_suffix(1);
  return {text, std::min(end + 1, sentence.size()), false};
}

}  // namespace

bool IsSentenceSpace(int phoneme_set, wchar_t c) {
  if (phoneme_set == CPhonemeSet::kEnglish) return c == L' ' || (c >= L'\t' && c <= L'\r');
  return IsWideSpace(c);
}

bool IsSentencePunctuation(int phoneme_set, wchar_t c) {
  if (phoneme_set == CPhonemeSet::kEnglish) return c < 0x80 && IsWidePunctuation(c);
  return IsKnown(phoneme_set) && IsWidePunctuation(c);
}

std::size_t GetNextIndexOfVaildChar(int phoneme_set, std::wstring_view text, std::size_t start) {
  if (!IsKnown(phoneme_set)) {
    Message(MessageStream::kError)
        << "Error, unknown phoneme set in VeralDictionary::GetNextIndexOfVaildChar()\n";
  }
  return std::min(text.size(), SkipWhile(text, start, [phoneme_set](wchar_t c) {
                    return IsSentenceSpace(phoneme_set, c) || IsSentencePunctuation(phoneme_set, c);
                  }));
}

SentenceToken NextSentenceToken(int phoneme_set, std::wstring_view sentence, std::size_t position) {
  const std::size_t begin = GetNextIndexOfVaildChar(phoneme_set, sentence, position);
  if (begin == sentence.size()) return {{}, begin, false};
  if (begin > 0 && sentence[begin - 1] == L'|') {
    return InlineSegment(phoneme_set, sentence, begin - 1);
  }
  if (IsDigit(sentence[begin])) {
    const std::size_t end =
        SkipWhile(sentence, begin, [](wchar_t c) { return IsDigit(c) || c == L',' || c == L'.'; });
    return {sentence.substr(begin, end - begin), end, true};
  }
  return Word(phoneme_set, sentence, begin);
}

}  // namespace veral3
