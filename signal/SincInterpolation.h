#pragma once

#include <span>

// The continuous function behind a sampled autocorrelation, and its maxima (Boersma 1993, eq. 22:
// a sum of sin(x)/x kernels under a raised-cosine window).
//
// `symmetric`: an odd number of values of an even function, at the lags -reach..reach in samples,
// lag 0 in the middle; reach at least 2.
namespace veral3 {

inline constexpr int kSincDepth = 70;  // values used on either side, fewer near the end

// The function at `lag`, 0 <= lag <= reach. At a whole lag it is the sampled value.
double SincInterpolate(std::span<const double> symmetric, double lag);

struct LagMaximum {
  double lag;    // samples
  double value;  // the function there
};

// The maximum of the function within one sample of the sampled maximum at `lag` (1 <= lag <
// reach, no neighbour greater), by successive parabolic interpolation guarded by golden sections.
LagMaximum RefineMaximum(std::span<const double> symmetric, int lag);

}  // namespace veral3
