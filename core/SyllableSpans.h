#pragma once

#include <cstdint>
#include <vector>

#include "core/FrameSpan.h"
#include "recognition/AlignmentResult.h"

// Where phonemes, syllables and the utterance lie, in samples and in frames. Indices are checked:
// what the alignment lacks lies at sample 0.
namespace veral3 {

// The counts of the alignment, no larger than its tables.
int CountPhonemes(const AlignmentResult& alignment);
int CountSyllables(const AlignmentResult& alignment);
int CountWords(const AlignmentResult& alignment);

// [samples]
int PhonemeStart(const AlignmentResult& alignment, int phoneme);
int PhonemeEnd(const AlignmentResult& alignment, int phoneme);
int UtteranceStart(const AlignmentResult& alignment);  // start of the first phoneme
int UtteranceEnd(const AlignmentResult& alignment);    // end of the last phoneme

// The phonemes `first` to `last` of a syllable, both included: up to the one before the next
// syllable's first, or the last of all. A syllable without phonemes has `last` = `first` - 1.
struct PhonemeRange {
  int first = 0;
  int last = -1;
};
PhonemeRange SyllablePhonemes(const AlignmentResult& alignment, int syllable);

// The frames from the start of `first` to the end of `last`.
FrameSpan FramesOfPhonemes(const AlignmentResult& alignment, PhonemeRange range);

// The frames of every syllable.
std::vector<FrameSpan> SyllableSpans(const AlignmentResult& alignment);

}  // namespace veral3
