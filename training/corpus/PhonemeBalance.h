#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/LanguageType.h"

namespace veral3::training {

struct PhonemeFrequency {
  char symbol;
  double frequency;  // share of all phonemes, pauses left out; they need not add up to 1
};

// The frequencies of a language that its phoneme scores are judged against: their normalisers,
// which are proportional to them. `evenness` brings them nearer to one another: 0 leaves them, 1
// makes them all the same, in between they are raised to 1 - evenness.
std::vector<PhonemeFrequency> PhonemeFrequencies(LanguageType language, double evenness);

// Chooses among texts so that the corpus comes near the wanted phoneme frequencies. Sentence
// templates alone would be full of "the".
class PhonemeBalance {
 public:
  explicit PhonemeBalance(std::span<const PhonemeFrequency> wanted);

  // Index of the candidate after which the counts are nearest (chi square); the first wins a tie.
  std::size_t Choose(std::span<const std::string> candidates) const;
  void Count(std::string_view phonemes);

 private:
  std::vector<double> m_wanted;  // by character code, adding up to 1
  std::vector<double> m_counts;
};

}  // namespace veral3::training
