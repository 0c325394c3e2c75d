#include "core/UtteranceProbabilities.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/Alignments.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using test::MakeAlignment;

// One syllable of one phoneme over all of `posterior`.
double OfOneSyllable(const std::vector<double>& posterior) {
  const int num_frames = static_cast<int>(posterior.size());
  AlignmentResult alignment = MakeAlignment(num_frames, {{'a', 0, num_frames}}, {0});
  alignment.path_posterior = posterior;
  return CalculateUtteranceProbabilities(alignment).by_syllable;
}

TEST(UtteranceProbabilities, LongProductsMatchTheReferenceVectors) {
  const auto json = test::LoadVectorJson("pronun.json");
  EXPECT_EQ(OfOneSyllable({}), json.at("empty_range").get<double>());
  for (const auto& c : json.at("underflow")) {
    const double expected = c.at("expected");
    EXPECT_NEAR(OfOneSyllable(c.at("path_posterior").get<std::vector<double>>()), expected,
                1e-12 * expected);
  }
}

TEST(UtteranceProbabilities, OverflowIsZero) {
  EXPECT_EQ(OfOneSyllable(std::vector<double>(20, 1e300)), 0.0);
}

TEST(UtteranceProbabilities, AreMeansOfMeans) {
  AlignmentResult alignment = MakeAlignment(10, {{'s', 0, 2}, {'a', 2, 4}, {'t', 5, 6}}, {0, 2});
  alignment.path_posterior = {0.5, 0.5, 0.25, 0.25, 1e-6, 0.125, 1e-6, 1e-6, 1e-6, 1e-6};
  alignment.phoneme_mfcc_prob = {0.5, 0.25, 0.125};
  const UtteranceProbabilities result = CalculateUtteranceProbabilities(alignment);
  EXPECT_DOUBLE_EQ(result.by_syllable, std::sqrt(std::pow(1.0 / 64, 0.25) * 0.125));
  EXPECT_DOUBLE_EQ(result.by_phoneme, 0.25);
}

TEST(UtteranceProbabilities, SyllableWithoutFramesCountsAsOne) {
  AlignmentResult alignment = MakeAlignment(10, {{'s', 2, 2}, {'a', 2, 4}}, {0, 1});
  alignment.path_posterior.assign(10, 0.25);
  EXPECT_DOUBLE_EQ(CalculateUtteranceProbabilities(alignment).by_syllable, 0.5);
}

TEST(UtteranceProbabilities, WithoutWordsAreZero) {
  const UtteranceProbabilities result =
      CalculateUtteranceProbabilities(MakeAlignment(10, {}, {}, {}));
  EXPECT_EQ(result.by_syllable, 0.0);
  EXPECT_EQ(result.by_phoneme, 0.0);
}

TEST(UtteranceProbabilities, NeverReadOutside) {
  test::WildAlignments wild(8);
  for (int round = 0; round < 3000; ++round) {
    const UtteranceProbabilities result = CalculateUtteranceProbabilities(wild.Next());
    ASSERT_TRUE(std::isfinite(result.by_syllable));
    ASSERT_TRUE(std::isfinite(result.by_phoneme));
  }
}

}  // namespace
}  // namespace veral3
