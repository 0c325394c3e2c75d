#include "core/UtteranceProbabilities.h"

#include <span>
#include <vector>

#include "core/Finite.h"
#include "core/SyllableSpans.h"
#include "recognition/MfccProbabilities.h"

namespace veral3 {
namespace {

double MeanOf(std::span<const double> values) {
  return FiniteOrZero(GeometricMean(values, 0, static_cast<int>(values.size())));
}

}  // namespace

UtteranceProbabilities CalculateUtteranceProbabilities(const AlignmentResult& alignment) {
  std::vector<double> syllables;
  for (const FrameSpan span : SyllableSpans(alignment)) {
    syllables.push_back(MeanOf(Slice(std::span<const double>(alignment.path_posterior), span)));
  }
  UtteranceProbabilities result;
  if (!syllables.empty()) result.by_syllable = MeanOf(syllables);
  if (!alignment.phoneme_mfcc_prob.empty()) {
    result.by_phoneme = MeanOf(alignment.phoneme_mfcc_prob);
  }
  return result;
}

}  // namespace veral3
