#include "tools/ScoreHints.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace veral3::tools {
namespace {

// ---- what the samples tell ----

TEST(ClippedShare, CountsRunsAtTheExtremes) {
  // 11 of 20 samples lie in runs of three and more within a hundredth of highest or lowest value.
  const std::vector<std::int16_t> samples = {0,     10000, 10000, 9950, 9900,  0,     -8000,
                                             -8000, -7990, -7999, 0,    10000, 10000, 0,
                                             -8000, 0,     9901,  9999, 10000, -1};
  EXPECT_DOUBLE_EQ(ClippedShare(samples), 11.0 / 20.0);
}

TEST(ClippedShare, AboveAHundredthBelowAndInPairsNothingCounts) {
  EXPECT_EQ(ClippedShare(std::vector<std::int16_t>{10000, 9899, 9899, 9899, 0, 10000, 10000}), 0.0);
  EXPECT_EQ(ClippedShare(std::vector<std::int16_t>(100, 0)), 0.0);
  EXPECT_EQ(ClippedShare({}), 0.0);
}

TEST(ClippedShare, SoftRecordingsAreNotJudged) {
  EXPECT_EQ(ClippedShare(std::vector<std::int16_t>(100, 255)), 0.0);
  EXPECT_EQ(ClippedShare(std::vector<std::int16_t>(100, -255)), 0.0);
  EXPECT_EQ(ClippedShare(std::vector<std::int16_t>(100, 256)), 1.0);
  EXPECT_EQ(ClippedShare(std::vector<std::int16_t>(100, -32768)), 1.0);
}

TEST(ClippedShare, ASineOfFullHeightIsNot) {
  // 441 Hz: 50 samples a period, of which two or three lie within a hundredth of each extreme.
  std::vector<std::int16_t> voice;
  for (int i = 0; i < 22050; ++i) {
    const double swell = 0.5 + 0.5 * i / 22050.0;
    voice.push_back(static_cast<std::int16_t>(32000.0 * swell * std::sin(i * 0.0400 * M_PI)));
  }
  EXPECT_LT(ClippedShare(voice), 0.01);
}

// `seconds` of a square wave: each frame's energy is 551 x height x height.
void Append(std::vector<std::int16_t>& samples, double seconds, int height) {
  const auto count = static_cast<std::size_t>(seconds * 22050.0);
  for (std::size_t i = 0; i < count; ++i) {
    samples.push_back(static_cast<std::int16_t>(i % 2 == 0 ? height : -height));
  }
}

TEST(MeasureLevels, AreRatiosOfTheFrames) {
  std::vector<std::int16_t> samples;
  Append(samples, 0.5, 100);
  Append(samples, 1.0, 10000);
  Append(samples, 0.5, 1000);
  const auto levels = MeasureLevels(samples, 11025, 33075);
  ASSERT_TRUE(levels);
  EXPECT_NEAR(levels->range_db, 40.0, 0.01);
  EXPECT_NEAR(levels->start_db, -40.0, 0.01);
  EXPECT_NEAR(levels->end_db, -20.0, 0.01);
  // Of the speech alone: the loud part lies outside here.
  const auto soft_speech = MeasureLevels(samples, 0, 8000);
  ASSERT_TRUE(soft_speech);
  EXPECT_NEAR(soft_speech->range_db, 0.0, 0.01);
  EXPECT_NEAR(soft_speech->end_db, 20.0, 0.01);
}

TEST(MeasureLevels, SilenceIsNoSoftSound) {
  std::vector<std::int16_t> samples(22050, 0);
  Append(samples, 1.0, 10000);
  const auto levels = MeasureLevels(samples, 22050, 44100);
  ASSERT_TRUE(levels);
  // But for the frames that the sound starts in, all that sound are alike.
  EXPECT_LT(levels->range_db, 6.0);
  EXPECT_LT(levels->start_db, -100.0);
  EXPECT_NEAR(levels->end_db, 0.0, 0.01);
}

TEST(MeasureLevels, NothingWithoutSound) {
  EXPECT_FALSE(MeasureLevels(std::vector<std::int16_t>(22050, 0), 0, 22050));
  EXPECT_FALSE(MeasureLevels(std::vector<std::int16_t>(22050, 100), 5000, 5000));
  EXPECT_FALSE(MeasureLevels(std::vector<std::int16_t>(550, 100), 0, 550));
  EXPECT_FALSE(MeasureLevels({}, 0, 0));
}

// ---- the thresholds, as docs/command.md states them ----

TEST(ScoreHints, Noise) {
  EXPECT_TRUE(IsNoisy(11.9));
  EXPECT_FALSE(IsNoisy(12.0));
}

TEST(ScoreHints, Clipping) {
  EXPECT_TRUE(IsClipped(0.01));
  EXPECT_FALSE(IsClipped(0.0099));
}

TEST(ScoreHints, CutOff) {
  EXPECT_TRUE(IsCutOff(-8.0, 30.0, 0.1));
  EXPECT_FALSE(IsCutOff(-8.1, 30.0, 0.1));
  EXPECT_FALSE(IsCutOff(-8.0, 30.0, 0.11));
  EXPECT_TRUE(IsCutOff(-3.0, 13.0, 0.0));
  EXPECT_FALSE(IsCutOff(-3.0, 12.9, 0.0));
}

TEST(ScoreHints, OtherSentence) {
  EXPECT_TRUE(IsOtherSentence(10, 5, 30.0, false));
  EXPECT_FALSE(IsOtherSentence(11, 5, 30.0, false));
  EXPECT_TRUE(IsOtherSentence(10, 7, 30.0, true));
  EXPECT_FALSE(IsOtherSentence(10, 6, 30.0, true));
  EXPECT_TRUE(IsOtherSentence(10, 10, 5.0, true));
  EXPECT_FALSE(IsOtherSentence(10, 10, 4.9, true));
  EXPECT_FALSE(IsOtherSentence(0, 0, 30.0, false));
}

TEST(ScoreHints, MoreSound) {
  EXPECT_TRUE(HasMoreSound(0.3, 0.0));
  EXPECT_TRUE(HasMoreSound(0.0, 0.3));
  EXPECT_FALSE(HasMoreSound(0.29, 0.29));
}

// ---- which stand beside which ----

std::string Reasons(const RecordingSigns& signs) {
  std::string all;
  for (const ScoreHint& hint : HintsOf(signs)) {
    if (!all.empty()) all += " ";
    all += hint.reason;
  }
  return all;
}

RecordingSigns Clean() {
  RecordingSigns signs;
  signs.levels = SoundLevels{30.0, -30.0, -25.0};
  signs.phonemes = 20;
  signs.unlike = 2;
  return signs;
}

TEST(ScoreHints, WhatCannotBeToldIsNotGiven) {
  EXPECT_EQ(Reasons(Clean()), "");
  RecordingSigns unheard = Clean();
  unheard.levels.reset();
  unheard.unlike = 20;
  EXPECT_EQ(Reasons(unheard), "");

  // In noise there is loud sound everywhere, and sounds are hard to tell.
  RecordingSigns noisy = Clean();
  noisy.levels->range_db = 6.0;
  noisy.unlike = 13;
  noisy.loud_before_s = 1.0;
  EXPECT_EQ(Reasons(noisy), "noise");
  noisy.unlike = 14;
  EXPECT_EQ(Reasons(noisy), "noise other_sentence");
  noisy.levels->range_db = 4.0;
  EXPECT_EQ(Reasons(noisy), "noise");

  // Clipping lifts what is soft.
  RecordingSigns clipped = Clean();
  clipped.clipped_share = 0.04;
  clipped.levels = SoundLevels{11.0, 0.0, 0.0};
  EXPECT_EQ(Reasons(clipped), "noise clipping cut_start cut_end");
  clipped.clipped_share = 0.05;
  EXPECT_EQ(Reasons(clipped), "clipping");

  RecordingSigns several = Clean();
  several.levels->start_db = -2.0;
  several.levels->end_db = -2.0;
  several.end_gap_s = 0.2;
  several.unlike = 13;
  several.loud_after_s = 0.5;
  EXPECT_EQ(Reasons(several), "cut_start more_sound");
}

TEST(ScoreHints, TextsHaveTheFigures) {
  RecordingSigns signs = Clean();
  signs.levels->range_db = 6.4;
  signs.clipped_share = 0.034;
  signs.unlike = 15;
  const std::vector<ScoreHint> hints = HintsOf(signs);
  ASSERT_EQ(hints.size(), 3u);
  EXPECT_EQ(hints[0].text,
            "noise: loud speech is only 6 dB above the softest parts of the recording");
  EXPECT_EQ(hints[1].text, "clipping: 3 % of the samples lie flat at the highest or lowest value");
  EXPECT_EQ(hints[2].text, "another sentence: 15 of 20 sounds are unlike the sentence's");

  RecordingSigns more = Clean();
  more.loud_before_s = 2.14;
  more.levels->end_db = -1.0;
  const std::vector<ScoreHint> others = HintsOf(more);
  ASSERT_EQ(others.size(), 2u);
  EXPECT_EQ(others[0].text, "cut off: the recording ends in loud speech");
  EXPECT_EQ(others[1].text,
            "more than the sentence: 2.1 s of loud sound before it, 0.0 s after it");
}

}  // namespace
}  // namespace veral3::tools
