#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <span>
#include <string>
#include <vector>

#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// Recordings of which one knows everything, and ways to look at what became of them that share
// nothing with what is tested.
namespace veral3::training {

inline constexpr double kTau = 2.0 * std::numbers::pi;

// 0.5 s of silence, one second of a sine of 8000, 0.5 s of silence.
inline Utterance ToneBetweenPauses(double hz, const std::string& voice = "own") {
  Utterance utterance{"tone", voice, {{'-', 0}, {'A', 11025}, {'-', 33075}}, {}};
  for (int i = 0; i < 44100; ++i) {
    const bool speech = i >= 11025 && i < 33075;
    utterance.samples.push_back(static_cast<std::int16_t>(
        speech ? std::lround(8000 * std::sin(kTau * hz * i / 22050)) : 0));
  }
  return utterance;
}

// Voiced bursts of 80 to 200 ms, of changing pitch, each a phoneme, between pauses of 60 to 160 ms.
// Tones, as of a language that has them.
inline Utterance Bursts(int count, std::uint64_t seed) {
  Random random(seed);
  Utterance utterance{"bursts", "own", {{'-', 0}}, {}};
  std::vector<std::int16_t>& samples = utterance.samples;
  samples.assign(4410, 0);
  for (int burst = 0; burst < count; ++burst) {
    utterance.labels.push_back(
        {static_cast<char>('a' + burst % 26), static_cast<std::int32_t>(samples.size())});
    utterance.tones += '4';
    utterance.spoken_tones += '5';
    utterance.syllables.push_back(burst);
    const int length = static_cast<int>(22050 * random.Uniform(0.08, 0.2));
    const double hz = random.Uniform(100.0, 240.0);
    for (int i = 0; i < length; ++i) {
      double sum = 0.0;
      for (int k = 1; k < 30; ++k) sum += std::sin(kTau * k * hz * i / 22050 + k * k) / k;
      samples.push_back(static_cast<std::int16_t>(3000 * sum));
    }
    utterance.labels.push_back({'-', static_cast<std::int32_t>(samples.size())});
    samples.insert(samples.end(), static_cast<std::size_t>(22050 * random.Uniform(0.06, 0.16)), 0);
  }
  return utterance;
}

template <typename Sample>
double Rms(std::span<const Sample> signal) {
  double sum = 0.0;
  for (const Sample x : signal) sum += static_cast<double>(x) * static_cast<double>(x);
  return std::sqrt(sum / static_cast<double>(signal.size()));
}

inline double Decibels(double ratio) { return 20.0 * std::log10(ratio); }

// Amplitude of the sine of that frequency in a signal, through a Hann window.
template <typename Sample>
double AmplitudeAt(std::span<const Sample> signal, double hz) {
  double re = 0.0;
  double im = 0.0;
  double sum = 0.0;
  for (std::size_t i = 0; i < signal.size(); ++i) {
    const auto t = static_cast<double>(i);
    const double window = 0.5 - 0.5 * std::cos(kTau * t / static_cast<double>(signal.size()));
    re += window * static_cast<double>(signal[i]) * std::cos(kTau * hz * t / 22050);
    im += window * static_cast<double>(signal[i]) * std::sin(kTau * hz * t / 22050);
    sum += window;
  }
  return 2.0 * std::hypot(re, im) / sum;
}

// By how many samples `later` comes after `signal`, where they are most alike.
inline int LagOf(std::span<const float> signal, std::span<const float> later, int most) {
  int best = 0;
  double best_product = -1.0;
  for (int lag = -most; lag <= most; ++lag) {
    double product = 0.0;
    for (int i = 0; i < static_cast<int>(signal.size()); ++i) {
      const int j = i + lag;
      if (j < 0 || j >= static_cast<int>(later.size())) continue;
      product += static_cast<double>(signal[static_cast<std::size_t>(i)]) *
                 static_cast<double>(later[static_cast<std::size_t>(j)]);
    }
    if (product > best_product) {
      best_product = product;
      best = lag;
    }
  }
  return best;
}

inline std::vector<float> Floats(const std::vector<std::int16_t>& samples) {
  return {samples.begin(), samples.end()};
}

// What was added to a recording.
inline std::vector<float> Difference(const Utterance& with, const Utterance& without) {
  std::vector<float> difference;
  for (std::size_t i = 0; i < with.samples.size(); ++i) {
    difference.push_back(static_cast<float>(with.samples[i] - without.samples[i]));
  }
  return difference;
}

}  // namespace veral3::training
