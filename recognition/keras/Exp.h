#pragma once

#include <bit>
#include <cstdint>
#include <limits>

// The exponential function of the network engine. The C library's exp differs in the last bit
// between machines (it picks a fused variant where there is one) and can't be evaluated in vector
// lanes. This one uses only single additions and multiplications in a fixed order, so the scalar
// and the vector form give the same bits everywhere. Its error is below 1 ulp.
//
// Method: e^x = 2^k e^r with k = round(x / ln 2) and r = x - k ln 2, where ln 2 is split in two so
// that k times its upper part is exact; |r| < 0.347, where 13 terms of the power series suffice.
namespace keras {

namespace exp_detail {
inline constexpr double kInverseLn2 = 0x1.71547652b82fep+0;
inline constexpr double kLn2High = 0x1.62e42feep-1;  // 32 bits
inline constexpr double kLn2Low = 0x1.a39ef35793c76p-33;
inline constexpr double kRounder = 0x1.8p+52;  // adding it rounds to an integer in the low bits
inline constexpr double kLowest = -746.0;      // below: 0
inline constexpr double kHighest = 710.0;      // above: infinity
inline constexpr std::int64_t kTwoBiases = 2 * 1023;
inline constexpr double kSeries[] = {  // 1/13! .. 1/2!
    1.0 / 6227020800.0, 1.0 / 479001600.0, 1.0 / 39916800.0, 1.0 / 3628800.0,
    1.0 / 362880.0,     1.0 / 40320.0,     1.0 / 5040.0,     1.0 / 720.0,
    1.0 / 120.0,        1.0 / 24.0,        1.0 / 6.0,        1.0 / 2.0};
}  // namespace exp_detail

// e to the power x; of NaN the one quiet NaN.
inline double Exp(double x) {
  using namespace exp_detail;
  if (x != x) return std::numeric_limits<double>::quiet_NaN();
  if (x < kLowest) x = kLowest;
  if (x > kHighest) x = kHighest;
  const double rounded = x * kInverseLn2 + kRounder;
  const double k = rounded - kRounder;
  const double r = (x - k * kLn2High) - k * kLn2Low;
  double q = kSeries[0];
  for (int i = 1; i < 12; ++i) q = q * r + kSeries[i];
  const double mantissa = 1.0 + (r + (r * r) * q);
  // 2^k in two factors, since k alone may leave the exponent range.
  const std::int64_t exponent =
      std::bit_cast<std::int64_t>(rounded) - std::bit_cast<std::int64_t>(kRounder) + kTwoBiases;
  const std::int64_t half = exponent >> 1;
  return mantissa * std::bit_cast<double>(half << 52) *
         std::bit_cast<double>((exponent - half) << 52);
}

}  // namespace keras
