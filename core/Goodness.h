#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "common/LanguageType.h"
#include "core/Pronunciation.h"
#include "core/Prosody.h"
#include "recognition/AlignmentResult.h"

// Whether a recording is a reading of its sentence: syllable by syllable, and as a whole.
namespace veral3 {

// Empty until a step has made it.
struct GoodnessResult {
  std::vector<std::int32_t> loud_gaps;  // syllables + 1, see BadSpaces.h
  std::vector<double> good_syllable;    // one a syllable, see BadSyllables.h
};

GoodnessResult MarkBadSyllables(LanguageType language, const AlignmentResult& alignment,
                                const ProsodyResult& prosody);
GoodnessResult MarkBadSyllablesPronunOnly(LanguageType language, const AlignmentResult& alignment,
                                          const IntensityMeasures& intensity);

inline constexpr int kGoodnessFeatureCount = 16;

// What the utterance-goodness classifier is given:
//   0..2    1 for English, Chinese, Japanese
//   3..5    number of frames, phonemes, syllables
//   6, 7    loud frames in the gap before the first syllable, after the last
//   8, 9    loud frames before the first phoneme, after the last
//   10, 11  MFCC probability of the pause before the first phoneme, after the last
//   12      log probability of the alignment
//   13      energy of the speech / energy of the utterance
//   14, 15  utterance probability by syllables, by phonemes
using GoodnessFeatures = std::array<double, kGoodnessFeatureCount>;

// A language that is none of the three is reported; its features are all 0.
GoodnessFeatures PrepareGoodnessFeatures(LanguageType language, const AlignmentResult& alignment,
                                         const IntensityMeasures& intensity,
                                         const PronunciationResult& pronunciation,
                                         const GoodnessResult& goodness);

// The probability that the features are those of a good reading. Answers nothing, and says nothing,
// where no model is loaded. An empty function is a model that is not loaded.
using GoodnessScorer = std::function<std::optional<double>(const GoodnessFeatures&)>;

// The scorer's answer; 0.0 where there is none, which is reported: nobody shall take the scores
// of such a recording for real.
double ProbabilityOfGoodAlignment(const GoodnessFeatures& features, const GoodnessScorer& scorer);

}  // namespace veral3
