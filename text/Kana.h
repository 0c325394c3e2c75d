#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Between kana and the phonemes of the Japanese dictionary.
namespace veral3 {

// A pronunciation as an inline segment or a dictionary line spells it.
struct Reading {
  std::string phonemes;     // compact notation
  std::vector<int> starts;  // index in `phonemes` at which each syllable begins
  std::string marks;        // a digit a syllable
};

// Hiragana, katakana (full width) and the length mark only; at least one of them.
bool IsKana(std::wstring_view text);

// The phonemes of a word in kana. A length mark, and the second vowel of "ou" and "ei", lengthen
// the vowel before them; a small tsu doubles the consonant after it and is silent at the word's
// edges. A syllable is a consonant and vowel with the vowel's length, the moraic n or the closure
// that follow. Nothing for what cannot be read.
std::optional<Reading> ReadKana(std::wstring_view kana);

// Hiragana for phonemes of the set (expanded notation), long vowels with the length mark.
// `starts`: of the syllables; they tell "na" from a moraic n before "a".
std::string KanaOfPhonemes(std::string_view phonemes, const std::vector<int>& starts);

// "|1 1 ? ...|word": the inline segment that gives `word` this reading.
std::wstring InlinePronunciation(const Reading& reading, std::wstring_view word);

}  // namespace veral3
