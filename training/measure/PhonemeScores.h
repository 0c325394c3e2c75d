#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "common/LanguageType.h"
#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"
#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

namespace veral3::training {

// The phoneme classifier's probabilities of an aligned phoneme, one a symbol of the set. The
// language's phoneme model must be loaded.
std::vector<double> PhonemeDistribution(const CPhonemeSet& set, const AlignmentResult& result,
                                        std::size_t phoneme);

// As grading scores a phoneme, but neither cut off at 0 and 100 nor to whole points, so that scores
// beyond either end can still be ranked. `distribution`: one probability a symbol of the set.
double UnclippedScore(LanguageType language, char phoneme, std::span<const double> distribution);

// Another vowel for a vowel, another consonant for a consonant, never a pause.
char AnotherOfItsKind(const CPhonemeSet& set, char symbol, Random& random);

// An utterance whose labels say another phoneme of its kind now and then, as if it had been
// mispronounced there: about one in six, never two neighbours.
struct Substituted {
  Utterance utterance;
  std::vector<char> is_changed;  // one a phoneme, pauses left out
};
Substituted WithSubstitutions(const CPhonemeSet& set, const Utterance& utterance, Random& random);

}  // namespace veral3::training
