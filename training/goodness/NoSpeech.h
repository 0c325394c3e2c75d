#pragma once

#include <cstdint>
#include <vector>

#include "training/common/Random.h"

// Recordings in which nobody speaks: 22050 Hz, `seconds` long.
namespace veral3::training {

// Digital silence, or the faint hiss of an idle input.
std::vector<std::int16_t> Silence(double seconds, Random& random);

// Steady noise, or noise that comes and goes.
std::vector<std::int16_t> Noise(double seconds, Random& random);

// One to four tones, held or as beeps, over a little noise.
std::vector<std::int16_t> Tones(double seconds, Random& random);

}  // namespace veral3::training
