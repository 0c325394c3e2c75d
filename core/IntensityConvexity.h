#pragma once

#include <span>
#include <vector>

#include "core/FrameSpan.h"

namespace veral3 {

// Finds energy that rises, falls and rises again, as it does when a syllable is broken in two.
//
// The differences d[k] = intensity[k + 1] - intensity[k] are walked from the first frame of the
// recording, whatever the span; the span only says how many of them there are, one less than it has
// frames. Six rises in a row, then six falls, then six rises make the intensity convex; the value
// then is the sum of the increases d[k + 1] - d[k] > 0 among those differences, else 0.
//
// As only the length of a span counts, one walk answers for every length.
class IntensityConvexity {
 public:
  explicit IntensityConvexity(std::span<const double> intensity);

  // 0 for a span of fewer than 3 frames, or longer than the recording.
  double Of(FrameSpan span) const;

 private:
  std::vector<double> m_by_count;  // [n]: over the first n differences
};

}  // namespace veral3
