#include "core/Timing.h"

#include <gtest/gtest.h>

#include "core/Alignments.h"

namespace veral3 {
namespace {

using test::MakeAlignment;

TEST(SyllableDurations, AreEndMinusStart) {
  const AlignmentResult alignment =
      MakeAlignment(40, {{'f', 2, 5}, {'E', 5, 9}, {'s', 12, 20}}, {0, 2});
  EXPECT_EQ(SyllableDurations(alignment), (std::vector<std::int32_t>{7 * 220, 8 * 220}));
}

TEST(SyllableDurations, OfNothing) {
  EXPECT_TRUE(SyllableDurations(MakeAlignment(40, {}, {}, {})).empty());
}

TEST(SyllableDurations, AbsurdTimesStayInts) {
  AlignmentResult alignment = MakeAlignment(40, {{'a', 0, 1}}, {0});
  alignment.phoneme_start[0] = INT32_MIN;
  alignment.phoneme_end[0] = INT32_MAX;
  EXPECT_EQ(SyllableDurations(alignment), std::vector<std::int32_t>{INT32_MAX});
}

}  // namespace
}  // namespace veral3
