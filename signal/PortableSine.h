#pragma once

#include <array>
#include <cstddef>

// A sine with the same bits on every machine: the C library picks a variant for the processor, and
// the variants differ in the last place.
namespace veral3 {

// Of the Taylor series of sin(x) / x in x squared, as far as double precision goes at pi / 2.
inline constexpr std::array<double, 12> kSineSeries = [] {
  std::array<double, 12> series{1.0};
  for (std::size_t k = 1; k < series.size(); ++k) {
    const auto n = static_cast<double>(2 * k);
    series[k] = -series[k - 1] / (n * (n + 1.0));
  }
  return series;
}();

// sin(x) for 0 <= x <= pi / 2.
inline double QuarterSine(double x) {
  const double y = x * x;
  double sum = kSineSeries.back();
  for (std::size_t k = kSineSeries.size() - 1; k > 0; --k) sum = sum * y + kSineSeries[k - 1];
  return x * sum;
}

}  // namespace veral3
