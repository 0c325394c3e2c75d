#include "storage/FrameSegments.h"

#include <gtest/gtest.h>

#include <limits>

#include "common/LanguageType.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

using nlohmann::json;

void ExpectSegments(const std::vector<FrameSegment>& segments, const json& c) {
  const std::string phonemes = c.at("phonemes");
  ASSERT_EQ(segments.size(), phonemes.size()) << c.at("labels");
  for (std::size_t i = 0; i < segments.size(); ++i) {
    EXPECT_EQ(segments[i].phoneme, phonemes[i]) << c.at("labels");
    EXPECT_EQ(segments[i].start, c.at("start").at(i)) << c.at("labels");
    EXPECT_EQ(segments[i].end, c.at("end").at(i)) << c.at("labels");
  }
}

TEST(FrameSegments, ReferenceLabels) {
  for (const json& c : LoadVectorJson("annotate.json").at("from_labels")) {
    ExpectSegments(SegmentsOf(c.at("labels").get<std::string>(), c.at("num_samples")), c);
  }
}

TEST(FrameSegments, ReferenceScores) {
  for (const json& c : LoadVectorJson("annotate.json").at("from_scores")) {
    const CPhonemeSet& set = *PhonemeSetOf(static_cast<LanguageType>(c.at("language").get<int>()));
    const std::vector<float> singles = LoadVector<float>(c.at("scores"));
    const std::vector<double> scores(singles.begin(), singles.end());
    ASSERT_EQ(scores.size(),
              c.at("frames").get<std::size_t>() * 3 * static_cast<std::size_t>(set.GetSize()));
    std::string labels;
    AppendFrameLabels(set, scores, labels);
    EXPECT_EQ(labels, c.at("labels"));
    ExpectSegments(SegmentsOf(labels, c.at("num_samples")), c);

    // In blocks of one frame.
    const std::size_t row = 3 * static_cast<std::size_t>(set.GetSize());
    std::string alone;
    for (std::size_t i = 0; i < scores.size(); i += row) {
      AppendFrameLabels(set, std::span(scores).subspan(i, row), alone);
    }
    EXPECT_EQ(alone, labels);
  }
}

TEST(FrameSegments, NoMoreThan4096) {
  const json& c = LoadVectorJson("annotate.json").at("limit_4096");
  std::string labels;
  for (int i = 0; i < 8400; ++i) labels += (i / 2) % 2 == 0 ? 'a' : 'b';
  const std::vector<FrameSegment> segments = SegmentsOf(labels, c.at("num_samples"));
  ASSERT_EQ(segments.size(), 4096u);
  EXPECT_EQ(segments.size(), c.at("segments"));
  EXPECT_EQ(segments.back().start, c.at("last_start"));
  EXPECT_EQ(segments.back().end, c.at("last_end"));
}

// The frames before the first count as none, and a phoneme that was heard three frames back does
// not open a segment again.
TEST(FrameSegments, OneOddFrameDoesNotPart) {
  EXPECT_EQ(SegmentsOf("aabaa", 1468).size(), 1u);
  EXPECT_EQ(SegmentsOf("aabcaa", 1688).size(), 2u);
  EXPECT_TRUE(SegmentsOf("**", 808).empty());
  EXPECT_TRUE(SegmentsOf("", 0).empty());
}

// A part of a longer text of labels: what stands behind it is no frame.
TEST(FrameSegments, LabelsEndWhereTheyEnd) {
  const std::string_view labels = "aabb";
  EXPECT_EQ(SegmentsOf(labels, 1211).size(), 2u);
  const std::vector<FrameSegment> segments = SegmentsOf(labels.substr(0, 3), 991);
  ASSERT_EQ(segments.size(), 1u);
  EXPECT_EQ(segments[0].phoneme, 'a');
  EXPECT_EQ(segments[0].start, 0);
  EXPECT_EQ(segments[0].end, 991);
}

// Each of the three states counts, of the set's first phoneme and of its last; a frame's scores end
// before the next one's.
TEST(FrameSegments, EveryStateOfEveryPhonemeCounts) {
  for (const LanguageType language : {kLanguageEnglish, kLanguageChinese, kLanguageJapanese}) {
    const CPhonemeSet& set = *PhonemeSetOf(language);
    const std::string full = set.GetFullSet();
    ASSERT_EQ(full.size(), static_cast<std::size_t>(set.GetSize()));
    const std::size_t row = 3 * full.size();
    for (std::size_t p = 0; p < full.size(); ++p) {
      for (std::size_t state = 0; state < 3; ++state) {
        // The sum of two states decides over the highest state of another phoneme, and the next
        // frame's first phoneme over both of them.
        std::vector<double> scores(2 * row, 0.0);
        const std::size_t other = (p + 1) % full.size();
        scores[3 * other] = 0.5;
        scores[3 * p + state] += 0.4;
        scores[3 * p + (state + 1) % 3] += 0.3;
        scores[row] = 0.9;
        std::string labels;
        AppendFrameLabels(set, scores, labels);
        EXPECT_EQ(labels, (std::string{full[p], full[0]})) << full[p] << " " << state;
      }
    }
  }
}

TEST(FrameSegments, TiesGoToTheFirstPhonemeAndNothingAboveZeroToTheFrameBefore) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageEnglish);
  const auto row = 3 * static_cast<std::size_t>(set.GetSize());
  std::vector<double> scores(4 * row, 0.0);
  scores[3 * 5] = scores[3 * 9 + 2] = 0.25;                    // frame 0: a tie
  scores[row + 4] = -1.0;                                      // frame 1: nothing above 0
  scores[2 * row] = std::numeric_limits<double>::quiet_NaN();  // frame 2: no number is no sum
  scores[2 * row + 3] = std::numeric_limits<double>::denorm_min();
  std::string labels;
  AppendFrameLabels(set, scores, labels);
  const std::string full = set.GetFullSet();
  EXPECT_EQ(labels, (std::string{full[5], full[5], full[1], full[1]}));

  labels.clear();
  AppendFrameLabels(set, std::vector<double>(2 * row, 0.0), labels);
  EXPECT_EQ(labels, "**");
  AppendFrameLabels(set, std::vector<double>(row - 1, 1.0), labels);  // no whole row
  EXPECT_EQ(labels, "**");
}

}  // namespace
}  // namespace veral3::test
