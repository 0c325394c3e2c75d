#pragma once

#include "recognition/AlignmentResult.h"

namespace veral3 {

// How well a whole utterance matches the models that aligned it: geometric means of the path
// posterior's means over the frames of each syllable (1.0 for a syllable without frames), and of
// the phonemes' MFCC probabilities. 0 without syllables or phonemes, and where a product underflows
// or, which no probabilities do, overflows.
struct UtteranceProbabilities {
  double by_syllable = 0.0;
  double by_phoneme = 0.0;
};
UtteranceProbabilities CalculateUtteranceProbabilities(const AlignmentResult& alignment);

}  // namespace veral3
