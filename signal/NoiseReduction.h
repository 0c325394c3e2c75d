#pragma once

#include <cstdint>

namespace veral3 {

// Suppresses steady noise in place, in blocks of 160 samples; what is left over at the end stays as
// it is. `samples`: 16 bit, mono, 22050 Hz. `policy`: how strongly, 0 (mild) to 3.
//
// Returns 1, or -1 with the samples unchanged: without samples, or when the suppressor refuses
// (another policy; with a message on standard output). Any number of threads may call it at once.
int NoiseReduction(std::int16_t* samples, std::uint32_t num_samples, int policy);

}  // namespace veral3
