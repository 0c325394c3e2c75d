#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace veral3 {

inline constexpr int kContourPoints = 128;
using Contour = std::array<std::int32_t, kContourPoints>;

// For display: the values of 128 frames spread evenly from the start of the utterance to its end
// ([samples]), scaled so that they run from 0 to 229. A value that never changes gives all 0; so do
// frames that `values` lacks.
Contour PitchContour(std::span<const std::int32_t> pitch, int utterance_start, int utterance_end);
Contour IntensityContour(std::span<const double> intensity, int utterance_start, int utterance_end);

}  // namespace veral3
