// Whole recordings of all three languages from samples to results, against results computed by an
// independent implementation.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/AnalyzedAudio.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using nlohmann::json;

// The reference computes its features in double precision, the engine in single: the classifier
// turns that into relative differences of up to 3e-5.
constexpr double kRelative = 1e-4;

void ExpectNear(double actual, double expected) {
  EXPECT_NEAR(actual, expected, std::abs(expected) * kRelative + 1e-300);
}

class Chain : public testing::TestWithParam<std::tuple<int, std::string>> {
 protected:
  Chain() {
    test::LoadSmallEngine();
    const auto& [index, who] = GetParam();
    m_case = test::LoadVectorJson("chain.json")["cases"][static_cast<std::size_t>(index)];
    m_expected = m_case[who];
    m_samples = test::LoadVector<std::int16_t>(m_expected["samples"].get<std::string>());
  }

  json m_case, m_expected;
  std::vector<std::int16_t> m_samples;
};

TEST_P(Chain, Aligns) {
  AnalyzedAudio audio(static_cast<LanguageType>(m_case["language"].get<int>()));
  int count = 0;
  for (const json& sentence : m_case["sentences"]) {
    ASSERT_EQ(audio.AddPossibleSentence(sentence.get<std::string>().c_str()), ++count);
  }
  const int matched = audio.Align(static_cast<std::uint32_t>(m_samples.size()), m_samples.data());
  ASSERT_EQ(matched, m_expected["matched"]);
  EXPECT_EQ(audio.GetMatchedSentenceIndex(), matched);
  EXPECT_EQ(audio.GetMatchedSentence().Utf8(),
            m_case["sentences"][static_cast<std::size_t>(matched)]);
  EXPECT_EQ(audio.GetNumOfSamples(), static_cast<int>(m_samples.size()));
  ExpectNear(audio.GetLogProbOfAlign(), m_expected["log_prob"]);

  ASSERT_EQ(audio.GetPhonemes(), m_expected["phonemes"].get<std::string>());
  const int n = audio.GetNumOfPhonemes();
  for (int i = 0; i < n; ++i) {
    const auto at = static_cast<std::size_t>(i);
    EXPECT_EQ(audio.GetPhonemeStartSampleNum(i), m_expected["start"][at]) << i;
    EXPECT_EQ(audio.GetPhonemeEndSampleNum(i), m_expected["end"][at]) << i;
    ExpectNear(audio.GetPhonMFCCProb(i), m_expected["phon_mfcc_prob"][at]);
  }
  for (int i = 0; i <= n; ++i) {
    ExpectNear(audio.GetPauseMFCCProb(i),
               m_expected["pause_mfcc_prob"][static_cast<std::size_t>(i)]);
  }
  EXPECT_EQ(audio.GetUttStartSampleNum(), audio.GetPhonemeStartSampleNum(0));
  EXPECT_EQ(audio.GetUttEndSampleNum(), audio.GetPhonemeEndSampleNum(n - 1));

  ASSERT_EQ(audio.GetNumOfSyllables(), static_cast<int>(m_expected["syl_start"].size()));
  for (int i = 0; i < audio.GetNumOfSyllables(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    EXPECT_EQ(audio.GetSyllableStartPosition(i), m_expected["syl_start"][at]) << i;
    EXPECT_EQ(audio.GetSyllableToneOrStress(i), m_expected["syl_mark"][at]) << i;
  }
  ASSERT_EQ(audio.GetNumOfWords(), static_cast<int>(m_expected["words"].size()));
  for (int i = 0; i < audio.GetNumOfWords(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    EXPECT_EQ(audio.GetWordStartPosition(i), m_expected["word_start"][at]) << i;
    EXPECT_EQ(audio.GetWordOfMatchedSentence(i).Utf8(), m_expected["words"][at]) << i;
  }
}

// Whole numbers that follow from the samples alone are exact; those that go through the classifiers
// are as close as those are.
TEST_P(Chain, Analyses) {
  AnalyzedAudio audio(static_cast<LanguageType>(m_case["language"].get<int>()));
  for (const json& sentence : m_case["sentences"]) {
    audio.AddPossibleSentence(sentence.get<std::string>().c_str());
  }
  const auto count = static_cast<std::uint32_t>(m_samples.size());
  ASSERT_GE(audio.Align(count, m_samples.data()), 0);
  ASSERT_EQ(audio.Analyze(count, m_samples.data()), 0);

  EXPECT_EQ(audio.GetSoundsLikePhonemes(), m_expected["sounds_like"].get<std::string>());
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    ExpectNear(audio.GetSoundsLikePhonProb(i),
               m_expected["sounds_like_prob"][static_cast<std::size_t>(i)]);
  }
  for (int i = 0; i < audio.GetNumOfSyllables(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    EXPECT_NEAR(audio.GetSyllablePitch(i), m_expected["syl_pitch"][at].get<int>(), 2) << i;
    EXPECT_EQ(audio.GetSyllableDuration(i), m_expected["duration"][at]) << i;
    EXPECT_EQ(audio.GetSyllableIntensity(i), m_expected["syl_intensity"][at].get<double>()) << i;
    EXPECT_EQ(audio.GetSylNumOfPitchSegments(i), m_expected["segments"][at]) << i;
    ExpectNear(audio.ProbGoodSyllable(i), m_expected["good_syllable"][at]);
    if (m_expected["tone_prob"].is_null()) continue;
    for (int tone = 0; tone < 5; ++tone) {
      EXPECT_NEAR(audio.GetSylToneProb(i, tone),
                  m_expected["tone_prob"][at][static_cast<std::size_t>(tone)].get<double>(), 0.02)
          << i << " " << tone;
    }
  }
  ExpectNear(audio.GetSpeechUttEnergyRatio(), m_expected["energy_ratio"]);
  ExpectNear(audio.GetSignalNoiseRatio(), m_expected["snr"]);
  EXPECT_EQ(audio.GetUttNumOfPitchSegments(), m_expected["utt_segments"]);
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(audio.GetWaveY(i), m_expected["wave"][static_cast<std::size_t>(i)]) << i;
  }
  for (int i = 0; i < 128; ++i) {
    const auto at = static_cast<std::size_t>(i);
    EXPECT_NEAR(audio.GetPitchContour(i), m_expected["pitch_contour"][at].get<int>(), 3) << i;
    EXPECT_EQ(audio.GetIntensityContour(i), m_expected["intensity_contour"][at]) << i;
  }
  double features[AnalyzedAudio::NUM_UTT_GOODNESS_FEATURES];
  audio.PrepareUttGoodnessFeatures(features);
  for (std::size_t i = 0; i < std::size(features); ++i) {
    ExpectNear(features[i], m_expected["goodness_features"][i]);
  }
  ExpectNear(audio.GetProbOfGoodAlignment(), m_expected["goodness"]);
}

INSTANTIATE_TEST_SUITE_P(Recordings, Chain,
                         testing::Combine(testing::Values(0, 1, 2),
                                          testing::Values("learner", "tutor")));

}  // namespace
}  // namespace veral3
