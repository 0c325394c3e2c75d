#include "core/Contours.h"

#include <algorithm>
#include <cmath>

#include "core/Finite.h"
#include "core/FrameSpan.h"
#include "recognition/AlignmentResult.h"

namespace veral3 {
namespace {

constexpr double kContourHeight = 229.5;

// Values are scaled when they spread over at least `min_range`, or over more than 0.
template <typename T>
Contour ScaledContour(std::span<const T> values, int utterance_start, int utterance_end,
                      double min_range) {
  const int begin = FrameOfSample(utterance_start);
  const std::int64_t length = std::int64_t{FrameOfSample(utterance_end)} - begin;
  std::array<double, kContourPoints> points{};
  double max = 0.0;
  double min = FiniteOrZero(static_cast<double>(ReadOr(values, begin)));
  for (std::size_t k = 0; k < points.size(); ++k) {
    const std::int64_t step = static_cast<std::int64_t>(k) * length / kContourPoints;
    points[k] = FiniteOrZero(static_cast<double>(ReadOr(values, ToInt(begin + step))));
    max = std::max(max, points[k]);
    min = std::min(min, points[k]);
  }
  Contour contour{};
  const double range = max - min;
  if (!(range > 0.0) || range < min_range) return contour;
  const double scale = kContourHeight / range;
  if (!std::isfinite(scale) || scale == 0.0) return contour;  // beyond any energy or pitch
  for (std::size_t k = 0; k < points.size(); ++k) {
    contour[k] = static_cast<std::int32_t>((points[k] - min) * scale);
  }
  return contour;
}

}  // namespace

Contour PitchContour(std::span<const std::int32_t> pitch, int utterance_start, int utterance_end) {
  return ScaledContour(pitch, utterance_start, utterance_end, 1.0);
}

Contour IntensityContour(std::span<const double> intensity, int utterance_start,
                         int utterance_end) {
  return ScaledContour(intensity, utterance_start, utterance_end, 0.0);
}

}  // namespace veral3
