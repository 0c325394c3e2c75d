#pragma once

#include <cstdint>
#include <span>

namespace veral3 {

// Ratio of the mean power of speech to that of noise (not in dB). Speech is what lies in a phoneme,
// from start[i] up to end[i] (samples), noise what lies between and outside them. Phonemes come in
// order of time; bounds outside the recording are cut off. 0 when the noise has no power or there
// is no speech.
double SignalNoiseRatio(std::span<const std::int16_t> samples, std::span<const int> start,
                        std::span<const int> end);

}  // namespace veral3
