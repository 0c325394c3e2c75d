#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

// The training kit's own random numbers: xoshiro256** seeded by splitmix64. The same seed gives the
// same corpus on every machine and with any number of threads, which the standard library's
// distributions do not promise. Give each utterance a generator of its own:
//
//   Random random(MixSeed(corpus_seed, utterance_number));
namespace veral3::training {

// One step of splitmix64, Steele, Lea and Flood 2014.
constexpr std::uint64_t SplitMix(std::uint64_t& state) {
  state += 0x9E3779B97F4A7C15u;
  std::uint64_t z = state;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
  return z ^ (z >> 31);
}

constexpr std::uint64_t MixSeed(std::uint64_t seed, std::uint64_t number) {
  std::uint64_t state = seed;
  state = SplitMix(state) ^ (number * 0xD1342543DE82EF95u);
  return SplitMix(state);
}

class Random {
 public:
  explicit Random(std::uint64_t seed) {
    for (auto& word : m_state) word = SplitMix(seed);
  }

  std::uint64_t Next() {
    const std::uint64_t result = Rotate(m_state[1] * 5, 7) * 9;
    const std::uint64_t t = m_state[1] << 17;
    m_state[2] ^= m_state[0];
    m_state[3] ^= m_state[1];
    m_state[1] ^= m_state[2];
    m_state[0] ^= m_state[3];
    m_state[2] ^= t;
    m_state[3] = Rotate(m_state[3], 45);
    return result;
  }

  double Uniform() { return static_cast<double>(Next() >> 11) * 0x1.0p-53; }  // [0, 1)
  double Uniform(double low, double high) { return low + (high - low) * Uniform(); }
  bool Chance(double probability) { return Uniform() < probability; }

  // [0, count); count must be positive.
  std::size_t Below(std::size_t count) {
    return static_cast<std::size_t>(Uniform() * static_cast<double>(count));
  }
  int Between(int low, int high) {  // both ends included
    return low + static_cast<int>(Below(static_cast<std::size_t>(high - low + 1)));
  }
  double Normal() {  // mean 0, deviation 1 (Box and Muller)
    const double u = 1.0 - Uniform();
    return std::sqrt(-2.0 * std::log(u)) * std::cos(6.283185307179586 * Uniform());
  }
  template <typename Container>
  const auto& Pick(const Container& choices) {
    return choices[Below(std::size(choices))];
  }
  template <typename T>
  void Shuffle(std::span<T> items) {
    for (std::size_t i = items.size(); i > 1; --i) std::swap(items[i - 1], items[Below(i)]);
  }

 private:
  static constexpr std::uint64_t Rotate(std::uint64_t x, int k) {
    return (x << k) | (x >> (64 - k));
  }
  std::array<std::uint64_t, 4> m_state{};
};

}  // namespace veral3::training
