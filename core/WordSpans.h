#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace veral3 {

// How words are made of syllables.
struct WordSpans {
  std::vector<std::int32_t> first_syllable;  // one a word; the syllable count past the last one
  std::vector<std::int32_t> num_syllables;   // one a word, 0 for a word without syllables
  bool operator==(const WordSpans&) const = default;
};

// Finds each word's first syllable: the first that begins at the word's first phoneme or after it,
// searched from the first syllable of the word before. Starts are phoneme indices.
WordSpans FindWordSpans(std::span<const std::int32_t> syllable_start,
                        std::span<const std::int32_t> word_start);

// [Hz] mean of the pitches of a word's syllables, towards 0; 0 for a word without syllables.
int WordPitch(const WordSpans& spans, std::span<const std::int32_t> syllable_pitch, int word);

}  // namespace veral3
