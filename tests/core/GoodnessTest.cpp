#include "core/Goodness.h"

#include <gtest/gtest.h>

#include <limits>

#include "core/Alignments.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::MakeAlignment;
using test::MessageCapture;

TEST(GoodnessFeatures, StandInTheirOrder) {
  AlignmentResult alignment = MakeAlignment(50, {{'s', 4, 9}, {'a', 9, 20}, {'t', 22, 40}}, {0, 2});
  alignment.pause_mfcc_prob = {0.1, 0.2, 0.3, 0.4};
  alignment.log_probability = -321.5;
  IntensityMeasures intensity;
  intensity.loud_frames_before = 5;
  intensity.loud_frames_after = 6;
  intensity.speech_to_utterance = 0.75;
  PronunciationResult pronunciation;
  pronunciation.utterance = {0.5, 0.25};
  GoodnessResult goodness;
  goodness.loud_gaps = {7, 8, 9};
  EXPECT_EQ(
      PrepareGoodnessFeatures(kLanguageChinese, alignment, intensity, pronunciation, goodness),
      (GoodnessFeatures{0, 1, 0, 50, 3, 2, 7, 9, 5, 6, 0.1, 0.4, -321.5, 0.75, 0.5, 0.25}));
}

TEST(GoodnessFeatures, OfAnUnknownLanguageAreReportedAndZero) {
  const MessageCapture messages;
  EXPECT_EQ(PrepareGoodnessFeatures(static_cast<LanguageType>(0),
                                    MakeAlignment(50, {{'s', 4, 9}}, {0}), {}, {}, {}),
            GoodnessFeatures{});
  EXPECT_EQ(messages.StandardError(),
            "Error in AnalyzedAudio::PrepareUttGoodnessFeatures(), unknown LanguageType.\n");
}

TEST(GoodnessFeatures, BeforeAnyStepAreTheLanguageAlone) {
  GoodnessFeatures expected{};
  expected[2] = 1.0;
  EXPECT_EQ(PrepareGoodnessFeatures(kLanguageJapanese, {}, {}, {}, {}), expected);
}

TEST(ProbabilityOfGoodAlignment, IsTheModelsAnswer) {
  GoodnessFeatures features{};
  features[3] = 0.875;
  EXPECT_EQ(ProbabilityOfGoodAlignment(
                features, [](const GoodnessFeatures& f) { return std::optional(f[3]); }),
            0.875);
}

TEST(ProbabilityOfGoodAlignment, WithoutAModelIsReportedAndZero) {
  const auto without_model = [](const GoodnessFeatures&) { return std::optional<double>(); };
  for (const GoodnessScorer& scorer : {GoodnessScorer(), GoodnessScorer(without_model)}) {
    const MessageCapture messages;
    EXPECT_EQ(ProbabilityOfGoodAlignment({}, scorer), 0.0);
    ASSERT_EQ(messages.Entries().size(), 1U);
    EXPECT_EQ(messages.StandardError(),
              "ERROR in AnalyzedAudio::GetProbOfGoodAlignment(), no utterance goodness model is "
              "loaded.\n");
  }
}

TEST(ProbabilityOfGoodAlignment, AbsurdAnswerIsZero) {
  EXPECT_EQ(
      ProbabilityOfGoodAlignment({},
                                 [](const GoodnessFeatures&) {
                                   return std::optional(std::numeric_limits<double>::quiet_NaN());
                                 }),
      0.0);
}

TEST(MarkBadSyllables, ResultsOfOtherRecordingsNeverReadOutside) {
  const MessageCapture messages;
  test::WildAlignments wild(9);
  for (int round = 0; round < 2000; ++round) {
    const AlignmentResult alignment = wild.Next();
    ProsodyResult prosody;
    prosody.pitch.frame.assign(static_cast<std::size_t>(wild.Size(60)), 100);
    prosody.pitch.segments.assign(static_cast<std::size_t>(wild.Size(10)), {wild.Size(6), 0, 0});
    wild.Fill(prosody.intensity.frame, 60);
    wild.Fill(prosody.intensity.convexity, 10);
    prosody.intensity.mean_speech = 1.0;
    const auto language = static_cast<LanguageType>(wild.Size(5));
    const GoodnessResult goodness = MarkBadSyllables(language, alignment, prosody);
    for (const double x : goodness.good_syllable) ASSERT_TRUE(x >= 0.0 && x <= 1.0);
    MarkBadSyllablesPronunOnly(language, wild.Next(), prosody.intensity);
    PrepareGoodnessFeatures(language, wild.Next(), prosody.intensity, {}, goodness);
  }
}

}  // namespace
}  // namespace veral3
