#include "signal/WaveformContour.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace veral3 {

std::array<int, kWaveformPoints> WaveformContour(std::span<const std::int16_t> samples, int start,
                                                 int end) {
  constexpr double kLargestPoint = 29490.3;
  const auto size = static_cast<std::int64_t>(samples.size());
  std::int64_t span = (std::int64_t{end} - start) / kWaveformPoints;
  if (span <= 0) span = 1;

  std::array<int, kWaveformPoints> points{};
  std::int64_t block = start;
  for (int& point : points) {
    const std::int64_t from = std::clamp<std::int64_t>(block, 0, size);
    const std::int64_t to = std::clamp<std::int64_t>(block + span, 0, size);
    std::int64_t sum = 0;
    for (std::int64_t i = from; i < to; ++i) {
      sum += std::abs(int{samples[static_cast<std::size_t>(i)]});
    }
    point = static_cast<int>(sum / span);
    block += span;
  }
  const int largest = *std::max_element(points.begin(), points.end());
  if (largest == 0) return points;
  // The quotient is rounded to single precision once; the products are single.
  const float scale = static_cast<float>(kLargestPoint / largest);
  for (int& point : points) point = static_cast<int>(static_cast<float>(point) * scale);
  return points;
}

}  // namespace veral3
