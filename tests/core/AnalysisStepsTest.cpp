// The steps of an analysis, called one by one, in any order and where something is missing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "signal/CWaveFrameDef.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using Samples = std::vector<std::int16_t>;
using Doubles = std::vector<double>;

struct Spoken {
  LanguageType language;
  const char* sentence;
  const char* recording;
};
constexpr Spoken kEnglish = {kLanguageEnglish, "I READ THE CAT", "en_learner"};
constexpr Spoken kChinese = {kLanguageChinese, "\u4F60\u597D \u6771 \u662F", "zh_learner"};
constexpr Spoken kJapanese = {kLanguageJapanese, "\u3055\u304F\u3089", "ja_learner"};

void Align(AnalyzedAudio& audio, Samples& samples, const Spoken& spoken) {
  if (audio.GetMatchedSentenceIndex() < 0) audio.AddPossibleSentence(spoken.sentence);
  samples = test::ChainRecording(spoken.recording);
  ASSERT_GE(audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data()), 0);
}

int Analyze(AnalyzedAudio& audio, Samples& samples) {
  return audio.Analyze(static_cast<std::uint32_t>(samples.size()), samples.data());
}

// What ReleaseMemory takes away.
Doubles Releasable(AnalyzedAudio& audio) {
  Doubles all = {static_cast<double>(audio.GetUttNumOfPitchSegments())};
  for (int s = 0; s < audio.GetNumOfSyllables(); ++s) {
    all.push_back(audio.GetSyllablePitch(s));
    all.push_back(audio.GetSyllableDuration(s));
    all.push_back(audio.GetSyllableIntensity(s));
    all.push_back(audio.GetSylNumOfPitchSegments(s));
    for (int tone = 0; tone < 5; ++tone) all.push_back(audio.GetSylToneProb(s, tone));
  }
  for (int w = 0; w < audio.GetNumOfWords(); ++w) all.push_back(audio.GetWordPitch(w));
  return all;
}

// What else an analysis measures.
Doubles Lasting(AnalyzedAudio& audio) {
  Doubles all(AnalyzedAudio::NUM_UTT_GOODNESS_FEATURES);
  audio.PrepareUttGoodnessFeatures(all.data());
  all.push_back(audio.GetSpeechUttEnergyRatio());
  all.push_back(audio.GetSignalNoiseRatio());
  all.push_back(audio.GetProbOfGoodAlignment());
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    all.push_back(audio.GetSoundsLikePhonemes()[i]);
    all.push_back(audio.GetSoundsLikePhonProb(i));
    all.insert(all.end(), audio.GetPhonProbDistrArry(i), audio.GetPhonProbDistrArry(i) + 64);
  }
  for (int s = 0; s < audio.GetNumOfSyllables(); ++s) all.push_back(audio.ProbGoodSyllable(s));
  for (int i = 0; i < 100; ++i) all.push_back(audio.GetWaveY(i));
  for (int i = 0; i < 128; ++i) {
    all.push_back(audio.GetPitchContour(i));
    all.push_back(audio.GetIntensityContour(i));
  }
  return all;
}

Doubles Measured(AnalyzedAudio& audio) {
  Doubles all = Releasable(audio);
  const Doubles lasting = Lasting(audio);
  all.insert(all.end(), lasting.begin(), lasting.end());
  return all;
}

// A step that may be called alone, and what it needs beside an alignment.
struct Step {
  const char* name;
  std::function<int(AnalyzedAudio&, const Samples&)> run;
  bool needs_pitch = false;
  bool needs_intensity = false;
};
const std::vector<Step>& Steps() {
  using A = AnalyzedAudio&;
  using S = const Samples&;
  static const std::vector<Step> steps = {
      {"CalculatePhonProbDistr", [](A a, S) { return a.CalculatePhonProbDistr(); }},
      {"CalculateUttPronunProb", [](A a, S) { return a.CalculateUttPronunProb(); }},
      {"AnalyzePitch", [](A a, S s) { return a.AnalyzePitch(s.data()); }},
      {"CountUttPichSegments", [](A a, S) { return a.CountUttPichSegments(); }, true, true},
      {"MarkBadSpaces", [](A a, S) { return a.MarkBadSpaces(); }, true, true},
      {"MarkBadSyllables", [](A a, S) { return a.MarkBadSyllables(); }, true, true},
      {"MarkBadSpacesPronunOnly", [](A a, S) { return a.MarkBadSpacesPronunOnly(); }, false, true},
      {"MarkBadSyllablesPronunOnly", [](A a, S) { return a.MarkBadSyllablesPronunOnly(); }, false,
       true}};
  return steps;
}

class AnalysisSteps : public testing::Test {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }

  // Each step says `what` is missing, answers -1 and changes nothing.
  void ExpectRefused(AnalyzedAudio& audio, const Samples& samples, const char* what,
                     const std::function<bool(const Step&)>& which) {
    const Doubles before = Measured(audio);
    for (const Step& step : Steps()) {
      if (!which(step)) continue;
      m_messages.Clear();
      EXPECT_EQ(step.run(audio, samples), -1) << step.name;
      EXPECT_EQ(m_messages.All(),
                std::string("ERROR in AnalyzedAudio::") + step.name + "(), " + what + "\n");
      EXPECT_EQ(Measured(audio), before) << step.name;
    }
  }

  test::MessageCapture m_messages;
};

bool Every(const Step&) { return true; }
bool NeedsIntensity(const Step& step) { return step.needs_intensity; }
bool NeedsPitch(const Step& step) { return step.needs_pitch; }

TEST_F(AnalysisSteps, WithoutAnAlignmentNothingIsMeasured) {
  Samples samples = test::ChainRecording("en_learner");
  AnalyzedAudio unknown(static_cast<LanguageType>(7));
  ExpectRefused(unknown, samples, "unknown Language Type", Every);
  AnalyzedAudio fresh(kLanguageEnglish);
  ExpectRefused(fresh, samples, "nothing is aligned", Every);
  fresh.AddPossibleSentence("I ATE");
  ExpectRefused(fresh, samples, "nothing is aligned", Every);
  Align(fresh, samples, kEnglish);
  ASSERT_EQ(Analyze(fresh, samples), 0);
  ASSERT_LT(fresh.Align(100, samples.data()), 0);  // gone again
  ExpectRefused(fresh, samples, "nothing is aligned", Every);
}

TEST_F(AnalysisSteps, WhatAStepNeedsIsMeasuredBefore) {
  AnalyzedAudio audio(kLanguageEnglish);
  Samples samples;
  Align(audio, samples, kEnglish);
  ExpectRefused(audio, samples, "nothing is analysed", NeedsIntensity);
  ASSERT_EQ(audio.AnalyzePitch(samples.data()), 0);
  ExpectRefused(audio, samples, "nothing is analysed", NeedsIntensity);
  Align(audio, samples, kEnglish);
  ASSERT_EQ(audio.AnalyzePronunOnly(samples.data()), 0);
  ExpectRefused(audio, samples, "nothing is analysed", NeedsPitch);
  ASSERT_EQ(Analyze(audio, samples), 0);
  for (const Step& step : Steps()) EXPECT_GE(step.run(audio, samples), 0) << step.name;
  audio.ReleaseMemory();
  ExpectRefused(audio, samples, "nothing is analysed", NeedsIntensity);
  ASSERT_EQ(audio.AnalyzePitch(samples.data()), 0);
  ExpectRefused(audio, samples, "nothing is analysed", NeedsIntensity);
}

TEST_F(AnalysisSteps, WithoutSamplesThereIsNoPitch) {
  AnalyzedAudio audio(kLanguageEnglish);
  Samples samples;
  Align(audio, samples, kEnglish);
  m_messages.Clear();
  EXPECT_EQ(audio.AnalyzePitch(nullptr), -1);
  EXPECT_EQ(m_messages.All(), "ERROR in AnalyzedAudio::AnalyzePitch(), no samples\n");
}

class StepsOfALanguage : public AnalysisSteps, public testing::WithParamInterface<Spoken> {};

TEST_P(StepsOfALanguage, TogetherAreTheAnalysis) {
  AnalyzedAudio whole(GetParam().language);
  Samples samples;
  Align(whole, samples, GetParam());
  ASSERT_EQ(Analyze(whole, samples), 0);

  AnalyzedAudio audio(GetParam().language);
  Align(audio, samples, GetParam());
  ASSERT_EQ(audio.CalculatePhonProbDistr(), 0);
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    EXPECT_EQ(audio.GetSoundsLikePhonemes()[i], whole.GetSoundsLikePhonemes()[i]);
    EXPECT_EQ(audio.GetSoundsLikePhonProb(i), whole.GetSoundsLikePhonProb(i));
    EXPECT_GT(audio.GetSoundsLikePhonProb(i), 0.0);
  }
  Doubles features(16), expected(16);
  whole.PrepareUttGoodnessFeatures(expected.data());
  audio.PrepareUttGoodnessFeatures(features.data());
  EXPECT_EQ(features[14], 0.0);  // the utterance's own come with the next step
  ASSERT_EQ(audio.CalculateUttPronunProb(), 0);
  audio.PrepareUttGoodnessFeatures(features.data());
  EXPECT_EQ(features[14], expected[14]);
  EXPECT_EQ(features[15], expected[15]);
  EXPECT_GT(features[15], 0.0);

  ASSERT_EQ(audio.AnalyzePitch(samples.data()), 0);
  for (int s = 0; s < audio.GetNumOfSyllables(); ++s) {
    EXPECT_EQ(audio.GetSyllablePitch(s), whole.GetSyllablePitch(s));
    EXPECT_EQ(audio.GetSylNumOfPitchSegments(s), whole.GetSylNumOfPitchSegments(s));
    for (int k = 0; k < 5; ++k) EXPECT_EQ(audio.GetSylToneProb(s, k), whole.GetSylToneProb(s, k));
    EXPECT_EQ(audio.GetSyllableDuration(s), 0);
    EXPECT_EQ(audio.GetSyllableIntensity(s), 0.0);
  }
  for (int w = 0; w < audio.GetNumOfWords(); ++w) {
    EXPECT_EQ(audio.GetWordPitch(w), whole.GetWordPitch(w));
  }
  ASSERT_EQ(audio.AnalyzePronunOnly(samples.data()), 0);  // has the intensity, and by its own rules
  EXPECT_EQ(audio.GetUttNumOfPitchSegments(), 0);
  EXPECT_EQ(audio.CountUttPichSegments(), whole.GetUttNumOfPitchSegments());
  EXPECT_EQ(audio.GetUttNumOfPitchSegments(), 0);  // counted, not kept
  const double good_before = audio.ProbGoodSyllable(0);
  ASSERT_EQ(audio.MarkBadSpaces(), 0);
  audio.PrepareUttGoodnessFeatures(features.data());
  EXPECT_EQ(features, expected);
  EXPECT_EQ(audio.ProbGoodSyllable(0), good_before);
  ASSERT_EQ(audio.MarkBadSyllables(), 0);
  for (int s = 0; s < audio.GetNumOfSyllables(); ++s) {
    EXPECT_EQ(audio.ProbGoodSyllable(s), whole.ProbGoodSyllable(s));
  }

  AnalyzedAudio pronunciation(GetParam().language);
  Align(pronunciation, samples, GetParam());
  ASSERT_EQ(pronunciation.AnalyzePronunOnly(samples.data()), 0);
  ASSERT_EQ(whole.MarkBadSyllablesPronunOnly(), 0);
  for (int s = 0; s < whole.GetNumOfSyllables(); ++s) {
    EXPECT_EQ(whole.ProbGoodSyllable(s), pronunciation.ProbGoodSyllable(s));
  }
  ASSERT_EQ(audio.MarkBadSpacesPronunOnly(), 0);
  pronunciation.PrepareUttGoodnessFeatures(expected.data());
  audio.PrepareUttGoodnessFeatures(features.data());
  EXPECT_EQ(features, expected);
}

// Whatever was called before, an analysis then measures what it measures.
TEST_P(StepsOfALanguage, AnyOrderLeavesTheAnalysisAsItIs) {
  AnalyzedAudio whole(GetParam().language);
  Samples samples;
  Align(whole, samples, GetParam());
  ASSERT_EQ(Analyze(whole, samples), 0);
  const Doubles expected = Measured(whole);

  std::minstd_rand random(17);
  AnalyzedAudio audio(GetParam().language);
  audio.AddPossibleSentence(GetParam().sentence);
  Samples other = test::NoiseBursts(9000, 5);
  for (int round = 0; round < 40; ++round) {
    for (int call = 0; call < 12; ++call) {
      const unsigned choice = static_cast<unsigned>(random() % (Steps().size() + 7));
      std::ostringstream a, b;
      switch (choice) {
        case 0:
          audio.ReleaseMemory();
          break;
        case 1:
          other = test::NoiseBursts(9000, static_cast<std::uint32_t>(round));
          audio.Align(9000, other.data());
          break;
        case 2:
          audio.Align(100, other.data());
          break;
        case 3:
          audio.Analyze(0, audio.GetNumOfSamples() == 9000 ? other.data() : nullptr);
          break;
        case 4:
          if (audio.GetNumOfSamples() == 9000) audio.AnalyzePronunOnly(other.data());
          break;
        case 5:
          audio.SaveSylBadTraits(a);
          audio.SaveUttGoodnessTrainData(true, a, b);
          audio.SaveSylPauseBadTraits(a);
          audio.SaveFrameMFCCDataToFiles(a, b, 0.5);
          break;
        case 6:
          audio = AnalyzedAudio(audio);
          break;
        default: {
          const Step& step = Steps()[choice - 7];
          if (audio.GetNumOfSamples() > 9000) continue;
          other.resize(9000);
          EXPECT_GE(step.run(audio, other), -1);
        }
      }
      for (const double value : Measured(audio)) ASSERT_FALSE(std::isnan(value));
    }
    samples = test::ChainRecording(GetParam().recording);
    const auto count = static_cast<std::uint32_t>(samples.size());
    ASSERT_GE(audio.Align(count, samples.data()), 0);
    if (round % 2) audio.AnalyzePronunOnly(samples.data());
    if (round % 3) audio.ReleaseMemory();
    ASSERT_EQ(Analyze(audio, samples), 0);
    ASSERT_EQ(Measured(audio), expected) << round;
  }
}

TEST_P(StepsOfALanguage, ReleaseMemoryFreesItsListAndNoMore) {
  AnalyzedAudio audio(GetParam().language);
  Samples samples;
  Align(audio, samples, GetParam());
  ASSERT_EQ(Analyze(audio, samples), 0);
  const Doubles lasting = Lasting(audio);
  const Doubles all = Measured(audio);
  // Nothing here is all zeros, so nothing could go unnoticed.
  EXPECT_GT(audio.GetWaveY(50) + audio.GetPitchContour(64) + audio.GetIntensityContour(64), 0);
  EXPECT_GT(audio.GetSpeechUttEnergyRatio(), 0.0);
  EXPECT_GT(audio.GetSignalNoiseRatio(), 0.0);
  EXPECT_GT(audio.GetUttAveragePitch(), 0);
  if (GetParam().language != kLanguageChinese) {
    EXPECT_GT(audio.GetUttNumOfPitchSegments(), 0);
  }
  AnalyzedAudio copy(audio);

  audio.ReleaseMemory();
  EXPECT_EQ(Releasable(audio), Doubles(Releasable(copy).size(), 0.0));
  EXPECT_EQ(Lasting(audio), lasting);
  EXPECT_GT(audio.GetNumOfPhonemes(), 0);
  EXPECT_EQ(audio.GetMatchedSentenceIndex(), 0);
  audio.ReleaseMemory();
  EXPECT_EQ(Lasting(audio), lasting);
  AnalyzedAudio copy_of_less(audio);
  EXPECT_EQ(Lasting(copy_of_less), lasting);
  EXPECT_EQ(Measured(copy), all);

  ASSERT_EQ(Analyze(audio, samples), 0);
  EXPECT_EQ(Measured(audio), all);
  audio.ReleaseMemory();
  Align(audio, samples, GetParam());  // the next alignment takes the rest
  EXPECT_EQ(audio.GetSpeechUttEnergyRatio(), 0.0);
  EXPECT_EQ(audio.GetSignalNoiseRatio(), 0.0);
  for (int i = 0; i < 128; ++i) {
    EXPECT_EQ(audio.GetWaveY(i) + audio.GetPitchContour(i) + audio.GetIntensityContour(i), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, StepsOfALanguage,
                         testing::Values(kEnglish, kChinese, kJapanese), [](const auto& param) {
                           return std::string(param.param.recording).substr(0, 2);
                         });

// 200 Hz for half a second: its frames have that pitch, and only the frames are written.
TEST_F(AnalysisSteps, FramePitchOfAnySamples) {
  constexpr std::uint32_t kCount = 11025;
  Samples samples(kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    samples[i] = static_cast<std::int16_t>(std::lround(
        8000.0 * std::sin(2.0 * std::numbers::pi * 200.0 * static_cast<double>(i) / 22050.0)));
  }
  AnalyzedAudio audio(kLanguageJapanese);  // nothing aligned: none is needed
  std::vector<int> pitch(100, -7);
  ASSERT_EQ(audio.CalculateFramePitch_PraAC(samples.data(), kCount, pitch.data()), 0);
  for (int i = 10; i < 38; ++i) EXPECT_NEAR(pitch[static_cast<std::size_t>(i)], 200, 1) << i;
  EXPECT_GE(pitch[47], 0);  // (11025 - 551) / 220 + 1 = 48 frames
  EXPECT_EQ(pitch[48], -7);

  pitch.assign(3, -7);
  EXPECT_EQ(audio.CalculateFramePitch_PraAC(samples.data(), 659, pitch.data()), 0);
  EXPECT_EQ(pitch, (std::vector<int>{0, -7, -7}));
  pitch.assign(3, -7);
  EXPECT_EQ(audio.CalculateFramePitch_PraAC(samples.data(), 550, pitch.data()), 0);
  EXPECT_EQ(audio.CalculateFramePitch_PraAC(samples.data(), 550, nullptr), 0);
  EXPECT_EQ(audio.CalculateFramePitch_PraAC(nullptr, 0, pitch.data()), 0);
  EXPECT_EQ(pitch, std::vector<int>(3, -7));
  EXPECT_EQ(m_messages.All(), "");

  EXPECT_EQ(audio.CalculateFramePitch_PraAC(nullptr, 660, pitch.data()), -1);
  EXPECT_EQ(audio.CalculateFramePitch_PraAC(samples.data(), 660, nullptr), -1);
  EXPECT_EQ(audio.CalculateFramePitch_PraAC(samples.data(), 0x80000000U, pitch.data()), -1);
  EXPECT_EQ(pitch, std::vector<int>(3, -7));
  EXPECT_EQ(m_messages.All(),
            "ERROR in AnalyzedAudio::CalculateFramePitch_PraAC(), no samples\n"
            "ERROR in AnalyzedAudio::CalculateFramePitch_PraAC(), no array for the pitch\n"
            "ERROR in AnalyzedAudio::CalculateFramePitch_PraAC(), dNumOfSamples too large\n");
  AnalyzedAudio unknown(static_cast<LanguageType>(0));
  m_messages.Clear();
  EXPECT_EQ(unknown.CalculateFramePitch_PraAC(samples.data(), kCount, pitch.data()), -1);
  EXPECT_EQ(m_messages.All(),
            "ERROR in AnalyzedAudio::CalculateFramePitch_PraAC(), unknown Language Type\n");
}

// The characters that may be read: one a phoneme, and the end.
void ExpectNoSymbols(AnalyzedAudio& audio) {
  for (int i = 0; i <= audio.GetNumOfPhonemes(); ++i) {
    EXPECT_EQ(audio.GetSoundsLikePhonemes()[i], '\0') << i;
  }
}

TEST_F(AnalysisSteps, SoundsLikeIsAsLongAsThePhonemes) {
  AnalyzedAudio audio(kLanguageEnglish);
  ExpectNoSymbols(audio);
  Samples samples;
  Align(audio, samples, kEnglish);
  ASSERT_GT(audio.GetNumOfPhonemes(), 5);
  ExpectNoSymbols(audio);
  ASSERT_EQ(Analyze(audio, samples), 0);
  EXPECT_EQ(static_cast<int>(std::string(audio.GetSoundsLikePhonemes()).size()),
            audio.GetNumOfPhonemes());
  Align(audio, samples, kEnglish);  // what an earlier analysis said is gone
  ExpectNoSymbols(audio);
  AnalyzedAudio unknown(static_cast<LanguageType>(9));
  ExpectNoSymbols(unknown);
}

TEST_F(AnalysisSteps, SoundsLikeNothingWithoutAModel) {
  ASSERT_EQ(AnalyzedAudio::LoadModelFile("/nonexistent", kPhonemeModelEnglish), -1);
  AnalyzedAudio audio(kLanguageEnglish);
  Samples samples;
  Align(audio, samples, kEnglish);
  EXPECT_EQ(Analyze(audio, samples), 0);
  ExpectNoSymbols(audio);
  m_messages.Clear();
  EXPECT_EQ(audio.PrintAlignmentResult(), 0);
  EXPECT_THAT(m_messages.StandardOutput(), testing::HasSubstr("SoundsLike=\t[]\n"));
  const std::string model = test::VectorPath("models/phon_en.bin").string();
  ASSERT_GE(AnalyzedAudio::LoadModelFile(model.c_str(), kPhonemeModelEnglish), 0);
}

// There is sound, but nothing of it is speech.
TEST_F(AnalysisSteps, ASentenceWithoutWordsHasAFlatWaveform) {
  AnalyzedAudio audio(kLanguageEnglish);
  ASSERT_EQ(audio.AddPossibleSentence(""), 1);
  Samples samples(22050);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<std::int16_t>(i % 40 < 20 ? 9000 : -9000);
  }
  ASSERT_EQ(audio.Align(22050, samples.data()), 0);
  ASSERT_EQ(audio.Analyze(22050, samples.data()), 0);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(audio.GetWaveY(i), 0) << i;
}

}  // namespace
}  // namespace veral3
