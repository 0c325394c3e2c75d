#pragma once

#include <span>

#include "common/LanguageType.h"

// Turns the probability of a phoneme into a score. Frequent phonemes get probable anyway; of a rare
// one less is asked: its probability is divided by the square of its normaliser, a figure below 1
// that follows the phoneme's share of speech.
class PhonProbGrader {
 public:
  // Another language than the three is reported; such a grader knows no phonemes.
  explicit PhonProbGrader(LanguageType language);

  // 0 to 100: 25 points a power of ten below certainty. `distribution` has one value a phoneme of
  // the set. A symbol that the language lacks is graded like the set's first one.
  int ComputePhonScore(char phoneme, std::span<const double> distribution) const;

  int NumPhonemes() const { return m_nNumOfPhonemes; }

 private:
  LanguageType m_eLanguage;
  int m_nNumOfPhonemes;
};

namespace veral3 {

// The normalisers of a language, one a phoneme in the order of its set (the pause's is not a
// frequency); empty for a value that names none.
std::span<const double> PhonemeNormalisersOf(LanguageType language);

// The process-wide grader of a language; null for a value that names none.
const PhonProbGrader* PhonProbGraderOf(LanguageType language);

}  // namespace veral3
