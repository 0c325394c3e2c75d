#include "recognition/keras/Activation.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "recognition/keras/Exp.h"

namespace veral3::test {
namespace {

double UlpsFrom(double got, long double exact) {
  const double nearest = static_cast<double>(exact);
  const long double ulp = static_cast<long double>(std::nextafter(nearest, HUGE_VAL)) -
                          static_cast<long double>(nearest);
  return static_cast<double>(std::abs(static_cast<long double>(got) - exact) / ulp);
}

TEST(Exp, WithinOneUlpOfTheExactValue) {
  std::mt19937_64 random(1);
  double worst = 0.0;
  for (const double range : {0.5, 2.0, 40.0, 708.0}) {
    std::uniform_real_distribution<double> uniform(-range, range);
    for (int i = 0; i < 300000; ++i) {
      const double x = uniform(random);
      worst = std::max(worst, UlpsFrom(keras::Exp(x), std::exp(static_cast<long double>(x))));
    }
  }
  EXPECT_LT(worst, 1.0);
  RecordProperty("worst_ulps", std::to_string(worst));
}

TEST(Exp, EndsOfTheRange) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(keras::Exp(0.0), 1.0);
  EXPECT_EQ(keras::Exp(-0.0), 1.0);
  EXPECT_EQ(keras::Exp(infinity), infinity);
  EXPECT_EQ(keras::Exp(-infinity), 0.0);
  EXPECT_EQ(keras::Exp(1e300), infinity);
  EXPECT_EQ(keras::Exp(-1e300), 0.0);
  EXPECT_EQ(keras::Exp(709.782712893385), infinity);
  EXPECT_LT(keras::Exp(709.78271289338), infinity);
  EXPECT_EQ(keras::Exp(-745.2), 0.0);
  EXPECT_EQ(keras::Exp(-745.1), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(keras::Exp(5e-324), 1.0);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(std::bit_cast<std::uint64_t>(keras::Exp(nan)), std::bit_cast<std::uint64_t>(nan));
  for (double x = -745.0; x < -708.0; x += 0.37) {  // results that are not normal numbers
    EXPECT_LT(UlpsFrom(keras::Exp(x), std::exp(static_cast<long double>(x))), 1.0) << x;
  }
}

TEST(Activation, Words) {
  EXPECT_EQ(keras::ActivationOfWord("relu"), 'r');
  EXPECT_EQ(keras::ActivationOfWord("softmax"), 'x');
  EXPECT_EQ(keras::ActivationOfWord("sigmoid"), 'g');
  EXPECT_EQ(keras::ActivationOfWord("tanh"), 't');
  EXPECT_EQ(keras::ActivationOfWord(""), 0);
  EXPECT_EQ(keras::ActivationOfWord("ReLU"), 0);
}

TEST(Activation, EmptySoftmax) { keras::ApplyActivation('x', {}); }

TEST(Activation, SigmoidOfLargeValues) {
  double values[] = {1000.0, -1000.0, 0.0};
  keras::ApplyActivation('g', values);
  EXPECT_EQ(values[0], 1.0);
  EXPECT_EQ(values[1], 0.0);
  EXPECT_EQ(values[2], 0.5);
}

}  // namespace
}  // namespace veral3::test
