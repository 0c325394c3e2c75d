#include "training/corpus/PhonemeBalance.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include "grading/PhonProbGrader.h"
#include "recognition/CPhonemeSet.h"

namespace veral3::training {
namespace {

constexpr std::size_t kCodes = 128;

}  // namespace

std::vector<PhonemeFrequency> PhonemeFrequencies(LanguageType language, double evenness) {
  const CPhonemeSet* set = PhonemeSetOf(language);
  if (set == nullptr) throw std::runtime_error("no such language");
  const std::span<const double> normalisers = PhonemeNormalisersOf(language);
  std::vector<PhonemeFrequency> frequencies;
  for (int i = 0; i < set->GetSize(); ++i) {
    const char symbol = set->GetFullSet()[i];
    if (symbol == '-') continue;
    const double frequency = normalisers[static_cast<std::size_t>(i)];
    frequencies.push_back({symbol, std::pow(frequency, 1.0 - evenness)});
  }
  return frequencies;
}

PhonemeBalance::PhonemeBalance(std::span<const PhonemeFrequency> wanted)
    : m_wanted(kCodes, 0.0), m_counts(kCodes, 0.0) {
  double sum = 0.0;
  for (const auto& [symbol, frequency] : wanted) sum += frequency;
  for (const auto& [symbol, frequency] : wanted) {
    m_wanted[static_cast<unsigned char>(symbol) % kCodes] = frequency / sum;
  }
}

void PhonemeBalance::Count(std::string_view phonemes) {
  for (const char symbol : phonemes) m_counts[static_cast<unsigned char>(symbol) % kCodes] += 1.0;
}

std::size_t PhonemeBalance::Choose(std::span<const std::string> candidates) const {
  std::size_t best = 0;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    PhonemeBalance after = *this;
    after.Count(candidates[i]);
    double total = 0.0;
    for (std::size_t code = 0; code < kCodes; ++code) {
      if (m_wanted[code] > 0.0) total += after.m_counts[code];
    }
    if (total == 0.0) continue;
    double distance = 0.0;
    for (std::size_t code = 0; code < kCodes; ++code) {
      if (m_wanted[code] == 0.0) continue;
      const double difference = after.m_counts[code] / total - m_wanted[code];
      distance += difference * difference / m_wanted[code];
    }
    if (distance < least) {
      least = distance;
      best = i;
    }
  }
  return best;
}

}  // namespace veral3::training
