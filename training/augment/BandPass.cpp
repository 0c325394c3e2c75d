#include "training/augment/BandPass.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Fourier.h"

namespace veral3::training {

// Window method: the difference of two low passes, each a sine over its angle, under a Hann window.
void BandPass(std::vector<float>& signal, double low_hz, double high_hz) {
  constexpr std::size_t kHalf = 255;
  const double low = 2.0 * std::numbers::pi * low_hz / kSampleRate;
  const double high = 2.0 * std::numbers::pi * high_hz / kSampleRate;
  std::array<float, 2 * kHalf + 1> taps{};
  taps[kHalf] = static_cast<float>((high - low) / std::numbers::pi);
  for (std::size_t n = 1; n <= kHalf; ++n) {
    const auto k = static_cast<double>(n);
    const double window = 0.5 + 0.5 * std::cos(std::numbers::pi * k / (kHalf + 1));
    const double tap = (std::sin(high * k) - std::sin(low * k)) / (std::numbers::pi * k);
    taps[kHalf + n] = taps[kHalf - n] = static_cast<float>(tap * window);
  }
  signal = Convolve(signal, taps, kHalf);
}

}  // namespace veral3::training
