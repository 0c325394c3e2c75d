#include "training/augment/Hum.h"

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>

#include "signal/CWaveFrameDef.h"
#include "training/augment/SpeechLevel.h"

namespace veral3::training {

void AddHum(std::vector<float>& signal, double rms, Random& random) {
  constexpr int kPartials = 12;
  const double mains = (random.Chance(0.5) ? 50.0 : 60.0) + random.Uniform(-0.1, 0.1);
  const double fall = random.Uniform(0.5, 1.5);  // of strength with the number of the partial
  std::vector<float> hum(signal.size(), 0.0F);
  for (int partial = 1; partial <= kPartials; ++partial) {
    const double strength = random.Uniform(0.2, 1.0) / std::pow(partial, fall);
    const double step = 2.0 * std::numbers::pi * mains * partial / kSampleRate;
    const std::complex<double> turn = std::polar(1.0, step);
    std::complex<double> place = std::polar(strength, random.Uniform(0.0, 2.0 * std::numbers::pi));
    for (float& x : hum) {
      x += static_cast<float>(place.real());
      place = {place.real() * turn.real() - place.imag() * turn.imag(),
               place.real() * turn.imag() + place.imag() * turn.real()};
    }
  }
  const double level = RootMeanSquare(hum);
  if (level == 0.0) return;
  const auto gain = static_cast<float>(rms / level);
  for (std::size_t i = 0; i < signal.size(); ++i) signal[i] += gain * hum[i];
}

}  // namespace veral3::training
