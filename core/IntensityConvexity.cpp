#include "core/IntensityConvexity.h"

namespace veral3 {
namespace {

constexpr int kRunLength = 6;  // frames in a row that make a rise or a fall

}  // namespace

IntensityConvexity::IntensityConvexity(std::span<const double> intensity) {
  if (intensity.empty()) return;
  m_by_count.assign(intensity.size(), 0.0);
  int rising = 0;
  int falling = 0;
  bool risen = false;
  bool fallen = false;
  bool convex = false;
  double increases = 0.0;
  double previous = 0.0;
  for (std::size_t k = 0; k + 1 < intensity.size(); ++k) {
    const double difference = intensity[k + 1] - intensity[k];
    if (difference > 0.0) {
      ++rising;
      falling = 0;
      if (rising >= kRunLength) risen = true;
    } else {
      rising = 0;
      falling = difference < 0.0 ? falling + 1 : 0;
    }
    if (risen && falling >= kRunLength) fallen = true;
    if (fallen && rising >= kRunLength) convex = true;
    if (k > 0 && difference > previous) increases += difference - previous;
    previous = difference;
    if (convex) m_by_count[k + 1] = increases;
  }
}

double IntensityConvexity::Of(FrameSpan span) const {
  return ReadOr(std::span<const double>(m_by_count), ToInt(span.Length() - 1));
}

}  // namespace veral3
