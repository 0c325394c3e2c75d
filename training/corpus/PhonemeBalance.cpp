#include "training/corpus/PhonemeBalance.h"

#include <array>
#include <limits>

namespace veral3::training {
namespace {

constexpr std::size_t kCodes = 128;

}  // namespace

std::span<const PhonemeFrequency> EnglishPhonemeFrequencies() {
  // The normalisers of the phoneme scores, divided by the set's size where they are used.
  static constexpr auto kTable = std::to_array<PhonemeFrequency>({
      {'i', 1.441442837}, {'I', 3.3567579},   {'E', 1.740521152}, {'{', 1.054765259},
      {'A', 1.666678817}, {'O', 0.501318646}, {'u', 0.836070563}, {'U', 1.019631144},
      {'V', 0.611846122}, {'@', 2.665809441}, {'3', 0.760677202}, {'p', 0.71077462},
      {'b', 0.624928691}, {'t', 2.678487394}, {'d', 1.295578937}, {'k', 1.19779685},
      {'g', 0.463824273}, {'m', 0.97289805},  {'n', 2.256203649}, {'N', 0.404210918},
      {'l', 1.474891055}, {'f', 0.721159752}, {'v', 0.525663014}, {'T', 0.322411144},
      {'D', 0.645496647}, {'s', 1.765067828}, {'z', 1.02664448},  {'S', 0.254031119},
      {'Z', 0.01422898},  {'r', 0.987666517}, {'c', 0.651026393}, {'h', 0.66909922},
      {'C', 0.204937768}, {'J', 0.158744161}, {'j', 0.600314579}, {'w', 0.718394879},
  });
  return kTable;
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
