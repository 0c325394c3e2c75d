// What an analysis leaves behind, what a copy takes along, and what the next step makes of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/Alignments.h"
#include "core/AnalyzedAudio.h"
#include "core/MadeAudio.h"
#include "core/Measurements.h"
#include "recognition/keras/KerasModel.h"
#include "recognition/keras/LayerDense.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using test::MadeAudio;
using test::Measurements;
using test::MeasurementsOf;
using Samples = std::vector<std::int16_t>;

constexpr const wchar_t* kSentence = L"你好 東 是";

bool AllZero(const std::vector<double>& values) {
  return std::ranges::all_of(values, [](double value) { return value == 0.0; });
}

class AnalysisLifecycle : public testing::Test {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }

  AnalysisLifecycle() {
    m_audio.AddPossibleSentence(kSentence);
    m_samples = test::ChainRecording("zh_learner");
    EXPECT_EQ(m_audio.Align(Count(), m_samples.data()), 0);
    m_messages.Clear();
  }

  std::uint32_t Count() const { return static_cast<std::uint32_t>(m_samples.size()); }

  // Analyses, and sees to it that there is something of every kind (but of the utterance's pitch
  // segments, of which this recording has none loud enough).
  Measurements Analysed() {
    EXPECT_EQ(m_audio.Analyze(Count(), m_samples.data()), 0);
    Measurements all = MeasurementsOf(m_audio);
    EXPECT_EQ(all.size(), 16u);
    for (const auto& [kind, values] : all) {
      EXPECT_EQ(AllZero(values), kind == "utterance segments") << kind;
    }
    return all;
  }

  void ExpectForgotten(AnalyzedAudio& audio) {
    for (const auto& [kind, values] : MeasurementsOf(audio)) EXPECT_TRUE(AllZero(values)) << kind;
  }

  test::MessageCapture m_messages;
  AnalyzedAudio m_audio{kLanguageChinese};
  Samples m_samples;
};

TEST_F(AnalysisLifecycle, CopiesTakeEverythingAlong) {
  const Measurements expected = Analysed();
  AnalyzedAudio copy(m_audio);
  AnalyzedAudio assigned(kLanguageEnglish);
  assigned = m_audio;
  EXPECT_EQ(MeasurementsOf(copy), expected);
  EXPECT_EQ(MeasurementsOf(assigned), expected);

  // What becomes of the source does not reach them.
  m_audio.ReleaseMemory();
  ASSERT_EQ(m_audio.Align(Count(), m_samples.data()), 0);
  ExpectForgotten(m_audio);
  EXPECT_EQ(MeasurementsOf(copy), expected);
  EXPECT_EQ(MeasurementsOf(assigned), expected);
  copy.ReleaseMemory();
  EXPECT_EQ(MeasurementsOf(assigned), expected);
}

TEST_F(AnalysisLifecycle, ReleaseMemoryFreesWhatWasMeasuredByFrameAndSyllable) {
  const Measurements before = Analysed();
  m_audio.ReleaseMemory();
  const Measurements after = MeasurementsOf(m_audio);
  for (const char* kind : {"pitch", "segments", "duration", "intensity", "tones", "word pitch"}) {
    EXPECT_TRUE(AllZero(after.at(kind))) << kind;
  }
  for (const char* kind :
       {"sounds like", "sounds like probability", "distribution", "waveform", "noise ratio"}) {
    EXPECT_EQ(after.at(kind), before.at(kind)) << kind;
  }
  EXPECT_EQ(m_audio.GetMatchedSentenceIndex(), 0);
  EXPECT_GT(m_audio.GetNumOfSyllables(), 0);

  std::ostringstream lines;
  EXPECT_EQ(m_audio.SaveSylBadTraits(lines), -1);  // there are no pitch segments any more
  EXPECT_EQ(lines.str(), "");

  EXPECT_EQ(Analysed(), before);
}

TEST_F(AnalysisLifecycle, ANewAlignmentForgetsWhatWasMeasured) {
  Analysed();
  ASSERT_EQ(m_audio.Align(Count(), m_samples.data()), 0);
  ExpectForgotten(m_audio);
  EXPECT_STREQ(m_audio.GetSoundsLikePhonemes(), "");
  Analysed();
  AnalyzedAudio tutor(kLanguageChinese);
  tutor.AddPossibleSentence(kSentence);
  ASSERT_EQ(m_audio.AlignAgainstTutor(&tutor, Count(), m_samples.data()), 0);
  ExpectForgotten(m_audio);
  EXPECT_GT(m_audio.GetNumOfSyllables(), 0);
}

TEST_F(AnalysisLifecycle, OneRecordingAfterAnotherIsLikeOneAlone) {
  Analysed();
  Samples other = test::ChainRecording("zh_tutor");
  const auto count = static_cast<std::uint32_t>(other.size());
  ASSERT_GE(m_audio.Align(count, other.data()), 0);
  ASSERT_EQ(m_audio.Analyze(count, other.data()), 0);

  AnalyzedAudio fresh(kLanguageChinese);
  fresh.AddPossibleSentence(kSentence);
  other = test::ChainRecording("zh_tutor");
  ASSERT_GE(fresh.Align(count, other.data()), 0);
  ASSERT_EQ(fresh.Analyze(count, other.data()), 0);
  EXPECT_EQ(MeasurementsOf(m_audio), MeasurementsOf(fresh));
}

// Of half an alignment nothing is to be seen but the count of samples.
void ExpectNothingAligned(AnalyzedAudio& audio, int num_samples) {
  EXPECT_EQ(audio.GetNumOfSamples(), num_samples);
  EXPECT_EQ(audio.GetMatchedSentenceIndex(), -1);
  EXPECT_TRUE(audio.GetMatchedSentence().IsEmpty());
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
  EXPECT_EQ(audio.GetNumOfSyllables(), 0);
  EXPECT_EQ(audio.GetNumOfWords(), 0);
  EXPECT_STREQ(audio.GetPhonemes(), "");
  EXPECT_EQ(audio.GetPauseMFCCProb(0), 0.0);
  EXPECT_TRUE(audio.GetWordOfMatchedSentence(0).IsEmpty());
  double features[AnalyzedAudio::NUM_UTT_GOODNESS_FEATURES];
  audio.PrepareUttGoodnessFeatures(features);
  for (int i = 3; i < 16; ++i) {
    if (i == 12) continue;  // the log probability
    EXPECT_EQ(features[i], 0.0) << i;
  }
}

TEST_F(AnalysisLifecycle, AFailedAlignmentLeavesNothing) {
  Analysed();
  Samples two_frames = test::NoiseBursts(771, 2);
  EXPECT_EQ(m_audio.Align(771, two_frames.data()), -1);
  ExpectForgotten(m_audio);
  ExpectNothingAligned(m_audio, 771);
  EXPECT_EQ(m_audio.Analyze(771, two_frames.data()), -1);

  ASSERT_EQ(m_audio.Align(Count(), m_samples.data()), 0);
  Analysed();
  AnalyzedAudio tutor(m_audio);
  EXPECT_EQ(m_audio.AlignAgainstTutor(&tutor, 771, two_frames.data()), -1);
  ExpectForgotten(m_audio);
  ExpectNothingAligned(m_audio, 771);
  EXPECT_GT(tutor.GetNumOfPhonemes(), 0);
}

TEST_F(AnalysisLifecycle, PronunciationAloneKeepsTheEarlierPitch) {
  const Measurements before = Analysed();
  EXPECT_EQ(m_audio.AnalyzePronunOnly(m_samples.data()), 0);
  const Measurements after = MeasurementsOf(m_audio);
  for (const auto& [kind, values] : before) {
    if (kind == "goodness") continue;
    EXPECT_EQ(after.at(kind), values) << kind;
  }
}

// What a phoneme's scores of nothing but 0 leave open stays as the analysis before had it, also
// that of an earlier alignment.
TEST_F(AnalysisLifecycle, WithoutScoresAPhonemeKeepsItsEarlierProbability) {
  const Measurements before = Analysed();
  const std::vector<double>& probabilities = before.at("sounds like probability");
  {
    const test::ScratchFolder folder;
    std::vector<std::unique_ptr<keras::Layer>> layers;
    layers.push_back(std::make_unique<keras::LayerDense>(std::vector<double>(624 * 33, 0.0),
                                                         std::vector<double>(33, 0.0), 'r'));
    const std::string path = (folder.Path() / "nothing.model").string();
    ASSERT_EQ(keras::KerasModel(4, std::move(layers)).save_binary_weights(path), 0);
    ASSERT_EQ(AnalyzedAudio::LoadModelFile(path.c_str(), kPhonemeModelChinese), 4);
  }
  const auto expect_kept = [&](AnalyzedAudio& audio) {
    const Measurements after = MeasurementsOf(audio);
    EXPECT_EQ(after.at("sounds like probability"), probabilities);
    EXPECT_TRUE(AllZero(after.at("distribution")));
    EXPECT_STREQ(audio.GetSoundsLikePhonemes(),
                 std::string(probabilities.size(), 'a').c_str());  // the set's first
  };
  EXPECT_EQ(m_audio.AnalyzePronunOnly(m_samples.data()), 0);
  expect_kept(m_audio);
  EXPECT_EQ(m_audio.Analyze(Count(), m_samples.data()), 0);
  expect_kept(m_audio);
  ASSERT_EQ(m_audio.Align(Count(), m_samples.data()), 0);
  EXPECT_EQ(m_audio.Analyze(Count(), m_samples.data()), 0);
  expect_kept(m_audio);

  AnalyzedAudio fresh(kLanguageChinese);
  fresh.AddPossibleSentence(kSentence);
  ASSERT_EQ(fresh.Align(Count(), m_samples.data()), 0);
  EXPECT_EQ(fresh.Analyze(Count(), m_samples.data()), 0);
  EXPECT_TRUE(AllZero(MeasurementsOf(fresh).at("sounds like probability")));

  const std::string model = test::VectorPath("models/phon_zh.bin");
  ASSERT_GE(AnalyzedAudio::LoadModelFile(model.c_str(), kPhonemeModelChinese), 0);
  m_samples = test::ChainRecording("zh_learner");  // not filtered again and again
  ASSERT_EQ(m_audio.Align(Count(), m_samples.data()), 0);
  EXPECT_EQ(Analysed(), before);
}

// A recording whose alignment and samples are made by hand: 60 frames. Syllable 0 is A (frames 10 -
// 20) and k (25 - 35), syllable 1 is I (40 - 50). The samples are +100 or -100 by chance in
// the phonemes and between A and k, +10 or -10 elsewhere: loud, and without a pitch.
class HandMadeAnalysis : public testing::Test {
 protected:
  static constexpr int kFrames = 60;
  static constexpr int kCount = 220 * (kFrames - 1) + 551;  // 13531
  static constexpr double kPauseProbability = 0.042268;     // half of the English threshold

  static void SetUpTestSuite() { test::LoadSmallEngine(); }

  HandMadeAnalysis() {
    std::uint32_t random = 1;
    for (int i = 0; i < kCount; ++i) {
      random = random * 1664525u + 1013904223u;
      const bool loud = (i >= 2200 && i < 7700) || (i >= 8800 && i < 11000);
      const int amplitude = loud ? 100 : 10;
      m_samples.push_back(static_cast<std::int16_t>(random >> 31 == 0 ? amplitude : -amplitude));
    }
    auto alignment = std::make_shared<AlignmentResult>(test::MakeAlignment(
        kFrames, {{'A', 10, 20}, {'k', 25, 35}, {'I', 40, 50}}, {0, 2}, {0, 2}));
    alignment->matched_sentence_index = 0;
    alignment->num_samples = kCount;
    alignment->mfcc.assign(static_cast<std::size_t>(kFrames) * 39, 0.5F);
    alignment->pause_mfcc_prob[2] = kPauseProbability;
    m_audio.Hand().result = std::move(alignment);
    m_audio.Hand().num_samples = kCount;
  }

  // 6600 samples of speech; around it 1100 loud samples and 5831 others.
  static constexpr double kNoisePower = (1100.0 * 10000.0 + 5831.0 * 100.0) / 6931.0;
  static constexpr double kRatio = 10000.0 / kNoisePower;

  test::MessageCapture m_messages;
  MadeAudio m_audio{kLanguageEnglish};
  Samples m_samples;
};

// The gap before a syllable is told by the syllable's number and not by its first phoneme: between
// A and k it is loud. And noise counts, which has no pitch.
TEST_F(HandMadeAnalysis, PronunciationAloneHasItsOwnRuleForBadSyllables) {
  ASSERT_EQ(m_audio.AnalyzePronunOnly(m_samples.data()), 0);
  EXPECT_EQ(m_audio.ProbGoodSyllable(0), 1.0);
  EXPECT_DOUBLE_EQ(m_audio.ProbGoodSyllable(1), 0.5);
  ASSERT_EQ(m_audio.Analyze(kCount, m_samples.data()), 0);
  EXPECT_EQ(m_audio.ProbGoodSyllable(0), 1.0);
  EXPECT_EQ(m_audio.ProbGoodSyllable(1), 1.0);
}

// Energies frame by frame, as the definition says them.
TEST_F(HandMadeAnalysis, PronunciationAloneMeasuresLoudness) {
  double total = 0.0;
  double speech = 0.0;
  for (int f = 0; f < kFrames; ++f) {
    double energy = 0.0;
    for (int i = 220 * f; i < 220 * f + 551; ++i) {
      const double x = m_samples[static_cast<std::size_t>(i)];
      energy += x * x;
    }
    total += energy;
    if ((f >= 10 && f < 35) || (f >= 40 && f < 50)) speech += energy;
  }
  ASSERT_EQ(m_audio.AnalyzePronunOnly(m_samples.data()), 0);
  EXPECT_DOUBLE_EQ(m_audio.GetSpeechUttEnergyRatio(), speech / total);
  EXPECT_EQ(m_audio.GetSyllableIntensity(0), 551.0 * 10000.0);
  EXPECT_EQ(m_audio.GetSyllableIntensity(1), 551.0 * 10000.0);
  EXPECT_DOUBLE_EQ(m_audio.GetSignalNoiseRatio(), kRatio);
  EXPECT_EQ(m_audio.GetSyllablePitch(0), 0);
  EXPECT_EQ(m_audio.GetSyllableDuration(0), 0);  // not measured
}

TEST_F(HandMadeAnalysis, DurationsAndRatioOfAFullAnalysis) {
  ASSERT_EQ(m_audio.Analyze(kCount, m_samples.data()), 0);
  EXPECT_EQ(m_audio.GetSyllableDuration(0), 25 * 220);
  EXPECT_EQ(m_audio.GetSyllableDuration(1), 10 * 220);
  EXPECT_DOUBLE_EQ(m_audio.GetSignalNoiseRatio(), kRatio);
  // The waveform is read from 2200 to 11000: points of 88 samples, the loudest of 100. Samples 7700
  // to 8800 are ten times less: points 63 to 74 lie there whole.
  EXPECT_EQ(m_audio.GetWaveY(0), 29490);
  EXPECT_EQ(m_audio.GetWaveY(99), 29490);
  EXPECT_EQ(m_audio.GetWaveY(63), 2949);
  EXPECT_EQ(m_audio.GetWaveY(74), 2949);
}

TEST_F(HandMadeAnalysis, TheNoiseRatioIsComputedOnce) {
  EXPECT_EQ(m_audio.GetSignalNoiseRatio(), 0.0);
  EXPECT_DOUBLE_EQ(m_audio.CalculateSignalNoiseRatio(m_samples.data()), kRatio);
  EXPECT_DOUBLE_EQ(m_audio.GetSignalNoiseRatio(), kRatio);
  const Samples even(kCount, 100);
  EXPECT_DOUBLE_EQ(m_audio.CalculateSignalNoiseRatio(even.data()), kRatio);
  ASSERT_EQ(m_audio.Analyze(kCount, Samples(even).data()), 0);
  EXPECT_DOUBLE_EQ(m_audio.GetSignalNoiseRatio(), kRatio);
  EXPECT_EQ(m_messages.StandardError().find("CalculateSignalNoiseRatio"), std::string::npos);
}

// Silence around the speech leaves nothing to divide by: the ratio stays open, and the next call
// computes it.
TEST_F(HandMadeAnalysis, TheNoiseRatioStaysOpenWithoutNoise) {
  Samples silent = m_samples;
  for (std::int16_t& sample : silent) {
    if (sample == 10 || sample == -10) sample = 0;
  }
  for (int i = 4400; i < 5500; ++i) silent[static_cast<std::size_t>(i)] = 0;
  EXPECT_EQ(m_audio.CalculateSignalNoiseRatio(silent.data()), 0.0);
  EXPECT_DOUBLE_EQ(m_audio.CalculateSignalNoiseRatio(m_samples.data()), kRatio);
}

TEST_F(HandMadeAnalysis, TheNoiseRatioNeedsAnAlignmentAndSamples) {
  EXPECT_EQ(m_audio.CalculateSignalNoiseRatio(nullptr), 0.0);
  AnalyzedAudio fresh(kLanguageEnglish);
  EXPECT_EQ(fresh.CalculateSignalNoiseRatio(m_samples.data()), 0.0);
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in AnalyzedAudio::CalculateSignalNoiseRatio(), no samples\n"
            "ERROR in AnalyzedAudio::CalculateSignalNoiseRatio(), nothing is aligned\n");
}

TEST_F(HandMadeAnalysis, WordPitchIsTheMeanOfTheSyllables) {
  test::RecordingArrays arrays;
  arrays.phonemes = "AkIEnt";
  arrays.start = {0, 220, 440, 660, 880, 1100};
  arrays.end = {220, 440, 660, 880, 1100, 1320};
  arrays.syllable_start = {0, 1, 2, 3, 4, 5};
  arrays.syllable_pitch = {200, 101, 102, 90, 0, 133};
  arrays.syllable_duration = std::vector<int>(6, 220);
  arrays.syllable_mark = std::vector<int>(6, 0);
  arrays.syllable_intensity = std::vector<double>(6, 1.0);
  arrays.tone_prob.resize(6);
  arrays.word_start = {0, 1, 3};
  MadeAudio audio(kLanguageEnglish);
  Fill(audio, arrays);
  EXPECT_EQ(audio.GetWordPitch(0), 200);
  EXPECT_EQ(audio.GetWordPitch(1), 101);  // 101.5
  EXPECT_EQ(audio.GetWordPitch(2), 74);   // 223 / 3
  EXPECT_EQ(audio.GetWordPitch(3), 0);
}

TEST_F(HandMadeAnalysis, UtteranceSegmentsAreCopiedAndForgotten) {
  auto prosody = std::make_shared<ProsodyResult>();
  prosody->utterance_pitch_segments = 7;
  m_audio.Hand().prosody = std::move(prosody);
  AnalyzedAudio copy(m_audio);
  EXPECT_EQ(copy.GetUttNumOfPitchSegments(), 7);
  ASSERT_EQ(m_audio.AnalyzePronunOnly(m_samples.data()), 0);
  EXPECT_EQ(m_audio.GetUttNumOfPitchSegments(), 7);
  m_audio.Align(0, nullptr);
  EXPECT_EQ(m_audio.GetUttNumOfPitchSegments(), 0);
  EXPECT_EQ(copy.GetUttNumOfPitchSegments(), 7);
}

// The tables of an alignment are longer than what it holds: the rest is nobody's.
TEST_F(HandMadeAnalysis, WhatLiesBehindTheCountsIsNotRead) {
  auto alignment = std::make_shared<AlignmentResult>(
      test::MakeAlignment(kFrames, {{'A', 10, 20}, {'k', 25, 35}}, {0, 1}, {0, 1}));
  alignment->matched_sentence_index = 0;
  alignment->phoneme_start[2] = alignment->phoneme_end[2] = 77;
  alignment->syllable_start[2] = alignment->syllable_mark[2] = 77;
  alignment->word_start[2] = 77;
  alignment->syllable_mark[1] = 1;
  m_audio.Hand().result = std::move(alignment);
  EXPECT_EQ(m_audio.GetPhonemeStartSampleNum(1), 25 * 220);
  EXPECT_EQ(m_audio.GetPhonemeEndSampleNum(1), 35 * 220);
  EXPECT_EQ(m_audio.GetSyllableStartPosition(1), 1);
  EXPECT_EQ(m_audio.GetSyllableToneOrStress(1), 1);
  EXPECT_EQ(m_audio.GetWordStartPosition(1), 1);
  for (const int behind : {2, 3, 511}) {
    EXPECT_EQ(m_audio.GetPhonemeStartSampleNum(behind), 0);
    EXPECT_EQ(m_audio.GetPhonemeEndSampleNum(behind), 0);
    EXPECT_EQ(m_audio.GetSyllableStartPosition(behind), 0);
    EXPECT_EQ(m_audio.GetSyllableToneOrStress(behind), 0);
    EXPECT_EQ(m_audio.GetWordStartPosition(behind), 0);
  }
}

TEST_F(HandMadeAnalysis, SegmentsAndTonesFromTheFirstToTheLast) {
  auto prosody = std::make_shared<ProsodyResult>();
  prosody->pitch.segments = {{3, 0, 0}, {1, 0, 0}};
  prosody->pitch.tones = {{0.1, 0.2, 0.3, 0.4, 0.5}, {0.6, 0.7, 0.8, 0.9, 1.0}};
  m_audio.Hand().prosody = std::move(prosody);
  EXPECT_EQ(m_audio.GetSylNumOfPitchSegments(0), 3);
  EXPECT_EQ(m_audio.GetSylNumOfPitchSegments(1), 1);
  for (const int none : {-1, 2, INT_MAX, INT_MIN}) {
    EXPECT_EQ(m_audio.GetSylNumOfPitchSegments(none), 0);
    EXPECT_EQ(m_audio.GetSylToneProb(none, 0), 0.0);
  }
  EXPECT_EQ(m_audio.GetSylToneProb(0, 0), 0.1);
  EXPECT_EQ(m_audio.GetSylToneProb(1, 4), 1.0);
  for (const int none : {-1, 5, INT_MAX, INT_MIN}) EXPECT_EQ(m_audio.GetSylToneProb(0, none), 0.0);
}

// Of the gap before syllable 1 the frames, their pitch and the pause's probability.
TEST_F(HandMadeAnalysis, BadSpacesAloneAreMarkedAnew) {
  const auto pauses = [this] {
    std::ostringstream out;
    EXPECT_EQ(m_audio.SaveSylPauseBadTraits(out), 0);
    return out.str();
  };
  ASSERT_EQ(m_audio.AnalyzePitch(m_samples.data()), 0);
  ASSERT_EQ(m_audio.AnalyzePronunOnly(m_samples.data()), 0);
  EXPECT_EQ(pauses(), "1,5,0.042268\n");  // between A and k
  ASSERT_EQ(m_audio.MarkBadSpaces(), 0);
  EXPECT_EQ(pauses(), "1,0,0.042268\n");  // between k and I, and voiced
  ASSERT_EQ(m_audio.MarkBadSpacesPronunOnly(), 0);
  EXPECT_EQ(pauses(), "1,5,0.042268\n");
}

// Too short for a frame, which no aligner takes: the first step that misses them says so, and none
// comes after it.
TEST_F(HandMadeAnalysis, AStepThatFailsEndsTheAnalysis) {
  m_audio.Hand().num_samples = 300;
  EXPECT_EQ(m_audio.Analyze(300, m_samples.data()), -1);
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in AnalyzedAudio::CountUttPichSegments(), nothing is analysed\n");
  m_messages.Clear();
  EXPECT_EQ(m_audio.AnalyzePronunOnly(m_samples.data()), -1);
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in AnalyzedAudio::MarkBadSyllablesPronunOnly(), nothing is analysed\n");
}

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
class Throwing final : public AnalyzedAudio {
 public:
  using AnalyzedAudio::AnalyzedAudio;
  LanguageType GetLanguageType() override { throw std::runtime_error("no language"); }
  int GetUttStartSampleNum() override { throw std::runtime_error("no start"); }
  int GetNumOfSyllables() override { throw 7; }
};
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

// What a derived class throws stays inside.
TEST_F(HandMadeAnalysis, ThrownByADerivedClass) {
  Throwing audio(kLanguageEnglish);
  double features[AnalyzedAudio::NUM_UTT_GOODNESS_FEATURES];
  audio.PrepareUttGoodnessFeatures(features);
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in AnalyzedAudio::PrepareUttGoodnessFeatures(), no language\n");
  audio.AddPossibleSentence(L"I ATE");
  Samples samples = test::ChainRecording("en_learner");
  const auto count = static_cast<std::uint32_t>(samples.size());
  ASSERT_EQ(audio.Align(count, samples.data()), 0);
  m_messages.Clear();
  EXPECT_EQ(audio.Analyze(count, samples.data()), -1);
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in AnalyzedAudio::GenerarteWaveformContour(), no start\n");
  m_messages.Clear();
  EXPECT_EQ(audio.PrintAlignmentResult(), -1);
  EXPECT_NE(m_messages.StandardError().find(
                "ERROR in AnalyzedAudio::PrintAlignmentResult(), unknown error\n"),
            std::string::npos);
}

class SetWithoutSize final : public CPhonemeSet {
 public:
  SetWithoutSize() : CPhonemeSet("xyz", "xyz", 99) {}
  int GetSize() const override { throw std::runtime_error("no size"); }
  bool IsVowel(wchar_t) const override { return false; }
  bool IsConsonant(wchar_t) const override { return false; }
};

TEST_F(HandMadeAnalysis, ThrownByAPhonemeSet) {
  const SetWithoutSize set;
  m_audio.Hand().phoneme_set = &set;
  EXPECT_EQ(m_audio.CalculatePhonProbDistr(), -1);
  EXPECT_EQ(m_audio.CalculateUttPronunProb(), -1);
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in AnalyzedAudio::CalculatePhonProbDistr(), no size\n"
            "ERROR in AnalyzedAudio::CalculateUttPronunProb(), no size\n");
  m_messages.Clear();
  ASSERT_EQ(m_audio.AddPossibleSentence(L"I ATE"), 1);
  EXPECT_EQ(m_audio.Align(kCount, m_samples.data()), -1);
  EXPECT_EQ(m_audio.AlignAgainstTutor(&m_audio, kCount, m_samples.data()), -1);
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in AnalyzedAudio::Align(), no size\n"
            "ERROR in AnalyzedAudio::AlignAgainstTutor(), no size\n");
  m_audio.Hand().phoneme_set = PhonemeSetOf(kLanguageEnglish);
}

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
class TwoPhonemes final : public AnalyzedAudio {
 public:
  using AnalyzedAudio::AnalyzedAudio;
  int GetNumOfPhonemes() override { return 2; }
};
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

// A derived class that counts otherwise decides where the utterance ends.
TEST_F(HandMadeAnalysis, TheEndOfTheUtteranceGoesByTheCountOfTheTable) {
  EXPECT_EQ(m_audio.GetUttEndSampleNum(), 11000);
  TwoPhonemes audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"I ATE");
  Samples samples = test::ChainRecording("en_learner");
  ASSERT_EQ(audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data()), 0);
  EXPECT_GT(audio.GetPhonemeEndSampleNum(2), audio.GetPhonemeEndSampleNum(1));
  EXPECT_EQ(audio.GetUttEndSampleNum(), audio.GetPhonemeEndSampleNum(1));
}

// A frame is loud above a tenth of the mean speech intensity, and not at it.
TEST_F(HandMadeAnalysis, FrameExamplesAreLoudAboveATenthOfTheSpeech) {
  auto alignment = std::make_shared<AlignmentResult>(
      test::MakeAlignment(7, {{'A', 0, 3}}, {0}, std::vector<int>{0}));
  alignment->matched_sentence_index = 0;
  alignment->mfcc.assign(7 * 39, 0.0F);
  for (std::size_t frame = 0; frame < 7; ++frame) {
    std::fill_n(alignment->mfcc.begin() + static_cast<std::ptrdiff_t>(frame * 39), 39,
                static_cast<float>(frame));
  }
  alignment->path = {
      {'A', 0, true, 0, 0, 0}, {'-', 0, false, 0, 1, 660}, {'$', 0, false, 0, 2, 1320}};
  auto prosody = std::make_shared<ProsodyResult>();
  prosody->intensity.mean_speech = 1000.0;
  prosody->intensity.frame = {100.5, 100.0, 99.5, 100.5, 100.0, 99.5, 0.0};
  m_audio.Hand().result = std::move(alignment);
  m_audio.Hand().prosody = std::move(prosody);
  std::ostringstream features, labels;
  ASSERT_EQ(m_audio.SaveFrameMFCCDataToFiles(features, labels, 0.0), 0);
  // Of the phoneme frame 0, of the pause frames 4 and 5; the third block is the frame itself.
  std::istringstream lines(features.str());
  std::vector<std::string> centres;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream cells(line);
    std::string cell;
    for (int i = 0; i <= 2 * 39; ++i) std::getline(cells, cell, ',');
    centres.push_back(cell);
  }
  EXPECT_EQ(centres, (std::vector<std::string>{"0", "4", "5"}));
}

TEST_F(HandMadeAnalysis, GoodnessExamplesAreLabelledByTheFlag) {
  ASSERT_EQ(m_audio.Analyze(kCount, m_samples.data()), 0);
  std::ostringstream features, good, bad;
  EXPECT_EQ(m_audio.SaveUttGoodnessTrainData(true, features, good), 0);
  EXPECT_EQ(good.str(), "1.0, 0.0\n");
  EXPECT_EQ(m_audio.SaveUttGoodnessTrainData(false, features, bad), 0);
  EXPECT_EQ(bad.str(), "0.0, 1.0\n");
}

}  // namespace
}  // namespace veral3
