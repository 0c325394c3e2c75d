#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "text/Kana.h"

// Between pinyin and the phonemes of the Chinese dictionary.
namespace veral3 {

// A word's pronunciation for pinyin syllables with tone digits ("le4 se4", "nv3 ren2"; 5 or no
// digit is the neutral tone; "v", "u:" and "ü" are the same). Nothing when a syllable is none of
// Mandarin.
std::optional<Reading> ReadPinyin(std::string_view syllables);

// The pinyin of one syllable's phonemes (expanded notation) with the tone as a mark over its vowel:
// "nǐ"; the neutral tone (5) has none. "?" for phonemes that make no syllable.
std::string PinyinOfPhonemes(std::string_view phonemes, int tone);

}  // namespace veral3
