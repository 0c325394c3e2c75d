#include "signal/SincInterpolation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

#include "signal/PortableSine.h"

namespace veral3 {
namespace {

constexpr int kLanes = 4;  // partial sums, added in one order whatever the processor
using Lanes = std::array<double, kLanes>;

// cos(j * angle) for four successive j, moved on four at a time by
// cos(a + b) = 2 cos(b) cos(a) - cos(a - b).
class CosineSeries {
 public:
  // Starts at j = 1..4. 0 < angle <= pi.
  explicit CosineSeries(double angle) {
    const double half_sine = QuarterSine(0.5 * angle);
    const double c1 = 1.0 - 2.0 * half_sine * half_sine;
    const double c2 = 2.0 * c1 * c1 - 1.0;
    const double c3 = 2.0 * c1 * c2 - c1;
    const double c4 = 2.0 * c2 * c2 - 1.0;
    m_now = {c1, c2, c3, c4};
    m_before = {c3, c2, c1, 1.0};  // j = -3..0
    m_factor = 2.0 * c4;
  }

  const Lanes& Values() const { return m_now; }

  void Advance() {
    for (std::size_t l = 0; l < kLanes; ++l) {
      const double next = m_factor * m_now[l] - m_before[l];
      m_before[l] = m_now[l];
      m_now[l] = next;
    }
  }

 private:
  Lanes m_now, m_before;
  double m_factor;
};

constexpr double kGolden = 0.3819660112501051;  // (3 - sqrt 5) / 2
constexpr double kTolerance = 1e-5;             // samples
constexpr int kMostSteps = 40;

}  // namespace

// With u = phi + k the distance of the k-th value to the left, its kernel is
//   sin(pi u) / (pi u) * (1 + cos(pi u / (phi + N))) / 2.
// sin(pi u) is sin(pi phi) with alternating sign, so that one sine serves all. Counted from the far
// end, j = N - k, the cosine is -cos(j pi / (phi + N)): a plain series. The same holds on the right
// with 1 - phi for phi. The two sides share one division.
double SincInterpolate(std::span<const double> symmetric, double lag) {
  const int reach = static_cast<int>(symmetric.size() / 2);
  const double* const r = symmetric.data() + reach;
  const int left = std::min(static_cast<int>(lag), reach);
  const double phi = lag - left;
  if (phi == 0.0 || left == reach) return r[left];

  const int depth = std::min(kSincDepth, reach - left);
  CosineSeries left_cosine(std::numbers::pi / (phi + depth));
  CosineSeries right_cosine(std::numbers::pi / (1.0 - phi + depth));

  // At j = 1 the left value is r[far_left + 1], the right one r[far_right - 1]. The distance is
  // phi + k afresh for every k: counted down it would lose the digits of a small phi.
  const double* far_left = r + (left - depth);
  const double* far_right = r + (left + 1 + depth);
  Lanes k, sum{};
  for (std::size_t l = 0; l < kLanes; ++l) k[l] = depth - 1 - static_cast<int>(l);
  const auto add = [&](std::size_t l) {
    const auto j = static_cast<std::ptrdiff_t>(l) + 1;
    const double a = far_left[j] * (1.0 - left_cosine.Values()[l]);
    const double b = far_right[-j] * (1.0 - right_cosine.Values()[l]);
    const double u = phi + k[l];
    const double v = (1.0 - phi) + k[l];
    sum[l] += (a * v + b * u) / (u * v);
  };
  int remaining = depth;
  for (; remaining >= kLanes; remaining -= kLanes) {
    for (std::size_t l = 0; l < kLanes; ++l) add(l);
    for (std::size_t l = 0; l < kLanes; ++l) k[l] -= kLanes;
    left_cosine.Advance();
    right_cosine.Advance();
    far_left += kLanes;
    far_right -= kLanes;
  }
  for (std::size_t l = 0; l < static_cast<std::size_t>(remaining); ++l) add(l);

  // The k-th value has the sign (-1)^k, so the j-th one (-1)^(depth - j).
  const double alternating = (sum[0] - sum[1]) + (sum[2] - sum[3]);
  const double sign = depth % 2 != 0 ? 1.0 : -1.0;
  const double sine = QuarterSine(std::numbers::pi * std::min(phi, 1.0 - phi));
  return sign * alternating * sine / (2.0 * std::numbers::pi);
}

LagMaximum RefineMaximum(std::span<const double> symmetric, int lag) {
  const double* const r = symmetric.data() + symmetric.size() / 2;
  LagMaximum best{static_cast<double>(lag), r[lag]};
  LagMaximum second{lag - 1.0, r[lag - 1]};
  LagMaximum third{lag + 1.0, r[lag + 1]};
  if (third.value > second.value) std::swap(second, third);
  double low = lag - 1.0, high = lag + 1.0;  // the maximum lies between
  double last_move = 1.0, move_before = 1.0;

  for (int step = 0; step < kMostSteps; ++step) {
    // Vertex of the parabola through the three best points, relative to the best.
    const double s = (best.lag - second.lag) * (best.value - third.value);
    const double t = (best.lag - third.lag) * (best.value - second.value);
    const double numerator = (best.lag - third.lag) * t - (best.lag - second.lag) * s;
    const double denominator = 2.0 * (t - s);
    double move = denominator != 0.0 ? -numerator / denominator : 0.0;
    double next = best.lag + move;
    const bool usable = denominator != 0.0 && next > low && next < high &&
                        std::abs(move) < 0.5 * std::abs(move_before);
    if (usable && std::abs(move) < kTolerance) break;
    if (!usable) {
      move = kGolden * ((high - best.lag > best.lag - low ? high : low) - best.lag);
      if (std::abs(move) < kTolerance) break;
      next = best.lag + move;
    }
    move_before = last_move;
    last_move = move;

    const LagMaximum point{next, SincInterpolate(symmetric, next)};
    if (point.value >= best.value) {
      (point.lag >= best.lag ? low : high) = best.lag;
      third = second;
      second = best;
      best = point;
    } else {
      (point.lag < best.lag ? low : high) = point.lag;
      if (point.value >= second.value) {
        third = second;
        second = point;
      } else if (point.value >= third.value) {
        third = point;
      }
    }
  }
  return best;
}

}  // namespace veral3
