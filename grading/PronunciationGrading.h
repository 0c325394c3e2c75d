#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "grading/RecordingView.h"
#include "recognition/CPhonemeSet.h"

namespace veral3 {

// One score a phoneme of the learner. An unknown language is reported for each; those score 0.
std::vector<int> GradePhonemes(const LearnerView& learner);

// The score of a syllable from those of its phonemes: onset, vowels and coda by their weights. Of
// more than 7 phonemes, which is reported, the first 7 count. -1 where a syllable without a vowel
// is none of the language's.
int CombineSyllable(const CPhonemeSet& set, LanguageType language, std::string_view phonemes,
                    std::span<const int> scores);

struct SyllablePronunciation {
  std::vector<int> score;  // one a syllable, weighted with the syllable's goodness
  bool failed = false;     // a syllable could not be scored: the scores end before it
};
SyllablePronunciation GradeSyllables(const LearnerView& learner, const CPhonemeSet& set,
                                     std::span<const int> phoneme_scores);

// The mean of the syllables' scores, whatever their lengths; -1 without syllables.
int UtterancePronunciation(std::span<const int> syllable_scores);

}  // namespace veral3
