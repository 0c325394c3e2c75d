#include "recognition/MfccProbabilities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "recognition/AlignerCases.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using nlohmann::json;

void ExpectNear(const std::vector<double>& got, const json& want, double tolerance) {
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    const double value = want[i];
    EXPECT_LE(std::abs(got[i] - value), tolerance * std::abs(value)) << i;
  }
}

TEST(MfccProbabilities, Vectors) {
  const json vectors = test::LoadVectorJson("pronun.json");
  for (const json& entry : vectors["cases"]) {
    SCOPED_TRACE(entry["name"].get<std::string>());
    AlignmentResult alignment;
    alignment.num_frames = entry["frames"];
    alignment.phonemes = entry["alignment"]["phonemes"];
    const auto start = entry["alignment"]["start"].get<std::vector<std::int32_t>>();
    const auto end = entry["alignment"]["end"].get<std::vector<std::int32_t>>();
    std::ranges::copy(start, alignment.phoneme_start.begin());
    std::ranges::copy(end, alignment.phoneme_end.begin());
    alignment.path_posterior = entry["path_posterior"].get<std::vector<double>>();
    ExpectNear(PhonemeProbabilities(alignment), entry["phon_mfcc_prob"], entry["rel_tol"]);
    ExpectNear(PauseProbabilities(alignment), entry["pause_mfcc_prob"], entry["rel_tol"]);
  }
}

TEST(MfccProbabilities, EmptyRangesAndUnderflow) {
  const json vectors = test::LoadVectorJson("pronun.json");
  std::vector<double> low;
  for (const json& entry : vectors["underflow"]) {
    low = entry["path_posterior"].get<std::vector<double>>();
    ExpectNear({GeometricMean(low, 0, static_cast<int>(low.size()))},
               json::array({entry["expected"]}), 1e-12);
  }
  EXPECT_EQ(GeometricMean(low, 3, 3), vectors["empty_range"].get<double>());
  EXPECT_EQ(GeometricMean(low, 3, 2), 1.0);
  EXPECT_EQ(GeometricMean(low, 0, 1), low[0]);
}

TEST(MfccProbabilities, PosteriorFollowsThePath) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageJapanese);
  AlignmentResult alignment = test::Spoken(set, "-0-1a0a1a2-0", 0.5, 0.125);
  alignment.path = {{'*', 0, false, 0, 1, 0},   {'-', 0, false, 0, 2, 0},
                    {'a', 0, true, 0, 5, 440},  {'a', 1, false, 0, 6, 660},
                    {'a', 2, false, 0, 7, 880}, {'$', 0, false, 0, 0, 1100}};
  const std::vector<double> expected = {0.75, 0.75, 0.75, 0.75, 0.75, 0.0};
  EXPECT_EQ(PathPosterior(set, alignment), expected);

  alignment.path[2].phoneme = 'o';  // the frames say something else: three low scores
  EXPECT_EQ(PathPosterior(set, alignment)[2], 0.375);
}

TEST(MfccProbabilities, WithoutPhonemes) {
  AlignmentResult alignment;
  alignment.num_frames = 2;
  alignment.path_posterior = {0.5, 0.0};
  EXPECT_TRUE(PhonemeProbabilities(alignment).empty());
  EXPECT_EQ(PauseProbabilities(alignment), std::vector<double>{0.0});
}

}  // namespace
}  // namespace veral3
