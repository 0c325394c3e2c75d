#include "core/Prosody.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/Alignments.h"
#include "core/SyllablePitch.h"
#include "core/SyllableSpans.h"
#include "core/Timing.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using test::MakeAlignment;
using test::MessageCapture;
using Ints = std::vector<std::int32_t>;
using Doubles = std::vector<double>;

// The steps in the order of an analysis.
ProsodyResult AnalyzeProsody(LanguageType language, const AlignmentResult& alignment,
                             std::span<const std::int16_t> samples, Ints frame_pitch,
                             const ToneScorer& scorer, double previous_ratio) {
  ProsodyResult result;
  result.pitch = MeasurePitch(language, alignment, std::move(frame_pitch), scorer);
  result.words = WordSpansOf(alignment);
  result.syllable_duration = SyllableDurations(alignment);
  result.intensity = MeasureIntensity(alignment, samples, previous_ratio);
  result.utterance_pitch_segments = CountUtterancePitchSegments(alignment, result);
  DrawContours(alignment, result);
  return result;
}

class ProsodyVectors : public testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    static const nlohmann::json json = test::LoadVectorJson("prosody.json");
    ASSERT_EQ(json.at("full").size(), 36U);
    m_case = json.at("full").at(static_cast<std::size_t>(GetParam()));
    SCOPED_TRACE(m_case.at("name"));
  }
  nlohmann::json m_case;
};

TEST_P(ProsodyVectors, Match) {
  const Ints pitch = m_case.at("pitch");
  const auto samples = test::LoadVector<std::int16_t>(m_case.at("samples"));
  const LanguageType language = static_cast<LanguageType>(m_case.at("language").get<int>());
  const AlignmentResult alignment =
      MakeAlignment(static_cast<int>(pitch.size()), m_case.at("alignment"));
  ASSERT_EQ(NumFrames(static_cast<std::uint32_t>(samples.size())), alignment.num_frames);

  std::vector<ToneFeatures> seen;
  const MessageCapture messages;
  const ProsodyResult result = AnalyzeProsody(
      language, alignment, samples, pitch,
      [&](std::span<const ToneFeatures> features, std::span<ToneProbabilities>) {
        seen.assign(features.begin(), features.end());
        return true;
      },
      0.0);

  const auto& expected = m_case.at("expected");
  double total = 0.0;
  for (const double frame : result.intensity.frame) total += frame;
  EXPECT_EQ(total, expected.at("total"));
  EXPECT_EQ(Doubles(result.intensity.frame.begin(), result.intensity.frame.begin() + 5),
            expected.at("intensity_first5").get<Doubles>());
  EXPECT_EQ(result.intensity.background, expected.at("background"));
  EXPECT_EQ(result.intensity.convexity, expected.at("convexity").get<Doubles>());
  EXPECT_EQ(result.intensity.syllable, expected.at("syl_intensity").get<Doubles>());
  EXPECT_EQ(result.intensity.mean_speech, expected.at("mean_speech"));
  EXPECT_EQ(result.intensity.loud_frames_before, expected.at("loud_before"));
  EXPECT_EQ(result.intensity.loud_frames_after, expected.at("loud_after"));
  EXPECT_EQ(result.intensity.speech_to_utterance, expected.at("energy_ratio"));

  EXPECT_EQ(result.pitch.frame, pitch);
  EXPECT_EQ(result.pitch.syllable, expected.at("syl_pitch").get<Ints>());
  EXPECT_EQ(result.pitch.average_syllable_length, expected.at("avg_len"));
  Ints segments;
  Ints gaps;
  Ints voiced;
  std::vector<std::size_t> classified;
  for (std::size_t i = 0; i < result.pitch.segments.size(); ++i) {
    segments.push_back(result.pitch.segments[i].segments);
    gaps.push_back(result.pitch.segments[i].gap_total);
    voiced.push_back(result.pitch.segments[i].voiced_frames);
    if (segments.back() <= 2) classified.push_back(i);
  }
  EXPECT_EQ(segments, expected.at("segments").get<Ints>());
  EXPECT_EQ(gaps, expected.at("gaps").get<Ints>());
  EXPECT_EQ(voiced, expected.at("voiced").get<Ints>());

  if (expected.contains("tone_features")) {
    ASSERT_EQ(language, kLanguageChinese);
    const auto features = expected.at("tone_features").get<std::vector<Ints>>();
    const std::vector<FrameSpan> spans = SyllableSpans(alignment);
    ASSERT_EQ(features.size(), spans.size());
    for (std::size_t i = 0; i < features.size(); ++i) {
      const ToneFeatures made =
          ToneFeaturesOf(pitch, spans, AveragePitch(result.pitch.syllable),
                         result.pitch.average_syllable_length, static_cast<int>(i));
      EXPECT_EQ(Ints(made.begin(), made.end()), features[i]);
    }
    ASSERT_EQ(seen.size(), classified.size());
    for (std::size_t row = 0; row < seen.size(); ++row) {
      EXPECT_EQ(Ints(seen[row].begin(), seen[row].end()), features[classified[row]]);
    }
  } else {
    EXPECT_NE(language, kLanguageChinese);
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(result.pitch.tones.size(), segments.size());
  }

  EXPECT_EQ(result.words.first_syllable, expected.at("word_first_syl").get<Ints>());
  EXPECT_EQ(result.words.num_syllables, expected.at("syl_per_word").get<Ints>());
  Ints word_pitch;
  for (int word = 0; word < alignment.num_words; ++word) {
    word_pitch.push_back(WordPitch(result.words, result.pitch.syllable, word));
  }
  EXPECT_EQ(word_pitch, expected.at("word_pitch").get<Ints>());
  EXPECT_EQ(result.syllable_duration, expected.at("duration").get<Ints>());
  EXPECT_EQ(result.utterance_pitch_segments, expected.at("utt_segments"));
  EXPECT_EQ(messages.All(),
            result.utterance_pitch_segments == 0 ? "Error! nNumPitchSegments==0\n" : "");
  EXPECT_EQ(Ints(result.pitch_contour.begin(), result.pitch_contour.end()),
            expected.at("pitch_contour").get<Ints>());
  EXPECT_EQ(Ints(result.intensity_contour.begin(), result.intensity_contour.end()),
            expected.at("intensity_contour").get<Ints>());
}

INSTANTIATE_TEST_SUITE_P(Prosody, ProsodyVectors, testing::Range(0, 36));

TEST(Prosody, SyllableWithoutVoicedFrames) {
  const AlignmentResult alignment = MakeAlignment(30, {{'s', 2, 10}, {'a', 10, 20}}, {0, 1});
  Ints pitch(30, 0);
  std::fill(pitch.begin() + 11, pitch.begin() + 19, 200);
  const std::vector<std::int16_t> samples(220 * 29 + 551, 50);
  const MessageCapture messages;  // the speech is no louder than the background
  const ProsodyResult result =
      AnalyzeProsody(kLanguageJapanese, alignment, samples, pitch, {}, 0.0);
  EXPECT_EQ(result.pitch.syllable, (Ints{0, 200}));
  EXPECT_EQ(result.pitch.segments[0], PitchSegmentCounts{});
  EXPECT_EQ(result.pitch.segments[1], (PitchSegmentCounts{1, 0, 8}));
  EXPECT_EQ(result.syllable_duration, (Ints{8 * 220, 10 * 220}));
}

TEST(Prosody, ChineseSyllableOfThreeSegmentsHasNoTone) {
  const AlignmentResult alignment = MakeAlignment(30, {{'a', 0, 15}, {'o', 15, 25}}, {0, 1});
  const Ints pitch = {9, 9, 9, 0, 0, 9, 9, 9, 0, 0, 9, 9, 9, 0, 0,
                      9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
  const std::vector<std::int16_t> samples(220 * 29 + 551, 50);
  const MessageCapture messages;
  const ProsodyResult result = AnalyzeProsody(
      kLanguageChinese, alignment, samples, pitch,
      [](std::span<const ToneFeatures>, std::span<ToneProbabilities> rows) {
        for (auto& row : rows) row.fill(0.2);
        return true;
      },
      0.0);
  EXPECT_EQ(result.pitch.segments[0].segments, 3);
  EXPECT_EQ(result.pitch.tones[0], ToneProbabilities{});
  EXPECT_EQ(result.pitch.tones[1][4], 0.2);
}

TEST(Prosody, OnlyChineseAsksForTones) {
  const AlignmentResult alignment = MakeAlignment(30, {{'a', 0, 15}}, {0});
  const std::vector<std::int16_t> samples(220 * 29 + 551, 50);
  const std::string missing = "ERROR in AnalyzedAudio::AnalyzeCTTone(), no tone model is loaded.\n";
  for (const LanguageType language :
       {kLanguageEnglish, kLanguageChinese, kLanguageJapanese, static_cast<LanguageType>(9)}) {
    const MessageCapture messages;
    const ProsodyResult result =
        AnalyzeProsody(language, alignment, samples, Ints(30, 100), {}, 0.0);
    EXPECT_EQ(result.pitch.tones, std::vector<ToneProbabilities>(1, ToneProbabilities{}));
    EXPECT_EQ(messages.StandardError().find(missing) != std::string::npos,
              language == kLanguageChinese);
  }
}

TEST(Prosody, SentenceWithoutWordsGivesZeros) {
  const std::vector<std::int16_t> samples(220 * 29 + 551, 5000);
  const MessageCapture messages;
  const ProsodyResult result = AnalyzeProsody(kLanguageChinese, MakeAlignment(30, {}, {}, {}),
                                              samples, Ints(30, 100), {}, 0.0);
  EXPECT_TRUE(result.pitch.syllable.empty());
  EXPECT_TRUE(result.pitch.tones.empty());
  EXPECT_EQ(result.pitch.average_syllable_length, 0);
  EXPECT_TRUE(result.words.first_syllable.empty());
  EXPECT_EQ(result.utterance_pitch_segments, 0);
  EXPECT_EQ(result.pitch_contour, Contour{});
  EXPECT_EQ(result.intensity_contour, Contour{});
  EXPECT_EQ(result.intensity.speech_to_utterance, 0.0);
  EXPECT_EQ(messages.All(), "Error! nNumPitchSegments==0\n");
}

TEST(Prosody, BeforeAnyStepNothingIsMeasured) {
  const ProsodyResult result;
  EXPECT_TRUE(result.pitch.frame.empty());
  EXPECT_EQ(result.pitch.average_syllable_length, 0);
  EXPECT_EQ(result.utterance_pitch_segments, 0);
  EXPECT_EQ(result.pitch_contour, Contour{});
  EXPECT_EQ(result.intensity_contour, Contour{});
  EXPECT_EQ(result.intensity.background, 0.0);
  EXPECT_EQ(result.intensity.mean_speech, 0.0);
  EXPECT_EQ(result.intensity.loud_frames_before, 0);
  EXPECT_EQ(result.intensity.loud_frames_after, 0);
  EXPECT_EQ(result.intensity.speech_to_utterance, 0.0);
  EXPECT_EQ(PitchSegmentCounts(), (PitchSegmentCounts{0, 0, 0}));
}

TEST(Prosody, NoPitchTrack) {
  const AlignmentResult alignment = MakeAlignment(30, {{'a', 3, 15}}, {0});
  const std::vector<std::int16_t> samples(220 * 29 + 551, 50);
  const MessageCapture messages;
  const ProsodyResult result = AnalyzeProsody(kLanguageEnglish, alignment, samples, {}, {}, 0.0);
  EXPECT_EQ(result.pitch.syllable, Ints{0});
  EXPECT_EQ(result.utterance_pitch_segments, 0);
  EXPECT_EQ(result.pitch_contour, Contour{});
  EXPECT_EQ(result.syllable_duration, Ints{12 * 220});
}

TEST(Prosody, ResultsOfOtherRecordingsNeverReadOutside) {
  const MessageCapture messages;
  test::WildAlignments wild(2024);
  for (int round = 0; round < 3000; ++round) {
    const AlignmentResult alignment = wild.Next();
    Ints pitch(static_cast<std::size_t>(wild.Size(60)));
    for (auto& p : pitch) p = wild.Number(300);
    std::vector<std::int16_t> samples(static_cast<std::size_t>(wild.Size(14000)));
    for (auto& s : samples) s = static_cast<std::int16_t>(wild.Size(65536) - 32768);
    const auto language = static_cast<LanguageType>(wild.Size(5));
    const ProsodyResult result = AnalyzeProsody(
        language, alignment, samples, pitch,
        [](std::span<const ToneFeatures> features, std::span<ToneProbabilities> rows) {
          EXPECT_EQ(features.size(), rows.size());
          return true;
        },
        0.0);
    const std::size_t count = static_cast<std::size_t>(CountSyllables(alignment));
    ASSERT_EQ(result.pitch.syllable.size(), count);
    ASSERT_EQ(result.pitch.segments.size(), count);
    ASSERT_EQ(result.pitch.tones.size(), count);
    ASSERT_EQ(result.syllable_duration.size(), count);
    ASSERT_EQ(result.intensity.syllable.size(), count);
    ASSERT_EQ(result.intensity.convexity.size(), count);
    for (const double x : result.intensity.syllable) ASSERT_TRUE(std::isfinite(x));
    for (const double x : result.intensity.convexity) ASSERT_TRUE(std::isfinite(x));
    ASSERT_TRUE(std::isfinite(result.intensity.mean_speech));
    ASSERT_TRUE(std::isfinite(result.intensity.speech_to_utterance));
    for (const int point : result.pitch_contour) ASSERT_TRUE(point >= 0 && point <= 229);
    for (const int point : result.intensity_contour) ASSERT_TRUE(point >= 0 && point <= 229);
    for (int word = -1; word < 11; ++word) {
      WordPitch(result.words, result.pitch.syllable, word);
    }
  }
}

}  // namespace
}  // namespace veral3
