#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veral3::training {

struct PhonemeFrequency {
  char symbol;
  double frequency;  // share of all phonemes, pauses left out; they need not add up to 1
};

// The English frequencies that phoneme scores are judged against.
std::span<const PhonemeFrequency> EnglishPhonemeFrequencies();

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
