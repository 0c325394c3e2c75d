#include "tools/Numbers.h"

#include <gtest/gtest.h>

#include <limits>

namespace veral3::tools {
namespace {

TEST(Numbers, FixedHasItsDecimals) {
  EXPECT_EQ(Fixed(1.0, 3), "1.000");
  EXPECT_EQ(Fixed(-2.5, 0), "-2");
  EXPECT_EQ(Fixed(1e21, 1), "1000000000000000000000.0");
  EXPECT_EQ(Fixed(-0.0001, 2), "0.00");
  EXPECT_EQ(Fixed(std::numeric_limits<double>::max(), 3).size(), 313u);
  EXPECT_EQ(Fixed(-std::numeric_limits<double>::infinity(), 2), "-inf");
}

TEST(Numbers, RightNeverCuts) {
  EXPECT_EQ(Right("7", 3), "  7");
  EXPECT_EQ(Right("1234", 3), "1234");
}

}  // namespace
}  // namespace veral3::tools
