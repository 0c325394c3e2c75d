#include "core/UtteranceProbabilities.h"

#include <cmath>
#include <vector>

#include "core/Finite.h"
#include "core/SyllableSpans.h"

namespace veral3 {

double GeometricMean(std::span<const double> values) {
  if (values.empty()) return 1.0;
  double product = 1.0;
  for (const double value : values) product *= value;
  return FiniteOrZero(std::pow(product, 1.0 / static_cast<double>(values.size())));
}

UtteranceProbabilities CalculateUtteranceProbabilities(const AlignmentResult& alignment) {
  const std::span<const double> posterior(alignment.path_posterior);
  std::vector<double> syllables;
  for (const FrameSpan span : SyllableSpans(alignment)) {
    syllables.push_back(GeometricMean(Slice(posterior, span)));
  }
  const std::span<const double> phonemes(alignment.phoneme_mfcc_prob);
  UtteranceProbabilities result;
  if (!syllables.empty()) result.by_syllable = GeometricMean(syllables);
  if (!phonemes.empty()) result.by_phoneme = GeometricMean(phonemes);
  return result;
}

}  // namespace veral3
