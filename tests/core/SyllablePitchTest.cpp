#include "core/SyllablePitch.h"

#include <gtest/gtest.h>

#include <vector>

namespace veral3 {
namespace {

const std::vector<std::int32_t> kPitch = {0, 0, 120, 130, 0, 125, 0, 90, 0, 0};

TEST(HighestPitch, IsThatOfTheSpan) {
  EXPECT_EQ(HighestPitch(kPitch, {1, 7}), 130);
  EXPECT_EQ(HighestPitch(kPitch, {4, 10}), 125);
  EXPECT_EQ(HighestPitch(kPitch, {8, 10}), 0);
}

TEST(HighestPitch, ReadsTheFirstFrameOfAnEmptySpan) {
  EXPECT_EQ(HighestPitch(kPitch, {3, 3}), 130);
  EXPECT_EQ(HighestPitch(kPitch, {7, 2}), 90);
  EXPECT_EQ(HighestPitch(kPitch, {10, 10}), 0);
  EXPECT_EQ(HighestPitch({}, {0, 5}), 0);
}

TEST(VoicedPitch, FirstAndLastOfTheSpan) {
  EXPECT_EQ(FirstVoicedPitch(kPitch, {0, 10}), 120);
  EXPECT_EQ(LastVoicedPitch(kPitch, {0, 10}), 90);
  EXPECT_EQ(FirstVoicedPitch(kPitch, {4, 7}), 125);
  EXPECT_EQ(LastVoicedPitch(kPitch, {2, 5}), 130);
}

TEST(VoicedPitch, UnvoicedEmptyAndOutsideGiveZero) {
  EXPECT_EQ(FirstVoicedPitch(kPitch, {8, 10}), 0);
  EXPECT_EQ(LastVoicedPitch(kPitch, {0, 2}), 0);
  EXPECT_EQ(FirstVoicedPitch(kPitch, {3, 3}), 0);
  EXPECT_EQ(LastVoicedPitch(kPitch, {50, 60}), 0);
  EXPECT_EQ(FirstVoicedPitch({}, {0, 3}), 0);
}

TEST(Averages, AreTruncatedAndZeroOfNothing) {
  EXPECT_EQ(AveragePitch(std::vector<std::int32_t>{100, 101, 0}), 67);
  EXPECT_EQ(AveragePitch(std::vector<std::int32_t>{100, 101}), 100);
  EXPECT_EQ(AveragePitch({}), 0);
  EXPECT_EQ(AverageLength(std::vector<FrameSpan>{{0, 5}, {5, 11}}), 5);
  EXPECT_EQ(AverageLength({}), 0);
}

}  // namespace
}  // namespace veral3
