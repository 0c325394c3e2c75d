#include "signal/HighPassFilter.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/Vectors.h"

namespace veral3 {
namespace {

constexpr double kAlpha = 0.977712;  // 80 Hz at 22050 Hz

std::vector<std::int16_t> Filtered(std::vector<std::int16_t> samples) {
  HighPassFilter(samples.data(), static_cast<int>(samples.size()), 80.0, 22050.0);
  return samples;
}

TEST(HighPassFilter, AgreesWithTheReferenceVectors) {
  const auto vectors = test::LoadVectorJson("signal.json");
  ASSERT_EQ(vectors["high_pass"].size(), 13u);
  for (const auto& example : vectors["high_pass"]) {
    SCOPED_TRACE(example["name"].get<std::string>());
    const auto input = test::LoadVector<std::int16_t>(example["input"]);
    ASSERT_EQ(input.size(), example["n"].get<std::size_t>());
    EXPECT_EQ(Filtered(input), test::LoadVector<std::int16_t>(example["expected"]));
  }
}

TEST(HighPassFilter, LeavesSampleZeroAndLoneSamples) {
  EXPECT_EQ(Filtered({}), (std::vector<std::int16_t>{}));
  EXPECT_EQ(Filtered({-32768}), (std::vector<std::int16_t>{-32768}));
  EXPECT_EQ(Filtered({-32768, -32768})[0], -32768);
}

TEST(HighPassFilter, StepGivesAlphaTimesTheStep) {
  EXPECT_EQ(Filtered({0, 32767})[1], static_cast<int>(kAlpha * 32767));
  EXPECT_EQ(Filtered({0, 10000})[1], static_cast<int>(kAlpha * 10000));
  EXPECT_EQ(Filtered({0, -10000})[1], -static_cast<int>(kAlpha * 10000));  // toward zero
}

TEST(HighPassFilter, ClampsAtPlusMinus32767) {
  // Held long enough, the output has come back to zero when the input swings over the full range.
  std::vector<std::int16_t> up(800, -32768);
  up.push_back(32767);
  EXPECT_EQ(Filtered(up).back(), 32767);
  std::vector<std::int16_t> down(800, 32767);
  down.push_back(-32768);
  EXPECT_EQ(Filtered(down).back(), -32767);
}

TEST(HighPassFilter, SenselessArgumentsChangeNothing) {
  const std::vector<std::int16_t> samples = {1, 200, -300};
  for (const double bad : {0.0, -80.0, std::numeric_limits<double>::quiet_NaN()}) {
    auto copy = samples;
    HighPassFilter(copy.data(), 3, bad, 22050.0);
    HighPassFilter(copy.data(), 3, 80.0, bad);
    EXPECT_EQ(copy, samples);
  }
  HighPassFilter(nullptr, 3, 80.0, 22050.0);
  auto copy = samples;
  HighPassFilter(copy.data(), -1, 80.0, 22050.0);
  EXPECT_EQ(copy, samples);
}

}  // namespace
}  // namespace veral3
