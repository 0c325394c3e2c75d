#pragma once

#include <cstdint>
#include <vector>

namespace veral3 {

inline constexpr int kMfccSize = 39;  // values a frame

// The MFCC features of a whole recording: NumFrames(num_samples) rows of kMfccSize floats, row
// after row (c1..c12 with the utterance mean removed, normalised log energy, 13 deltas, 13
// accelerations). `samples`: 16 bit, mono, 22050 Hz. Fewer than 551 samples give no rows, and so do
// more than 2^31 - 1 (27 hours; with a message). Any number of threads may call it at once; the
// same samples always give the same bits.
std::vector<float> ComputeMfcc(const std::int16_t* samples, std::uint32_t num_samples);

// Whether rows of that many values are MFCC features; says so on standard error when not.
bool IsMfccRowLength(int num_values);

}  // namespace veral3
