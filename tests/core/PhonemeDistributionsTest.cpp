#include "core/PhonemeDistributions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

#include "common/LanguageType.h"
#include "core/Alignments.h"
#include "core/SyllableSpans.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using test::MakeAlignment;
using test::MessageCapture;

const CPhonemeSet& English() { return *PhonemeSetOf(kLanguageEnglish); }

// Row r, column c: 39 r + c.
std::vector<float> Ramp(int num_frames) {
  std::vector<float> mfcc(static_cast<std::size_t>(num_frames * kMfccSize));
  std::iota(mfcc.begin(), mfcc.end(), 0.0F);
  return mfcc;
}

std::array<float, kPhonemeInputSize> Assemble(const std::vector<float>& mfcc, FrameSpan span) {
  std::array<float, kPhonemeInputSize> input;
  input.fill(-1.0F);
  AssemblePhonemeInput(mfcc, span, input);
  return input;
}

// The first column of each of the 16 frames.
std::vector<float> FirstColumn(const std::array<float, kPhonemeInputSize>& input) {
  std::vector<float> column;
  for (std::size_t i = 0; i < input.size(); i += kMfccSize) column.push_back(input[i]);
  return column;
}

TEST(PhonemeInput, OfThreeFramesHasThirteenOfZeros) {
  const auto c = test::LoadVectorJson("pronun.json").at("three_frame_phoneme");
  const FrameSpan span{FrameOfSample(c.at("start")), FrameOfSample(c.at("end"))};
  ASSERT_EQ(span.Length(), 3);
  const auto input = Assemble(Ramp(6), span);
  EXPECT_EQ(std::vector<float>(input.begin(), input.end()),
            c.at("features").get<std::vector<float>>());
}

TEST(PhonemeInput, TakesSparserFramesTowardsTheEnd) {
  const std::vector<float> column = FirstColumn(Assemble(Ramp(60), {10, 60}));
  std::vector<float> expected;
  for (const int offset : {0, 1, 2, 3, 4, 5, 6, 7, 9, 11, 13, 15, 18, 21, 25, 31}) {
    expected.push_back(static_cast<float>(39 * (10 + offset)));
  }
  EXPECT_EQ(column, expected);
}

TEST(PhonemeInput, TheFirstFrameOfTheRecordingCounts) {
  const auto input = Assemble(Ramp(60), {0, 2});
  for (std::size_t i = 0; i < 2 * kMfccSize; ++i) EXPECT_EQ(input[i], static_cast<float>(i));
  EXPECT_EQ(input[2 * kMfccSize], 0.0F);
}

TEST(PhonemeInput, FrameAtThePhonemesEndIsZero) {
  const std::vector<float> column = FirstColumn(Assemble(Ramp(60), {10, 25}));
  EXPECT_EQ(column[10], 39.0F * 23);  // offset 13
  EXPECT_EQ(column[11], 0.0F);        // offset 15: the end itself
}

TEST(PhonemeInput, NothingIsReadOutsideTheRecording) {
  const std::vector<float> column = FirstColumn(Assemble(Ramp(12), {10, 60}));
  EXPECT_EQ(column[1], 39.0F * 11);
  EXPECT_EQ(column[2], 0.0F);
  for (const FrameSpan span :
       {FrameSpan{-3, 60}, FrameSpan{INT_MAX, INT_MAX}, FrameSpan{INT_MIN, 5}, FrameSpan{5, 2}}) {
    Assemble(Ramp(3), span);
    Assemble({}, span);
  }
}

// Scores each phoneme by its own input alone: value k of a row is the input's k-th, times 2.
bool FakeScores(std::span<const float> inputs, std::span<double> scores) {
  const std::size_t count = inputs.size() / kPhonemeInputSize;
  const std::size_t size = scores.size() / count;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t k = 0; k < size; ++k) {
      scores[i * size + k] = 2.0 * static_cast<double>(inputs[i * kPhonemeInputSize + k]);
    }
  }
  return true;
}

AlignmentResult ThreePhonemes() {
  AlignmentResult alignment = MakeAlignment(20, {{'s', 1, 4}, {'a', 4, 9}, {'t', 12, 20}}, {0});
  alignment.mfcc = Ramp(20);
  return alignment;
}

TEST(ClassifyPhonemes, OneBatchOfAllPhonemes) {
  int calls = 0;
  const PhonemeDistributions result =
      ClassifyPhonemes(English(), ThreePhonemes(),
                       [&](std::span<const float> inputs, std::span<double> scores) {
                         ++calls;
                         EXPECT_EQ(inputs.size(), 3 * kPhonemeInputSize);
                         EXPECT_EQ(scores.size(), 3U * 37);
                         return FakeScores(inputs, scores);
                       },
                       {});
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(result.rows.size(), 3U * 64);
  EXPECT_EQ(result.Row(1).data() - result.Row(0).data(), 64);
  ASSERT_EQ(result.Row(2).size(), kDistributionWidth);
  EXPECT_EQ(result.Row(2)[36], 2.0 * (12 * 39 + 36));
  EXPECT_EQ(result.Row(2)[37], 0.0);  // past the set
  EXPECT_EQ(result.sounds_like, "---");
  EXPECT_EQ(result.sounds_like_prob.size(), 3U);
  EXPECT_TRUE(result.Row(3).empty());
  EXPECT_TRUE(result.Row(-1).empty());
}

TEST(ClassifyPhonemes, OnePhonemeScoresAsItDoesAmongOthers) {
  const AlignmentResult all = ThreePhonemes();
  const PhonemeDistributions together = ClassifyPhonemes(English(), all, FakeScores, {});
  for (int i = 0; i < 3; ++i) {
    AlignmentResult one = all;
    const auto index = static_cast<std::size_t>(i);
    one.phonemes = all.phonemes.substr(index, 1);
    one.phoneme_start[0] = all.phoneme_start[index];
    one.phoneme_end[0] = all.phoneme_end[index];
    const PhonemeDistributions alone = ClassifyPhonemes(English(), one, FakeScores, {});
    EXPECT_TRUE(std::equal(alone.rows.begin(), alone.rows.end(), together.Row(i).begin()));
    EXPECT_EQ(alone.sounds_like_prob[0], together.sounds_like_prob[index]);
  }
}

PhonemeScorer Always(std::vector<double> row) {
  return [row = std::move(row)](std::span<const float>, std::span<double> scores) {
    for (std::size_t i = 0; i < scores.size(); ++i) {
      const std::size_t column = i % 37;
      scores[i] = column < row.size() ? row[column] : 0.0;
    }
    return true;
  };
}

TEST(ClassifyPhonemes, SoundsLikeTheHighestAndTheFirstOfEqual) {
  const PhonemeDistributions result =
      ClassifyPhonemes(English(), ThreePhonemes(), Always({0.1, 0.4, 0.1, 0.4}), {});
  EXPECT_EQ(result.sounds_like, "III");
  EXPECT_DOUBLE_EQ(result.sounds_like_prob[0], 0.4);
}

TEST(ClassifyPhonemes, ProbabilityIsAPartOfTheSum) {
  const PhonemeDistributions result =
      ClassifyPhonemes(English(), ThreePhonemes(), Always({0.5, 1.5}), {});
  EXPECT_EQ(result.sounds_like_prob[1], 0.75);
}

TEST(ClassifyPhonemes, ZeroSumKeepsTheEarlierProbability) {
  PhonemeDistributions earlier;
  earlier.sounds_like_prob = {0.3, 0.6};
  const PhonemeDistributions result =
      ClassifyPhonemes(English(), ThreePhonemes(), Always({0.0}), earlier);
  EXPECT_EQ(result.sounds_like, "iii");
  EXPECT_EQ(result.sounds_like_prob, (std::vector<double>{0.3, 0.6, 0.0}));
}

TEST(ClassifyPhonemes, MissingModelIsReportedOnceAndGivesZeros) {
  PhonemeDistributions earlier;
  earlier.rows.assign(3 * kDistributionWidth, 0.5);
  earlier.sounds_like_prob = {0.3, 0.6, 0.9};
  earlier.sounds_like = "abc";
  const auto without_model = [](std::span<const float>, std::span<double> scores) {
    scores[0] = 5.0;
    return false;
  };
  for (const PhonemeScorer& scorer : {PhonemeScorer(), PhonemeScorer(without_model)}) {
    const MessageCapture messages;
    const PhonemeDistributions result =
        ClassifyPhonemes(English(), ThreePhonemes(), scorer, earlier);
    EXPECT_EQ(result.rows, std::vector<double>(3 * kDistributionWidth, 0.0));
    EXPECT_EQ(result.sounds_like_prob, std::vector<double>(3, 0.0));
    EXPECT_EQ(result.sounds_like, "");
    ASSERT_EQ(messages.Entries().size(), 1U);
    EXPECT_EQ(messages.StandardError(),
              "ERROR in AnalyzedAudio::CalculatePhonProbDistr(), no phoneme model is loaded.\n");
  }
}

class UnknownSet final : public CPhonemeSet {
 public:
  UnknownSet() : CPhonemeSet("xyz", "xyz", 99) {}
  int GetSize() const override { return 3; }
  bool IsVowel(wchar_t) const override { return false; }
  bool IsConsonant(wchar_t) const override { return false; }
};

TEST(ClassifyPhonemes, UnknownSetLeavesTheRowsAndReportsEachPhoneme) {
  const UnknownSet set;
  PhonemeDistributions earlier;
  earlier.rows.assign(2 * kDistributionWidth, 0.0);
  earlier.rows[1] = 0.5;
  earlier.rows[kDistributionWidth + 2] = 0.25;
  earlier.sounds_like_prob = {0.1, 0.1};
  const MessageCapture messages;
  const PhonemeDistributions result = ClassifyPhonemes(
      set, ThreePhonemes(),
      [](std::span<const float>, std::span<double>) -> bool {
        ADD_FAILURE() << "asked for a set that no model is of";
        return true;
      },
      earlier);
  EXPECT_EQ(result.Row(0)[1], 0.5);
  EXPECT_EQ(result.Row(1)[2], 0.25);
  EXPECT_EQ(result.sounds_like, "yzx");
  EXPECT_EQ(result.sounds_like_prob, (std::vector<double>{1.0, 1.0, 0.0}));
  EXPECT_EQ(messages.Entries().size(), 3U);
  EXPECT_EQ(messages.Entries()[0].text,
            "Error, unknown phoneme set in ViterbiAligner::PassToken()\n");
}

TEST(ClassifyPhonemes, NoPhonemesNeedNoModel) {
  const MessageCapture messages;
  const PhonemeDistributions result =
      ClassifyPhonemes(English(), MakeAlignment(20, {}, {}, {}), {}, {});
  EXPECT_TRUE(result.rows.empty());
  EXPECT_TRUE(result.sounds_like.empty());
  EXPECT_TRUE(messages.Entries().empty());
}

TEST(ClassifyPhonemes, AbsurdScoresStayFinite) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double max = std::numeric_limits<double>::max();
  for (const auto& row : std::vector<std::vector<double>>{
           {nan, inf, -inf}, {max, max, max}, {-1.0, -2.0}, {max, -max, 5e-324}}) {
    const PhonemeDistributions result =
        ClassifyPhonemes(English(), ThreePhonemes(), Always(row), {});
    for (const double x : result.rows) EXPECT_TRUE(std::isfinite(x));
    for (const double x : result.sounds_like_prob) EXPECT_TRUE(std::isfinite(x));
    EXPECT_EQ(result.sounds_like.size(), 3U);
  }
}

TEST(ClassifyPhonemes, NeverReadOutside) {
  test::WildAlignments wild(6);
  for (int round = 0; round < 500; ++round) {
    const AlignmentResult alignment = wild.Next();
    const PhonemeDistributions result = ClassifyPhonemes(English(), alignment, FakeScores, {});
    ASSERT_EQ(result.sounds_like.size(), static_cast<std::size_t>(CountPhonemes(alignment)));
  }
}

}  // namespace
}  // namespace veral3
