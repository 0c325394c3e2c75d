#include "signal/RealFft.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <vector>

namespace veral3 {
namespace {

std::vector<float> Noise(std::size_t n) {
  std::minstd_rand engine(static_cast<unsigned>(n));
  std::vector<float> x(n);
  for (float& v : x) v = static_cast<float>(engine() % 65536) - 32768.0F;
  return x;
}

TEST(RealFft, AgreesWithTheDefinition) {
  RealFft fft;  // one object plans every length in turn
  for (std::size_t n = 2; n <= 2048; n *= 2) {
    SCOPED_TRACE(n);
    const std::vector<float> input = Noise(n);
    std::vector<float> x = input;
    fft.Forward(x);
    double norm = 0.0;
    for (const float v : input) norm += static_cast<double>(v) * static_cast<double>(v);
    for (std::size_t k = 0; k < n / 2; ++k) {
      std::complex<double> sum = 0.0;
      for (std::size_t t = 0; t < n; ++t) {
        const double angle =
            -2.0 * std::numbers::pi * static_cast<double>(k * t % n) / static_cast<double>(n);
        sum += static_cast<double>(input[t]) * std::polar(1.0, angle);
      }
      EXPECT_NEAR(static_cast<double>(x[2 * k]), sum.real(), 4e-7 * std::sqrt(norm)) << k;
      EXPECT_NEAR(static_cast<double>(x[2 * k + 1]), sum.imag(), 4e-7 * std::sqrt(norm)) << k;
    }
  }
}

TEST(RealFft, ConstantHasOneBin) {
  std::vector<float> x(1024, 3.0F);
  ThreadRealFft().Forward(x);
  EXPECT_EQ(x[0], 3072.0F);
  for (std::size_t i = 1; i < x.size(); ++i) EXPECT_EQ(x[i], 0.0F);
}

TEST(RealFft, SameBitsEveryTime) {
  const std::vector<float> input = Noise(1024);
  std::vector<float> first = input, second = input;
  ThreadRealFft().Forward(first);
  RealFft().Forward(second);
  EXPECT_EQ(first, second);
}

}  // namespace
}  // namespace veral3
