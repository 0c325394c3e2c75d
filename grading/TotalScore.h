#pragma once

#include "common/LanguageType.h"

namespace veral3 {

struct ComponentScores {
  int pronunciation = 0;
  int pitch = 0;
  int timing = 0;
  int intensity = 0;
};

// The components by weights that depend on the language and on the number of syllables: the shorter
// an utterance, the more its pronunciation counts. 0 to 100 when the components are; more is
// reported and stays.
double CombineScores(LanguageType language, int num_syllables, const ComponentScores& scores);

// 1 / (1 - ln p): what a probability p that the recording is a reading at all leaves of its scores.
// 1 for certainty, 0 for a probability of 0.
double GoodnessFactor(double probability);

}  // namespace veral3
