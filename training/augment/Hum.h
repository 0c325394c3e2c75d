#pragma once

#include <vector>

#include "training/common/Random.h"

namespace veral3::training {

// Adds hum of the mains, 50 or 60 Hz, with eleven harmonics of random strength, by this root mean
// square in all. Its frequency is off by up to 0.1 Hz, as that of the mains is.
void AddHum(std::vector<float>& signal, double rms, Random& random);

}  // namespace veral3::training
