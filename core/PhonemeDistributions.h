#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "core/FrameSpan.h"
#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"
#include "signal/Mfcc.h"

// Which phoneme each aligned segment sounds like.
namespace veral3 {

// The frames of a phoneme that the classifier sees, counted from its first one: dense where it
// begins, sparse towards the end of a long one.
inline constexpr std::array<int, 16> kPhonemeFrameOffsets = {0, 1,  2,  3,  4,  5,  6,  7,
                                                             9, 11, 13, 15, 18, 21, 25, 31};
inline constexpr std::size_t kPhonemeInputSize = kPhonemeFrameOffsets.size() * kMfccSize;  // 624

// Values a row of the distributions. The sets are smaller: the rest of a row is 0.
inline constexpr std::size_t kDistributionWidth = 64;

// Scores phonemes, any number at once: rows of kPhonemeInputSize floats to as many rows of set size
// doubles. A row's scores are the same bits whatever rows are with it. Returns false, and says
// nothing, where no model is loaded. An empty function is a model that is not loaded.
using PhonemeScorer = std::function<bool(std::span<const float>, std::span<double>)>;

struct PhonemeDistributions {
  std::vector<double> rows;              // phonemes x kDistributionWidth, in the order of the set
  std::string sounds_like;               // for each phoneme, the symbol of its highest score
  std::vector<double> sounds_like_prob;  // that score as a part of the row's sum

  // The row of a phoneme; empty for a number that is none.
  std::span<const double> Row(int phoneme) const;
};

// The classifier's input for the phoneme whose frames are `span`; `mfcc`: rows of 39. Frames past
// the phoneme's end, and past the recording's, are 0.
void AssemblePhonemeInput(std::span<const float> mfcc, FrameSpan span,
                          std::span<float, kPhonemeInputSize> input);

// Classifies all phonemes of the alignment in one batch. Ties go to the symbol that the set has
// first. What a phoneme's new scores leave open stays as `previous`, of an earlier analysis with
// the same object, has it: the probability where the scores sum to 0, the whole row for a set that
// is none of the three (reported for each phoneme). Without a model, which is reported once, rows
// and probabilities are 0 and there are no symbols.
PhonemeDistributions ClassifyPhonemes(const CPhonemeSet& set, const AlignmentResult& alignment,
                                      const PhonemeScorer& scorer,
                                      const PhonemeDistributions& previous);

}  // namespace veral3
