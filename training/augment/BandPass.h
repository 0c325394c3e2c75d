#pragma once

#include <vector>

namespace veral3::training {

// Keeps what lies between two frequencies [Hz], as a telephone does: 511 symmetric taps, half gone
// at the corners and silent about 90 Hz beyond. The delay is taken out: the length stays.
void BandPass(std::vector<float>& signal, double low_hz, double high_hz);

}  // namespace veral3::training
