#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "signal/SignalNoiseRatio.h"
#include "signal/WaveformContour.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using Samples = std::vector<std::int16_t>;

double Ratio(const Samples& samples, const std::vector<int>& start, const std::vector<int>& end) {
  return SignalNoiseRatio(samples, start, end);
}

TEST(SignalNoiseRatio, AgreesWithTheReferenceVectors) {
  const auto vectors = test::LoadVectorJson("signal.json");
  ASSERT_EQ(vectors["signal_noise_ratio"].size(), 4u);
  for (const auto& example : vectors["signal_noise_ratio"]) {
    SCOPED_TRACE(example["name"].get<std::string>());
    const auto samples = test::LoadVector<std::int16_t>(example["samples"]);
    const double expected = example["expected"];
    EXPECT_NEAR(Ratio(samples, example["start"], example["end"]), expected,
                expected * example["rel_tol"].get<double>());
  }
}

TEST(SignalNoiseRatio, MeansOfThePowers) {
  const Samples samples = {1, 1, 10, 20, 1, 1, 10, 10, 3, 3};
  // Speech 100 + 400 + 100 + 100 over 4, noise 4 x 1 + 2 x 9 over 6.
  EXPECT_DOUBLE_EQ(Ratio(samples, {2, 6}, {4, 8}), 175.0 / (22.0 / 6.0));
}

TEST(SignalNoiseRatio, WithoutNoiseOrSpeech) {
  EXPECT_EQ(Ratio({}, {}, {}), 0.0);
  EXPECT_EQ(Ratio({5, 6}, {}, {}), 0.0);
  EXPECT_EQ(Ratio({5, 6}, {0}, {2}), 0.0);        // all speech
  EXPECT_EQ(Ratio({0, 5, 6, 0}, {1}, {3}), 0.0);  // silent noise
  EXPECT_EQ(Ratio({1, 2, 3}, {1}, {1}), 0.0);     // an empty phoneme
}

TEST(SignalNoiseRatio, BoundsOutsideTheRecording) {
  const Samples samples = {1, 2, 3, 4};
  EXPECT_DOUBLE_EQ(Ratio(samples, {2}, {INT_MAX}), 12.5 / 2.5);
  EXPECT_EQ(Ratio(samples, {INT_MIN}, {INT_MAX}), 0.0);
  EXPECT_DOUBLE_EQ(Ratio(samples, {-3, 2}, {1, 3}), 5.0 / 10.0);
  EXPECT_EQ(Ratio(samples, {3}, {1}), 0.0);  // backwards: no speech
}

TEST(WaveformContour, AgreesWithTheReferenceVectors) {
  const auto vectors = test::LoadVectorJson("signal.json");
  ASSERT_EQ(vectors["waveform_contour"].size(), 7u);
  for (const auto& example : vectors["waveform_contour"]) {
    SCOPED_TRACE(example["name"].get<std::string>());
    const auto samples = test::LoadVector<std::int16_t>(example["samples"]);
    const auto points = WaveformContour(samples, example["utt_start"], example["utt_end"]);
    EXPECT_EQ((std::vector<int>(points.begin(), points.end())),
              example["expected"].get<std::vector<int>>());
  }
}

TEST(WaveformContour, SilenceIsZero) {
  for (const int point : WaveformContour(Samples(3000, 0), 0, 3000)) EXPECT_EQ(point, 0);
  for (const int point : WaveformContour({}, 0, 3000)) EXPECT_EQ(point, 0);
}

TEST(WaveformContour, LargestPointIsNinetyPercentOfFullScale) {
  for (const int amplitude : {1, 2, 3, 7, 100, 12345, 29490, 29491, 32767, 32768}) {
    Samples samples(1000, 0);
    samples[500] = static_cast<std::int16_t>(-amplitude);
    const auto points = WaveformContour(samples, 0, 100);
    EXPECT_EQ(*std::max_element(points.begin(), points.end()), 0);  // outside the span of 1
    const auto wide = WaveformContour(samples, 450, 550);
    const int largest = *std::max_element(wide.begin(), wide.end());
    EXPECT_GE(largest, 29489) << amplitude;
    EXPECT_LE(largest, 29490) << amplitude;
  }
}

// Where the product is all but whole, one bit of the scale decides: 50 x 29490.3 / 105 is 14043,
// but the quotient lies below 280.86 once it is rounded to single precision.
TEST(WaveformContour, TheScaleIsRoundedOnce) {
  Samples samples(100, 0);
  samples[0] = 105;
  samples[1] = -50;
  samples[2] = 100;
  const auto points = WaveformContour(samples, 0, 100);
  EXPECT_EQ(points[0], 29490);
  EXPECT_EQ(points[1], 14042);
  EXPECT_EQ(points[2], 28085);
  EXPECT_EQ(points[3], 0);
}

TEST(WaveformContour, ShortUtteranceReadsOneSampleAPoint) {
  Samples samples(400, 0);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<std::int16_t>(i);
  const auto points = WaveformContour(samples, 200, 250);  // reads 200..299
  EXPECT_EQ(points, WaveformContour(samples, 200, 200));
  EXPECT_EQ(points, WaveformContour(samples, 200, 399));
  EXPECT_EQ(points[0], 19725);  // 200 x 29490.3 / 299 = 19725.95
  EXPECT_EQ(points[99], 29490);
  EXPECT_EQ(points, WaveformContour(samples, 200, 100));  // backwards: span 1
}

TEST(WaveformContour, BlocksEndWithTheRecording) {
  const Samples samples(250, 100);
  const auto points = WaveformContour(samples, 0, 400);  // span 4: 62 blocks and a half
  EXPECT_EQ(points[61], 29490);
  EXPECT_EQ(points[62], 29490 / 2);
  EXPECT_EQ(points[63], 0);
  for (const int point : WaveformContour(samples, INT_MAX - 5, INT_MAX)) EXPECT_EQ(point, 0);
  for (const int point : WaveformContour(samples, INT_MIN, INT_MIN + 5)) EXPECT_EQ(point, 0);
  WaveformContour(samples, INT_MIN, INT_MAX);
}

}  // namespace
}  // namespace veral3
