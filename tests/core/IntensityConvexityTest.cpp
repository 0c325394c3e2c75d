#include "core/IntensityConvexity.h"

#include <gtest/gtest.h>

#include <random>

#include "support/Vectors.h"

namespace veral3 {
namespace {

// The definition, one span at a time.
double SlowConvexity(const std::vector<double>& intensity, FrameSpan span) {
  const int n = span.end - span.begin - 1;
  std::vector<double> d;
  for (int k = 0; k < n; ++k) {
    d.push_back(intensity[static_cast<std::size_t>(k) + 1] -
                intensity[static_cast<std::size_t>(k)]);
  }
  int rising = 0;
  int falling = 0;
  bool risen = false;
  bool fallen = false;
  bool convex = false;
  for (const double x : d) {
    if (x > 0) {
      ++rising;
      falling = 0;
      risen = risen || rising == 6;
    } else {
      rising = 0;
      falling = x < 0 ? falling + 1 : 0;
    }
    fallen = fallen || (risen && falling >= 6);
    convex = convex || (fallen && rising >= 6);
  }
  double sum = 0.0;
  for (std::size_t k = 0; k + 1 < d.size(); ++k) {
    if (d[k + 1] > d[k]) sum += d[k + 1] - d[k];
  }
  return convex ? sum : 0.0;
}

// Steps of the given lengths, up and down in turn.
std::vector<double> ZigZag(const std::vector<int>& runs) {
  std::vector<double> intensity = {1000.0};
  double step = 10.0;
  for (const int run : runs) {
    for (int i = 0; i < run; ++i) intensity.push_back(intensity.back() + step);
    step = -step;
  }
  return intensity;
}

FrameSpan All(const std::vector<double>& intensity) {
  return {0, static_cast<int>(intensity.size())};
}

TEST(IntensityConvexity, MatchesTheReferenceVectors) {
  const auto cases = test::LoadVectorJson("prosody.json").at("convexity");
  ASSERT_EQ(cases.size(), 108U);
  for (const auto& c : cases) {
    const auto intensity = c.at("intensity").get<std::vector<double>>();
    const FrameSpan span{c.at("from"), c.at("to")};
    EXPECT_EQ(IntensityConvexity(intensity).Of(span), c.at("expected").get<double>()) << c;
  }
}

TEST(IntensityConvexity, NeedsThreeRunsOfSix) {
  EXPECT_GT(IntensityConvexity(ZigZag({6, 6, 6})).Of({0, 19}), 0.0);
  EXPECT_EQ(IntensityConvexity(ZigZag({5, 6, 6})).Of({0, 18}), 0.0);
  EXPECT_EQ(IntensityConvexity(ZigZag({6, 5, 6})).Of({0, 18}), 0.0);
  EXPECT_EQ(IntensityConvexity(ZigZag({6, 6, 5})).Of({0, 18}), 0.0);
}

TEST(IntensityConvexity, StandingStillBreaksARun) {
  std::vector<double> intensity = ZigZag({6, 6, 6});
  intensity.insert(intensity.begin() + 15, intensity[15]);
  EXPECT_EQ(IntensityConvexity(intensity).Of(All(intensity)), 0.0);
}

// Nor does a frame that stands still begin one: after it five steps down are five.
TEST(IntensityConvexity, StandingStillIsNoStep) {
  const auto with_pause = [](int steps_after) {
    std::vector<double> intensity = ZigZag({6});
    intensity.push_back(intensity.back());
    for (int i = 0; i < steps_after; ++i) intensity.push_back(intensity.back() - 10.0);
    for (int i = 0; i < 6; ++i) intensity.push_back(intensity.back() + 10.0);
    return intensity;
  };
  EXPECT_EQ(IntensityConvexity(with_pause(5)).Of(All(with_pause(5))), 0.0);
  EXPECT_GT(IntensityConvexity(with_pause(6)).Of(All(with_pause(6))), 0.0);
}

TEST(IntensityConvexity, ReadsFromTheFirstFrameWhereverTheSpanLies) {
  std::vector<double> intensity = ZigZag({6, 6, 6});
  intensity.resize(60, 5.0);  // the span below holds nothing but a constant
  const IntensityConvexity convexity(intensity);
  EXPECT_EQ(convexity.Of({40, 59}), convexity.Of({0, 19}));
  EXPECT_EQ(convexity.Of({40, 59}), 20.0);
  // The same shape inside the span only is not seen.
  std::vector<double> late(30, 5.0);
  for (const double x : ZigZag({6, 6, 6})) late.push_back(x);
  EXPECT_EQ(IntensityConvexity(late).Of({30, 49}), 0.0);
}

TEST(IntensityConvexity, ShortAndImpossibleSpansGiveZero) {
  const IntensityConvexity convexity(ZigZag({6, 6, 6, 6}));
  EXPECT_EQ(convexity.Of({5, 5}), 0.0);
  EXPECT_EQ(convexity.Of({5, 6}), 0.0);
  EXPECT_EQ(convexity.Of({5, 7}), 0.0);
  EXPECT_EQ(convexity.Of({9, 2}), 0.0);
  EXPECT_EQ(convexity.Of({0, 1000}), 0.0);
  EXPECT_EQ(convexity.Of({INT_MIN, INT_MAX}), 0.0);
  EXPECT_EQ(IntensityConvexity({}).Of({0, 19}), 0.0);
  const std::vector<double> one = {1.0};
  EXPECT_EQ(IntensityConvexity(one).Of({0, 1}), 0.0);
}

TEST(IntensityConvexity, EveryLengthEqualsItsOwnWalk) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    std::vector<int> runs;
    for (int i = 0; i < 8; ++i) runs.push_back(static_cast<int>(random() % 9));
    std::vector<double> intensity = ZigZag(runs);
    for (double& x : intensity) x = x * 1e7 + static_cast<double>(random() % 100);
    const IntensityConvexity convexity(intensity);
    for (int end = 0; end <= static_cast<int>(intensity.size()); ++end) {
      ASSERT_EQ(convexity.Of({0, end}), SlowConvexity(intensity, {0, end}));
    }
  }
}

}  // namespace
}  // namespace veral3
