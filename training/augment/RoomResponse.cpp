#include "training/augment/RoomResponse.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "training/augment/Fourier.h"
#include "training/augment/Signal.h"
#include "training/augment/SpeechLevel.h"

namespace veral3::training {

std::vector<float> RoomResponse(double rt60, double direct_db, Random& random) {
  constexpr int kEchoes = 10;
  constexpr double kLastEcho = 0.04;  // seconds
  constexpr double kFirstEcho = 0.002;
  constexpr double kTailBegins = 0.01;  // swells from here to the last echo
  const double dulling = random.Uniform(0.2, 0.6);
  const std::size_t length = std::max<std::size_t>(2, SamplesOf(rt60));
  const auto decay = [&](double seconds) { return std::pow(10.0, -3.0 * seconds / rt60); };

  std::vector<float> response(length, 0.0F);
  double state = 0.0;
  const double rate = static_cast<double>(length) / rt60;
  for (std::size_t i = 1; i < length; ++i) {
    const double seconds = static_cast<double>(i) / rate;
    const double swell = std::clamp((seconds - kTailBegins) / (kLastEcho - kTailBegins), 0.0, 1.0);
    state = dulling * state + (1.0 - dulling) * random.Normal();
    response[i] = static_cast<float>(swell * decay(seconds) * state);
  }
  for (int echo = 0; echo < kEchoes; ++echo) {
    const double seconds = random.Uniform(kFirstEcho, std::min(kLastEcho, rt60));
    const std::size_t place = std::clamp<std::size_t>(SamplesOf(seconds), 1, length - 1);
    response[place] += static_cast<float>(decay(seconds) * random.Uniform(-4.0, 4.0));
  }
  const double energy = RootMeanSquare(response) * std::sqrt(static_cast<double>(length));
  const auto gain = static_cast<float>(energy == 0.0 ? 0.0 : FactorOfDb(-direct_db) / energy);
  for (float& x : response) x *= gain;
  response[0] = 1.0F;
  return response;
}

void Reverberate(std::vector<float>& signal, std::span<const float> response) {
  signal = Convolve(signal, response, 0);
}

}  // namespace veral3::training
