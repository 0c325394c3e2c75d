#include "signal/HighPassFilter.h"

namespace veral3 {

void HighPassFilter(std::int16_t* samples, int n, double cutoff_hz, double sample_rate) {
  if (samples == nullptr || n < 2 || !(cutoff_hz > 0.0) || !(sample_rate > 0.0)) return;
  constexpr double kTwoPi = 6.28318530718;
  constexpr double kLimit = 32767.0;
  const double rc = 1.0 / (cutoff_hz * kTwoPi);
  const double alpha = rc / (1.0 / sample_rate + rc);

  double previous_input = samples[0];
  for (int i = 1; i < n; ++i) {
    const double input = samples[i];
    const double previous_output = samples[i - 1];
    const double y = (previous_output + input - previous_input) * alpha;
    if (y > kLimit) {
      samples[i] = 32767;
    } else if (y < -kLimit) {
      samples[i] = -32767;
    } else {
      samples[i] = static_cast<std::int16_t>(y);
    }
    previous_input = input;
  }
}

}  // namespace veral3
