// What comes out of recordings that hold no reading, and of operations called in the wrong order:
// an answer or a refusal, and nothing that is not a number.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <string>
#include <tuple>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "signal/CWaveFrameDef.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"

namespace veral3 {
namespace {

using Samples = std::vector<std::int16_t>;

enum class Sound { kSilence, kTone, kNoise, kSquare, kOffset, kBursts };

Samples Make(Sound sound, int num_samples) {
  if (sound == Sound::kBursts) return test::NoiseBursts(num_samples, 7);
  Samples samples(static_cast<std::size_t>(num_samples));
  std::uint32_t state = 12345;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double time = static_cast<double>(i) / kSampleRate;
    state = state * 1664525u + 1013904223u;
    switch (sound) {
      case Sound::kTone:
        samples[i] = static_cast<std::int16_t>(
            std::lround(12000.0 * std::sin(2.0 * std::numbers::pi * 200.0 * time)));
        break;
      case Sound::kNoise:
        samples[i] = static_cast<std::int16_t>(static_cast<int>(state >> 17) - 16384);
        break;
      case Sound::kSquare:
        samples[i] = (i / 55) % 2 == 0 ? std::numeric_limits<std::int16_t>::max()
                                       : std::numeric_limits<std::int16_t>::min();
        break;
      case Sound::kOffset:
        samples[i] = std::numeric_limits<std::int16_t>::min();
        break;
      case Sound::kSilence:
      case Sound::kBursts:
        break;
    }
  }
  return samples;
}

const char* SentenceOf(LanguageType language) {
  switch (language) {
    case kLanguageChinese:
      return "\u4F60\u597D \u662F";
    case kLanguageJapanese:
      return "\u3055\u304F\u3089";
    case kLanguageEnglish:
      break;
  }
  return "I ATE";
}

// Reads everything, a little beyond both ends of every index, and fails on a value that is not
// finite or that leaves its range.
void ExpectSaneReadings(AnalyzedAudio& audio, bool energy_ratio_may_be_infinite = false) {
  const auto probability = [](double value, const char* what, int index) {
    EXPECT_TRUE(value >= 0.0 && value <= 1.0) << what << " " << index << ": " << value;
  };
  for (int i = -1; i <= audio.GetNumOfPhonemes(); ++i) {
    probability(audio.GetPhonMFCCProb(i), "phoneme", i);
    probability(audio.GetPauseMFCCProb(i), "pause", i);
    probability(audio.GetSoundsLikePhonProb(i), "sounds like", i);
    if (const double* row = audio.GetPhonProbDistrArry(i); row != nullptr) {
      for (int k = 0; k < 64; ++k) probability(row[k], "distribution", i);
    }
  }
  for (int s = -1; s <= audio.GetNumOfSyllables(); ++s) {
    probability(audio.ProbGoodSyllable(s), "good syllable", s);
    EXPECT_TRUE(audio.GetSyllableIntensity(s) >= 0.0 && audio.GetSyllableIntensity(s) <= 5.92e11)
        << s;
    const int pitch = audio.GetSyllablePitch(s);
    EXPECT_TRUE(pitch == 0 || (pitch >= 75 && pitch <= 450)) << s << ": " << pitch;
    EXPECT_GE(audio.GetSyllableToneOrStress(s), 0) << s;
    EXPECT_GE(audio.GetSyllableDuration(s), 0) << s;
    for (int tone = 0; tone < 5; ++tone) probability(audio.GetSylToneProb(s, tone), "tone", s);
  }
  for (int w = -1; w <= audio.GetNumOfWords(); ++w) EXPECT_GE(audio.GetWordPitch(w), 0) << w;
  for (int i = -1; i <= 100; ++i) {
    EXPECT_GE(audio.GetWaveY(i), 0);
    EXPECT_LE(audio.GetWaveY(i), 29490);
  }
  for (int i = -1; i <= 128; ++i) {
    EXPECT_TRUE(audio.GetPitchContour(i) >= 0 && audio.GetPitchContour(i) <= 229) << i;
    EXPECT_TRUE(audio.GetIntensityContour(i) >= 0 && audio.GetIntensityContour(i) <= 229) << i;
  }
  EXPECT_GE(audio.GetSpeechUttEnergyRatio(), 0.0);
  if (!energy_ratio_may_be_infinite) {
    EXPECT_LE(audio.GetSpeechUttEnergyRatio(), 1.0);
    double features[AnalyzedAudio::NUM_UTT_GOODNESS_FEATURES];
    audio.PrepareUttGoodnessFeatures(features);
    for (const double feature : features) EXPECT_TRUE(std::isfinite(feature));
    probability(audio.GetProbOfGoodAlignment(), "goodness", 0);
  }
  EXPECT_TRUE(std::isfinite(audio.GetSignalNoiseRatio()));
  EXPECT_GE(audio.GetSignalNoiseRatio(), 0.0);
}

class UnusualRecordings
    : public testing::TestWithParam<std::tuple<LanguageType, Sound, int /* samples */>> {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }
  test::MessageCapture m_messages;
};

TEST_P(UnusualRecordings, AreAnalysedOrRefused) {
  const auto [language, sound, num_samples] = GetParam();
  AnalyzedAudio audio(language);
  ASSERT_EQ(audio.AddPossibleSentence(SentenceOf(language)), 1);
  Samples samples = Make(sound, num_samples);
  const auto count = static_cast<std::uint32_t>(samples.size());
  const int matched = audio.Align(count, samples.data());
  m_messages.Clear();
  const int analysed = audio.Analyze(count, samples.data());
  if (matched < 0) {
    EXPECT_EQ(analysed, -1);
    EXPECT_FALSE(m_messages.Of(MessageStream::kError).empty());
  } else {
    EXPECT_EQ(analysed, 0);
  }
  ExpectSaneReadings(audio);
  EXPECT_EQ(matched >= 0 ? 0 : -1, audio.AnalyzePronunOnly(samples.data()));
  ExpectSaneReadings(audio);
}

INSTANTIATE_TEST_SUITE_P(
    Sounds, UnusualRecordings,
    testing::Combine(testing::Values(kLanguageEnglish, kLanguageChinese, kLanguageJapanese),
                     testing::Values(Sound::kSilence, Sound::kTone, Sound::kNoise, Sound::kSquare,
                                     Sound::kOffset, Sound::kBursts),
                     testing::Values(551, 660, 4000, 44100)));

class AnalyzeOrder : public testing::Test {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }
  test::MessageCapture m_messages;
};

TEST_F(AnalyzeOrder, BeforeAnAlignmentIsRefused) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence("I ATE");
  Samples samples = Make(Sound::kBursts, 22050);
  EXPECT_EQ(audio.Analyze(22050, samples.data()), -1);
  EXPECT_EQ(audio.AnalyzePronunOnly(samples.data()), -1);
  EXPECT_FALSE(m_messages.Of(MessageStream::kError).empty());
  ExpectSaneReadings(audio);
}

TEST_F(AnalyzeOrder, AfterAFailedAlignmentIsRefused) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence("I ATE");
  Samples samples = test::ChainRecording("en_learner");
  const auto count = static_cast<std::uint32_t>(samples.size());
  ASSERT_EQ(audio.Align(count, samples.data()), 0);
  ASSERT_EQ(audio.Analyze(count, samples.data()), 0);
  ASSERT_LT(audio.Align(100, samples.data()), 0);
  EXPECT_EQ(audio.Analyze(count, samples.data()), -1);
  EXPECT_EQ(audio.AnalyzePronunOnly(samples.data()), -1);
  EXPECT_EQ(audio.Analyze(count, nullptr), -1);
  ExpectSaneReadings(audio);
}

TEST_F(AnalyzeOrder, TwiceGivesTheSameTwice) {
  AnalyzedAudio audio(kLanguageChinese);
  audio.AddPossibleSentence(SentenceOf(kLanguageChinese));
  Samples samples = test::ChainRecording("zh_learner");
  const auto count = static_cast<std::uint32_t>(samples.size());
  ASSERT_EQ(audio.Align(count, samples.data()), 0);
  std::vector<double> first;
  for (int run = 0; run < 2; ++run) {
    ASSERT_EQ(audio.Analyze(count, samples.data()), 0);
    std::vector<double> readings = {audio.GetSpeechUttEnergyRatio(), audio.GetSignalNoiseRatio(),
                                    audio.GetProbOfGoodAlignment()};
    for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
      readings.push_back(audio.GetSoundsLikePhonProb(i));
    }
    for (int s = 0; s < audio.GetNumOfSyllables(); ++s) {
      readings.push_back(audio.GetSyllablePitch(s));
      readings.push_back(audio.GetSyllableIntensity(s));
      readings.push_back(audio.ProbGoodSyllable(s));
    }
    if (run == 0) first = readings;
    EXPECT_EQ(readings, first);
  }
}

// Without any energy the ratio divides what it was by 1e-20: silence again and again is the one
// way to infinity, and nothing else is drawn along.
TEST_F(AnalyzeOrder, RepeatedSilenceDrivesOnlyTheEnergyRatio) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence("I ATE");
  Samples speech = test::ChainRecording("en_learner");
  ASSERT_EQ(audio.Align(static_cast<std::uint32_t>(speech.size()), speech.data()), 0);
  ASSERT_EQ(audio.Analyze(static_cast<std::uint32_t>(speech.size()), speech.data()), 0);
  ASSERT_GT(audio.GetSpeechUttEnergyRatio(), 0.0);
  for (int i = 0; i < 40; ++i) {
    Samples silence = Make(Sound::kSilence, 22050);
    ASSERT_EQ(audio.Align(22050, silence.data()), 0);
    ASSERT_EQ(audio.Analyze(22050, silence.data()), 0);
    ExpectSaneReadings(audio, true);
  }
  EXPECT_TRUE(std::isinf(audio.GetSpeechUttEnergyRatio()));
}

TEST_F(AnalyzeOrder, SentenceWithoutWords) {
  for (const LanguageType language : {kLanguageEnglish, kLanguageChinese, kLanguageJapanese}) {
    AnalyzedAudio audio(language);
    ASSERT_EQ(audio.AddPossibleSentence(""), 1);
    for (const Sound sound : {Sound::kBursts, Sound::kSilence}) {
      Samples samples = Make(sound, 22050);
      ASSERT_EQ(audio.Align(22050, samples.data()), 0);
      EXPECT_EQ(audio.Analyze(22050, samples.data()), 0);
      EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
      EXPECT_EQ(audio.GetNumOfSyllables(), 0);
      ExpectSaneReadings(audio);
    }
  }
}

// Noise has no pitch: the syllables' is 0, and so is all that follows from it.
TEST_F(AnalyzeOrder, SyllablesWithoutVoicedFrames) {
  for (const LanguageType language : {kLanguageEnglish, kLanguageChinese, kLanguageJapanese}) {
    AnalyzedAudio audio(language);
    ASSERT_EQ(audio.AddPossibleSentence(SentenceOf(language)), 1);
    Samples samples = Make(Sound::kNoise, 44100);
    ASSERT_EQ(audio.Align(44100, samples.data()), 0);
    ASSERT_EQ(audio.Analyze(44100, samples.data()), 0);
    for (int s = 0; s < audio.GetNumOfSyllables(); ++s) {
      EXPECT_EQ(audio.GetSyllablePitch(s), 0) << s;
      EXPECT_EQ(audio.GetSylNumOfPitchSegments(s), 0) << s;
    }
    EXPECT_EQ(audio.GetUttNumOfPitchSegments(), 0);
    for (int i = 0; i < 128; ++i) EXPECT_EQ(audio.GetPitchContour(i), 0) << i;
  }
}

TEST_F(AnalyzeOrder, TenMinutes) {
  AnalyzedAudio audio(kLanguageEnglish);
  ASSERT_EQ(audio.AddPossibleSentence("I ATE"), 1);
  constexpr int kTenMinutes = 600 * kSampleRate;
  Samples samples = Make(Sound::kBursts, kTenMinutes);
  ASSERT_EQ(audio.Align(kTenMinutes, samples.data()), 0);
  EXPECT_EQ(audio.Analyze(kTenMinutes, samples.data()), 0);
  EXPECT_EQ(audio.GetNumOfSamples(), kTenMinutes);
  ExpectSaneReadings(audio);
}

}  // namespace
}  // namespace veral3
