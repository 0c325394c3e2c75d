#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace veral3 {

inline constexpr int kWaveformPoints = 100;

// The amplitude of an utterance in 100 points for display: mean magnitudes of consecutive blocks,
// scaled so that the largest is 29490 (90% of full scale); all 0 for silence. A block has a
// hundredth of the utterance's samples, at least one. `start`, `end`: the utterance's samples; what
// lies outside the recording counts as 0.
std::array<int, kWaveformPoints> WaveformContour(std::span<const std::int16_t> samples, int start,
                                                 int end);

}  // namespace veral3
