#include "training/measure/Scores.h"

#include <gmock/gmock.h>

#include "training/common/Random.h"

namespace veral3::training {
namespace {

TEST(ClassCounts, CountTopOneTopThreeAndF1) {
  ClassCounts counts(4);
  counts.Add(0, std::vector<double>{0.7, 0.1, 0.1, 0.1});  // right
  counts.Add(1, std::vector<double>{0.6, 0.3, 0.1, 0.0});  // second
  counts.Add(3, std::vector<double>{0.4, 0.3, 0.2, 0.1});  // fourth
  counts.Add(1, std::vector<double>{0.1, 0.6, 0.2, 0.1});  // right
  EXPECT_DOUBLE_EQ(counts.TopOne(), 0.5);
  EXPECT_DOUBLE_EQ(counts.TopThree(), 0.75);
  // Class 0: said 3 times, once right of 1. Class 1: said once, right 1 of 2. Class 3: never right.
  EXPECT_NEAR(counts.MacroF1(), (2.0 / 4 + 2.0 / 3 + 0.0) / 3, 1e-12);
}

TEST(ClassCounts, TiesGoToTheLowerClass) {
  ClassCounts counts(4);
  counts.Add(1, std::vector<double>{0.25, 0.25, 0.25, 0.25});
  counts.Add(3, std::vector<double>{0.25, 0.25, 0.25, 0.25});
  EXPECT_DOUBLE_EQ(counts.TopOne(), 0.0);
  EXPECT_DOUBLE_EQ(counts.TopThree(), 0.5);
}

TEST(ClassCounts, NothingCountedIsNothing) {
  const ClassCounts counts(3);
  EXPECT_EQ(counts.TopOne(), 0.0);
  EXPECT_EQ(counts.MacroF1(), 0.0);
}

TEST(AreaUnderCurve, CountsPairs) {
  EXPECT_DOUBLE_EQ(AreaUnderCurve(std::vector{2.0, 3.0}, std::vector{0.0, 1.0}), 1.0);
  EXPECT_DOUBLE_EQ(AreaUnderCurve(std::vector{1.0}, std::vector{1.0}), 0.5);
  EXPECT_DOUBLE_EQ(AreaUnderCurve(std::vector{0.0, 2.0}, std::vector{1.0}), 0.5);
  EXPECT_DOUBLE_EQ(AreaUnderCurve({}, std::vector{1.0}), 0.0);
}

TEST(ShareBelow, DoesNotCountTheBound) {
  const std::vector<double> scores = {0.0, 59.0, 60.0, 61.0, 100.0};
  EXPECT_DOUBLE_EQ(ShareBelow(scores, 60.0), 0.4);
  EXPECT_DOUBLE_EQ(ShareFrom(scores, 100.0), 0.2);
  EXPECT_DOUBLE_EQ(ShareBelow({}, 60.0), 0.0);
  EXPECT_DOUBLE_EQ(ShareFrom({}, 60.0), 0.0);
}

TEST(MedianOf, OddCounts) {
  EXPECT_EQ(Median({5.0, 1.0, 3.0}), 3.0);
  EXPECT_EQ(Median({}), 0.0);
}

TEST(RandomNumbers, AreTheSameEverywhere) {
  Random random(1);
  EXPECT_EQ(random.Next(), 12966619160104079557u);
  EXPECT_EQ(random.Next(), 9600361134598540522u);
}

}  // namespace
}  // namespace veral3::training
