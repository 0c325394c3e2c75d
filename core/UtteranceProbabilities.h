#pragma once

#include <span>

#include "recognition/AlignmentResult.h"

// How well a whole utterance matches the models that aligned it.
namespace veral3 {

// The product to the power 1 / count: 1.0 of nothing, 0 where the product underflows.
double GeometricMean(std::span<const double> values);

// Geometric means over the utterance, 0 without syllables or phonemes: of the path posterior's
// means over the frames of each syllable, and of the phonemes' MFCC probabilities.
struct UtteranceProbabilities {
  double by_syllable = 0.0;
  double by_phoneme = 0.0;
};
UtteranceProbabilities CalculateUtteranceProbabilities(const AlignmentResult& alignment);

}  // namespace veral3
