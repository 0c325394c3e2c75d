#include "core/Contours.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "support/Vectors.h"

namespace veral3 {
namespace {

std::vector<std::int32_t> Points(const Contour& contour) {
  return {contour.begin(), contour.end()};
}

TEST(Contours, MatchTheReferenceVectors) {
  const auto cases = test::LoadVectorJson("prosody.json").at("contours");
  ASSERT_EQ(cases.size(), 24U);
  for (const auto& c : cases) {
    const int start = c.at("utt_start");
    const int end = c.at("utt_end");
    EXPECT_EQ(Points(PitchContour(c.at("pitch").get<std::vector<std::int32_t>>(), start, end)),
              c.at("pitch_contour").get<std::vector<std::int32_t>>());
    EXPECT_EQ(Points(IntensityContour(c.at("intensity").get<std::vector<double>>(), start, end)),
              c.at("intensity_contour").get<std::vector<std::int32_t>>());
  }
}

TEST(Contours, FlatTrackIsAllZero) {
  EXPECT_EQ(PitchContour(std::vector<std::int32_t>(50, 180), 220, 40 * 220), Contour{});
  EXPECT_EQ(PitchContour(std::vector<std::int32_t>(50, 0), 220, 40 * 220), Contour{});
  EXPECT_EQ(IntensityContour(std::vector<double>(50, 0.0), 220, 40 * 220), Contour{});
  EXPECT_EQ(IntensityContour(std::vector<double>(50, 8e9), 220, 40 * 220), Contour{});
}

TEST(Contours, RunFromZeroTo229) {
  std::vector<std::int32_t> pitch(50, 100);
  pitch[20] = 300;
  const Contour contour = PitchContour(pitch, 0, 50 * 220);
  EXPECT_EQ(*std::min_element(contour.begin(), contour.end()), 0);
  EXPECT_EQ(*std::max_element(contour.begin(), contour.end()), 229);
}

// A spread of the contour's own height needs no scaling and is drawn as it is.
TEST(Contours, SpreadOfTheContoursHeightStaysAsItIs) {
  std::vector<double> intensity(128);
  for (std::size_t k = 0; k < 128; ++k) intensity[k] = static_cast<double>(k);
  intensity[127] = 229.5;
  const Contour contour = IntensityContour(intensity, 0, 128 * 220);
  for (std::size_t k = 0; k < 127; ++k) EXPECT_EQ(contour[k], static_cast<int>(k));
  EXPECT_EQ(contour[127], 229);
}

TEST(Contours, SmallestSpreadOfPitchIsScaled) {
  std::vector<std::int32_t> pitch(50, 100);
  pitch[20] = 101;
  EXPECT_EQ(PitchContour(pitch, 0, 50 * 220)[static_cast<std::size_t>(20 * 128 / 50 + 1)], 229);
}

TEST(Contours, ReadEveryFrameOfAnUtteranceOfOneHundredAndTwentyEight) {
  std::vector<std::int32_t> pitch(140);
  for (std::size_t i = 0; i < pitch.size(); ++i) pitch[i] = static_cast<std::int32_t>(i * 2);
  const Contour contour = PitchContour(pitch, 5 * 220, 133 * 220);
  for (std::size_t k = 0; k < contour.size(); ++k) {
    EXPECT_EQ(contour[k], static_cast<int>(static_cast<double>(2 * k) * (229.5 / 254.0)));
  }
}

TEST(Contours, NoFramesOrNoUtteranceIsAllZero) {
  EXPECT_EQ(PitchContour({}, 0, 0), Contour{});
  EXPECT_EQ(PitchContour({}, 220, 4400), Contour{});
  EXPECT_EQ(IntensityContour({}, 220, 4400), Contour{});
  EXPECT_EQ(PitchContour(std::vector<std::int32_t>{100, 200}, 0, 0), Contour{});
  EXPECT_EQ(IntensityContour(std::vector<double>{5.0, 7.0}, 0, 0), Contour{});
}

TEST(Contours, AbsurdValuesStayInRange) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<std::vector<double>> curves = {
      {1.0, inf, 2.0}, {nan, 1.0, 2.0}, {5e-324, 0.0, 0.0}, {1e308, -1e308, 0.0}};
  for (const auto& curve : curves) {
    for (const int point : IntensityContour(curve, 0, 3 * 220)) {
      EXPECT_GE(point, 0);
      EXPECT_LE(point, 229);
    }
  }
  const std::vector<std::int32_t> pitch = {INT32_MIN, INT32_MAX, 0};
  EXPECT_EQ(PitchContour(pitch, 0, 3 * 220)[0], 0);
  EXPECT_EQ(PitchContour(pitch, 0, 3 * 220)[64], 229);
  PitchContour(pitch, INT32_MIN, INT32_MAX);
  PitchContour(pitch, INT32_MAX, INT32_MIN);
}

}  // namespace
}  // namespace veral3
