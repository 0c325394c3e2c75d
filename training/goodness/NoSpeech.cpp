#include "training/goodness/NoSpeech.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Augment.h"

namespace veral3::training {
namespace {

using Samples = std::vector<std::int16_t>;

Samples Rounded(std::span<const float> signal) {
  Samples samples;
  for (const float x : signal) {
    samples.push_back(static_cast<std::int16_t>(std::lround(std::clamp(x, -32000.0F, 32000.0F))));
  }
  return samples;
}

std::vector<float> Nothing(double seconds) {
  return std::vector<float>(static_cast<std::size_t>(std::lround(seconds * kSampleRate)), 0.0F);
}

}  // namespace

Samples Silence(double seconds, Random& random) {
  std::vector<float> signal = Nothing(seconds);
  if (random.Chance(0.7)) AddNoise(signal, random.Uniform(), random.Uniform(0.5, 20.0), random);
  return Rounded(signal);
}

Samples Noise(double seconds, Random& random) {
  std::vector<float> signal = Nothing(seconds);
  AddNoise(signal, random.Uniform(), std::pow(10.0, random.Uniform(1.8, 3.8)), random);
  if (random.Chance(0.5)) {
    const double rate = random.Uniform(0.5, 6.0);  // Hz
    for (std::size_t i = 0; i < signal.size(); ++i) {
      const double turn = 2.0 * std::numbers::pi * rate * static_cast<double>(i) / kSampleRate;
      signal[i] *= static_cast<float>(0.5 - 0.5 * std::cos(turn));
    }
  }
  return Rounded(signal);
}

Samples Tones(double seconds, Random& random) {
  std::vector<float> signal = Nothing(seconds);
  const int count = random.Between(1, 4);
  for (int tone = 0; tone < count; ++tone) {
    const double hz = 80.0 * std::pow(50.0, random.Uniform());
    const double size = std::pow(10.0, random.Uniform(2.5, 3.8));
    const double beeps = random.Chance(0.5) ? random.Uniform(1.0, 8.0) : 0.0;  // a second
    for (std::size_t i = 0; i < signal.size(); ++i) {
      const double time = static_cast<double>(i) / kSampleRate;
      if (beeps > 0.0 && std::fmod(time * beeps, 1.0) > 0.6) continue;
      signal[i] += static_cast<float>(size * std::sin(2.0 * std::numbers::pi * hz * time));
    }
  }
  AddNoise(signal, random.Uniform(), random.Uniform(1.0, 100.0), random);
  return Rounded(signal);
}

}  // namespace veral3::training
