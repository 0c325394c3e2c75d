#include "training/measure/PhonemeScores.h"

#include <algorithm>
#include <cmath>

#include "grading/PhonProbGrader.h"
#include "recognition/Models.h"
#include "signal/CWaveFrameDef.h"
#include "signal/Mfcc.h"
#include "training/train/PhonemeSource.h"

namespace veral3::training {

std::vector<double> PhonemeDistribution(const CPhonemeSet& set, const AlignmentResult& result,
                                        std::size_t phoneme) {
  std::vector<float> input(kPhonemeOffsets.size() * kMfccSize);
  AssemblePhonemeInput(result.mfcc, FrameOfSample(result.phoneme_start[phoneme]),
                       FrameOfSample(result.phoneme_end[phoneme]), input);
  std::vector<double> output(static_cast<std::size_t>(set.GetSize()));
  PhonClassifierOf(set.GetIdentifier())
      ->ClassifyPhon(input.data(), static_cast<int>(input.size()), output.data(), set.GetSize());
  return output;
}

double UnclippedScore(LanguageType language, char phoneme, std::span<const double> distribution) {
  const auto symbol = static_cast<std::size_t>(PhonemeSetOf(language)->GetPhonemeIndex(phoneme));
  const double normaliser = PhonemeNormalisersOf(language)[symbol];
  double x = distribution[symbol];
  if (normaliser < 1.0) x /= normaliser * normaliser;
  return 100.0 + 25.0 * std::log10(std::max(x, 1e-12));
}

char AnotherOfItsKind(const CPhonemeSet& set, char symbol, Random& random) {
  const bool vowel = set.IsVowel(static_cast<wchar_t>(symbol));
  for (;;) {
    const char other = set.GetFullSet()[random.Below(static_cast<std::size_t>(set.GetSize()))];
    if (other != '-' && other != symbol && set.IsVowel(static_cast<wchar_t>(other)) == vowel) {
      return other;
    }
  }
}

Substituted WithSubstitutions(const CPhonemeSet& set, const Utterance& utterance, Random& random) {
  Substituted changed{utterance, {}};
  for (PhonemeLabel& label : changed.utterance.labels) {
    if (label.symbol == '-') continue;
    const bool change =
        random.Chance(1.0 / 6) && (changed.is_changed.empty() || !changed.is_changed.back());
    if (change) label.symbol = AnotherOfItsKind(set, label.symbol, random);
    changed.is_changed.push_back(change);
  }
  return changed;
}

}  // namespace veral3::training
