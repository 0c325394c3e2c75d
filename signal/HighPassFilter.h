#pragma once

#include <cstdint>

namespace veral3 {

// First-order RC high-pass filter, in place.
//
//   HighPassFilter(samples.data(), n, 80.0, 22050.0);   // what alignment does to a recording
//
// `cutoff_hz`: -3 dB point, `sample_rate` in Hz; unless both are above 0 nothing changes. Sample 0
// stays as it is, and so do fewer than 2 samples. Output is cut off at +-32767 (never -32768) and
// truncated toward zero; each output sample is computed from the truncated one before it.
void HighPassFilter(std::int16_t* samples, int n, double cutoff_hz, double sample_rate);

}  // namespace veral3
