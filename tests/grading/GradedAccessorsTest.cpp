// Each accessor of a graded object tells what the grading made: random pairs, put where an analysis
// puts its results, against the literal grading.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/MadeAudio.h"
#include "grading/GradedAudio.h"
#include "grading/LiteralGrading.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"

namespace veral3 {
namespace {

test::RecordingArrays ArraysOf(const RecordingView& view, const WordSpans& words) {
  test::RecordingArrays arrays;
  arrays.phonemes = view.phonemes;
  arrays.start = view.phoneme_start;
  arrays.end = view.phoneme_end;
  arrays.syllable_start = view.syllable_start;
  arrays.syllable_pitch = view.syllable_pitch;
  arrays.syllable_duration = view.syllable_duration;
  arrays.syllable_intensity = view.syllable_intensity;
  arrays.syllable_mark.assign(view.syllable_start.size(), 0);
  arrays.tone_prob.assign(view.syllable_start.size(), {});
  for (std::size_t i = 0; i < view.tone_probability.size(); ++i) {
    arrays.tone_prob[i] = view.tone_probability[i];
  }
  for (const int syllable : words.first_syllable) {
    arrays.word_start.push_back(view.syllable_start[static_cast<std::size_t>(syllable)]);
  }
  arrays.pitch_segments = view.pitch_segments;
  return arrays;
}

template <typename Value, typename Get>
std::vector<Value> Read(std::size_t count, Get get) {
  std::vector<Value> values;
  for (int i = 0; i < static_cast<int>(count); ++i) values.push_back(get(i));
  return values;
}

void ExpectAccessors(GradedAudio& audio, const test::LiteralGrades& expected) {
  EXPECT_EQ(audio.GetTotalScore(), expected.total);
  EXPECT_EQ(audio.GetPronunScore(), expected.pronunciation);
  EXPECT_EQ(audio.GetPitchScore(), expected.pitch);
  EXPECT_EQ(audio.GetTimingScore(), expected.timing);
  EXPECT_EQ(audio.GetIntensityScore(), expected.intensity);
  const auto expect = [](const std::vector<int>& values, auto get) {
    EXPECT_EQ(Read<int>(values.size(), get), values);
    EXPECT_EQ(get(static_cast<int>(values.size())), 0);
  };
  expect(expected.phoneme_pronunciation, [&](int i) { return audio.GetPhonemePonunScore(i); });
  expect(expected.syllable_pronunciation, [&](int i) { return audio.GetSyllablePronunScore(i); });
  expect(expected.syllable_pitch, [&](int i) { return audio.GetSyllablePitchScore(i); });
  expect(expected.syllable_timing, [&](int i) { return audio.GetSyllableTimingScore(i); });
  expect(expected.syllable_intensity, [&](int i) { return audio.GetSyllableIntensityScore(i); });
  expect(expected.word_pronunciation, [&](int i) { return audio.GetWordPronunScore(i); });
  expect(expected.word_pitch, [&](int i) { return audio.GetWordPitchScore(i); });
  expect(expected.word_timing, [&](int i) { return audio.GetWordTimingScore(i); });
  expect(expected.word_intensity, [&](int i) { return audio.GetWordIntensityScore(i); });
  expect(expected.word_total, [&](int i) { return audio.GetWordScore(i); });
  expect(expected.correct_tone, [&](int i) { return audio.GetCorrectTone(i); });
  expect(expected.student_tone, [&](int i) { return audio.GetStudentTone(i); });
  const auto expect_letters = [](const std::string& letters, auto get) {
    for (std::size_t i = 0; i < letters.size(); ++i) {
      EXPECT_EQ(get(static_cast<int>(i)), letters[i]) << i;
    }
    EXPECT_EQ(get(static_cast<int>(letters.size())), '\0');
  };
  expect_letters(expected.pitch_advice, [&](int i) { return audio.GetSyllablePitchAdvice(i); });
  expect_letters(expected.timing_advice, [&](int i) { return audio.GetSyllableTimingAdvice(i); });
  expect_letters(expected.intensity_advice,
                 [&](int i) { return audio.GetSyllableIntensityAdvice(i); });
  EXPECT_EQ(Read<bool>(expected.pause.size(),
                       [&](int i) { return audio.GetSyllableUnnecessaryPause(i); }),
            expected.pause);
  const auto expect_contrasts = [](const std::vector<double>& contrasts, auto get) {
    for (std::size_t i = 0; i < contrasts.size(); ++i) {
      EXPECT_DOUBLE_EQ(get(static_cast<int>(i)), contrasts[i]) << i;
    }
    EXPECT_EQ(get(static_cast<int>(contrasts.size())), 0.0);
  };
  expect_contrasts(expected.pitch_contrast, [&](int i) { return audio.GetWordPitchConstrast(i); });
  expect_contrasts(expected.timing_contrast,
                   [&](int i) { return audio.GetWordTimingConstrast(i); });
  expect_contrasts(expected.intensity_contrast,
                   [&](int i) { return audio.GetWordIntensityConstrast(i); });
}

TEST(GradedAccessors, TellWhatTheGradingMade) {
  test::LoadSmallEngine();
  const test::MessageCapture messages;
  test::Generator random(21);
  for (int number = 0; number < 300; ++number) {
    SCOPED_TRACE("pair " + std::to_string(number));
    test::Pair pair = test::MakePair(random);
    test::Made<GradedAudio> learner(pair.learner.language);
    Fill(learner, ArraysOf(pair.learner, pair.learner.words));
    auto pronunciation = std::make_shared<PronunciationResult>();
    pronunciation->phonemes.rows = pair.learner.distributions;
    learner.Hand().pronunciation = std::move(pronunciation);
    auto goodness = std::make_shared<GoodnessResult>();
    goodness->good_syllable = pair.learner.goodness;
    learner.Hand().goodness = std::move(goodness);
    test::MadeAudio tutor(pair.tutor.language);
    Fill(tutor, ArraysOf(pair.tutor, {}));

    pair.probability = learner.GetProbOfGoodAlignment();
    const test::LiteralGrades expected = test::GradeLiterally(pair);
    EXPECT_EQ(learner.GradeAgainstTutor(&tutor), expected.result);
    ExpectAccessors(learner, expected);
    if (testing::Test::HasFailure()) break;
  }
}

}  // namespace
}  // namespace veral3
