#include "core/AnalyzedAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <type_traits>
#include <vector>

#include "signal/WebRtcNs.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using Samples = std::vector<std::int16_t>;
using testing::HasSubstr;

static_assert(!std::has_virtual_destructor_v<AlignedAudio>);
static_assert(!std::has_virtual_destructor_v<AnalyzedAudio>);
static_assert(sizeof(AlignedAudio) == sizeof(void*));

int Align(AnalyzedAudio& audio, Samples& samples) {
  return audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data());
}

class AnalyzedAudioTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }
  test::MessageCapture m_messages;
};

// A vector of everything that can be read, for comparing two objects.
std::vector<double> Readings(AnalyzedAudio& audio) {
  std::vector<double> all = {static_cast<double>(audio.GetNumOfSamples()),
                             static_cast<double>(audio.GetNumOfPhonemes()),
                             static_cast<double>(audio.GetNumOfSyllables()),
                             static_cast<double>(audio.GetNumOfWords()),
                             audio.GetLogProbOfAlign(),
                             static_cast<double>(audio.GetUttStartSampleNum()),
                             static_cast<double>(audio.GetUttEndSampleNum())};
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    all.push_back(audio.GetPhonemes()[i]);
    all.push_back(audio.GetPhonemeStartSampleNum(i));
    all.push_back(audio.GetPhonemeEndSampleNum(i));
    all.push_back(audio.GetPhonMFCCProb(i));
    all.push_back(audio.GetPauseMFCCProb(i));
  }
  return all;
}

TEST_F(AnalyzedAudioTest, UnknownLanguageAnswersWithMessages) {
  AnalyzedAudio audio(static_cast<LanguageType>(4));
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Error in AnalyzedAudio::AnalyzedAudio(), unknown Language Type\n");
  m_messages.Clear();
  Samples samples = test::NoiseBursts(4000, 1);
  EXPECT_LT(audio.AddPossibleSentence(L"I ATE"), 0);
  EXPECT_LT(Align(audio, samples), 0);
  AnalyzedAudio tutor(kLanguageEnglish);
  EXPECT_LT(audio.AlignAgainstTutor(&tutor, 4000, samples.data()), 0);
  EXPECT_LT(tutor.AlignAgainstTutor(&audio, 4000, samples.data()), 0);
  EXPECT_EQ(m_messages.Entries().size(), 4u);
  EXPECT_EQ(audio.GetSizeOfPhonemeSet(), 0);
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
  EXPECT_STREQ(audio.GetPhonemes(), "");
}

TEST_F(AnalyzedAudioTest, ZeroIsNoLanguage) {
  AnalyzedAudio audio(static_cast<LanguageType>(0));
  EXPECT_THAT(m_messages.All(), HasSubstr("unknown Language Type"));
}

TEST_F(AnalyzedAudioTest, NinthSentenceIsRefused) {
  AnalyzedAudio audio(kLanguageEnglish);
  for (int i = 1; i <= 8; ++i) EXPECT_EQ(audio.AddPossibleSentence(L"I ATE"), i);
  m_messages.Clear();
  EXPECT_EQ(audio.AddPossibleSentence(L"I ATE"), -1);
  EXPECT_EQ(m_messages.All(),
            "ERROR in AnalyzedAudio::AddPossibleSentence(): Too many sentences!\n");
  Samples samples = test::ChainRecording("en_learner");
  EXPECT_EQ(Align(audio, samples), 7);  // of equal sentences the last becomes the fallback
}

TEST_F(AnalyzedAudioTest, DictionaryErrorsComeShifted) {
  AnalyzedAudio audio(kLanguageEnglish);
  EXPECT_EQ(audio.AddPossibleSentence(L"| I"), -101);
  EXPECT_EQ(audio.AddPossibleSentence(L"|1 bad|"), -200);
  EXPECT_EQ(audio.AddPossibleSentence(L"|2 I|"), -300);
  EXPECT_EQ(audio.AddPossibleSentence(L"|3 NOSUCHWORD |"), -400);
  std::wstring long_sentence;
  for (int i = 0; i < 257; ++i) long_sentence += L"I ";
  EXPECT_EQ(audio.AddPossibleSentence(long_sentence), -500);
  EXPECT_EQ(audio.AddPossibleSentence(L"I ATE"), 1);  // none of them counted
}

TEST_F(AnalyzedAudioTest, FailedSentenceLeavesItsSlotToTheNext) {
  AnalyzedAudio audio(kLanguageEnglish);
  EXPECT_EQ(audio.AddPossibleSentence(L"|2 I|"), -300);
  EXPECT_EQ(audio.AddPossibleSentence(L"I ATE"), 1);
  Samples samples = test::ChainRecording("en_learner");
  ASSERT_EQ(Align(audio, samples), 0);
  EXPECT_EQ(audio.GetMatchedSentence(), L"I ATE");
}

TEST_F(AnalyzedAudioTest, NoSentenceFailsAfterFiltering) {
  AnalyzedAudio audio(kLanguageEnglish);
  Samples samples(2000, 1000);
  EXPECT_EQ(Align(audio, samples), -1);
  EXPECT_EQ(m_messages.All(), "ERROR in AnalyzedAudio::Align(), m_dNumOfPossibleSentences <= 0\n");
  EXPECT_EQ(samples[0], 1000);   // the filter leaves the first sample
  EXPECT_LT(samples[1999], 10);  // and takes the constant away
  EXPECT_TRUE(audio.GetMatchedSentence().IsEmpty());
}

TEST_F(AnalyzedAudioTest, NoSamplesFailsAndForgetsTheOldResult) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"I ATE");
  Samples samples = test::ChainRecording("en_learner");
  ASSERT_EQ(Align(audio, samples), 0);
  ASSERT_GT(audio.GetNumOfPhonemes(), 0);
  m_messages.Clear();
  EXPECT_EQ(audio.Align(0, samples.data()), -1);
  EXPECT_EQ(m_messages.All(), "ERROR in AnalyzedAudio::Align(), dNumOfSamples <= 0\n");
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
  EXPECT_EQ(audio.GetNumOfWords(), 0);
  EXPECT_EQ(audio.GetNumOfSamples(), 0);
  EXPECT_EQ(audio.GetLogProbOfAlign(), 0.0);
}

// More phonemes than an alignment holds: there was a best path, and only what it is worth is known.
TEST_F(AnalyzedAudioTest, AFailedAlignmentKeepsTheProbabilityOfItsPath) {
  AnalyzedAudio audio(kLanguageEnglish);
  std::wstring sentence;
  for (int i = 0; i < 200; ++i) sentence += L"CAT ";
  ASSERT_EQ(audio.AddPossibleSentence(sentence), 1);
  Samples samples = test::NoiseBursts(400000, 3);
  EXPECT_EQ(Align(audio, samples), -1);
  EXPECT_LT(audio.GetLogProbOfAlign(), -100.0);
  double features[AnalyzedAudio::NUM_UTT_GOODNESS_FEATURES];
  audio.PrepareUttGoodnessFeatures(features);
  EXPECT_EQ(features[12], audio.GetLogProbOfAlign());
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
  EXPECT_EQ(audio.GetMatchedSentenceIndex(), -1);
}

TEST_F(AnalyzedAudioTest, ShortRecordingFailsAndTheObjectStaysUsable) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"I ATE");
  for (const int n : {1, 2, 331, 332, 550}) {
    Samples samples(static_cast<std::size_t>(n), 100);
    m_messages.Clear();
    EXPECT_LT(Align(audio, samples), 0) << n;
    EXPECT_FALSE(m_messages.All().empty()) << n;
  }
  Samples samples = test::ChainRecording("en_learner");
  EXPECT_EQ(Align(audio, samples), 0);
}

TEST_F(AnalyzedAudioTest, FewerFramesThanStatesFail) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"I ATE");
  Samples samples = test::NoiseBursts(551, 2);
  EXPECT_EQ(Align(audio, samples), -1);
  EXPECT_THAT(m_messages.All(),
              HasSubstr("ERROR! No Winner Token  in VTokenList::GetWinnerToken().\n"));
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
}

TEST_F(AnalyzedAudioTest, NullAndAbsurdArgumentsAreRefused) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"I ATE");
  EXPECT_EQ(audio.Align(1000, nullptr), -1);
  std::int16_t sample = 0;
  EXPECT_EQ(audio.Align(0xFFFFFFFFu, &sample), -1);
  EXPECT_EQ(audio.AlignAgainstTutor(nullptr, 1000, &sample), -1);
  EXPECT_EQ(audio.AlignAgainstTutor(&audio, 1000, nullptr), -1);
  EXPECT_EQ(m_messages.Entries().size(), 4u);
}

TEST_F(AnalyzedAudioTest, IndicesOutOfRangeReadZero) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"I ATE");
  Samples samples = test::ChainRecording("en_learner");
  ASSERT_EQ(Align(audio, samples), 0);
  for (const int i : {-1, -2147483647, 512, 513, 2147483647}) {
    EXPECT_EQ(audio.GetPhonemeStartSampleNum(i), 0);
    EXPECT_EQ(audio.GetPhonemeEndSampleNum(i), 0);
    EXPECT_EQ(audio.GetSyllableStartPosition(i), 0);
    EXPECT_EQ(audio.GetSyllableToneOrStress(i), 0);
    EXPECT_EQ(audio.GetWordStartPosition(i), 0);
    EXPECT_EQ(audio.GetPhonMFCCProb(i), 0.0);
    EXPECT_EQ(audio.GetPauseMFCCProb(i), 0.0);
    EXPECT_TRUE(audio.GetWordOfMatchedSentence(i).IsEmpty());
    EXPECT_EQ(audio.GetSyllablePitch(i), 0);
    EXPECT_EQ(audio.GetSylToneProb(i, 0), 0.0);
    EXPECT_EQ(audio.GetSyllableDuration(i), 0);
    EXPECT_EQ(audio.GetSyllableIntensity(i), 0.0);
    EXPECT_EQ(audio.GetWaveY(i), 0);
    EXPECT_EQ(audio.GetPitchContour(i), 0);
    EXPECT_EQ(audio.GetIntensityContour(i), 0);
    EXPECT_EQ(audio.GetWordPitch(i), 0);
  }
}

TEST_F(AnalyzedAudioTest, EverythingReadsZeroBeforeAnAlignment) {
  AnalyzedAudio audio(kLanguageJapanese);
  EXPECT_EQ(audio.GetLanguageType(), kLanguageJapanese);
  EXPECT_EQ(audio.GetSizeOfPhonemeSet(), 26);
  EXPECT_EQ(audio.GetMatchedSentenceIndex(), -1);
  EXPECT_EQ(Readings(audio), std::vector<double>(7, 0.0));
}

TEST_F(AnalyzedAudioTest, CopyReadsTheSameAndLivesOnItsOwn) {
  Samples samples = test::ChainRecording("en_learner");
  Samples other = test::NoiseBursts(30000, 3);
  std::vector<double> expected;
  {
    auto source = std::make_unique<AnalyzedAudio>(kLanguageEnglish);
    source->AddPossibleSentence(L"I ATE");
    ASSERT_EQ(Align(*source, samples), 0);
    expected = Readings(*source);

    AnalyzedAudio copy(*source);
    AnalyzedAudio assigned(kLanguageChinese);
    assigned = *source;
    EXPECT_EQ(assigned.GetLanguageType(), kLanguageEnglish);
    EXPECT_EQ(Readings(copy), expected);
    EXPECT_EQ(Readings(assigned), expected);

    // What becomes of the source does not reach the copies.
    EXPECT_EQ(source->AddPossibleSentence(L"I READ THE CAT"), 2);
    EXPECT_GE(Align(*source, other), 0);
    EXPECT_NE(Readings(*source), expected);
    EXPECT_EQ(Readings(copy), expected);
    source.reset();
    EXPECT_EQ(Readings(assigned), expected);
    EXPECT_EQ(copy.AddPossibleSentence(L"I ATE"), 2);
    EXPECT_EQ(assigned.AddPossibleSentence(L"I ATE"), 2);
  }
}

TEST_F(AnalyzedAudioTest, SelfAssignmentChangesNothing) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"I ATE");
  Samples samples = test::ChainRecording("en_learner");
  ASSERT_EQ(Align(audio, samples), 0);
  const auto before = Readings(audio);
  AnalyzedAudio& same = audio;
  audio = same;
  EXPECT_EQ(Readings(audio), before);
}

TEST_F(AnalyzedAudioTest, AgainstTutorUsesItsSentencesAndDoesNotFilter) {
  AnalyzedAudio tutor(kLanguageEnglish);
  tutor.AddPossibleSentence(L"I ATE");
  tutor.AddPossibleSentence(L"I READ THE CAT");
  Samples samples = test::ChainRecording("en_learner");
  AnalyzedAudio reference(tutor);
  const int matched = Align(reference, samples);  // filters

  AnalyzedAudio learner(kLanguageEnglish);
  const Samples before = samples;
  EXPECT_EQ(
      learner.AlignAgainstTutor(&tutor, static_cast<std::uint32_t>(samples.size()), samples.data()),
      matched);
  EXPECT_EQ(samples, before);
  EXPECT_EQ(Readings(learner), Readings(reference));
  EXPECT_TRUE(learner.GetMatchedSentence().IsEmpty());  // it has no sentence of its own
  EXPECT_EQ(learner.GetNumOfWords(), reference.GetNumOfWords());
}

TEST_F(AnalyzedAudioTest, AgainstTutorOfAnotherLanguageDoesNotCrash) {
  AnalyzedAudio tutor(kLanguageJapanese);
  tutor.AddPossibleSentence(L"\u3055\u304F\u3089");
  AnalyzedAudio learner(kLanguageEnglish);
  Samples samples = test::ChainRecording("en_learner");
  learner.AlignAgainstTutor(&tutor, static_cast<std::uint32_t>(samples.size()), samples.data());
  Readings(learner);
}

TEST_F(AnalyzedAudioTest, SilenceAndExtremesAlignOrFailCleanly) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"I ATE");
  for (const int kind : {0, 1, 2, 3}) {
    Samples samples(44100);
    for (std::size_t i = 0; i < samples.size(); ++i) {
      const std::int16_t values[] = {0, 32767, -32768,
                                     static_cast<std::int16_t>((i / 50) % 2 ? 32767 : -32768)};
      samples[i] = values[kind];
    }
    EXPECT_EQ(Align(audio, samples), 0) << kind;
    for (const double value : Readings(audio)) EXPECT_TRUE(std::isfinite(value));
  }
}

TEST_F(AnalyzedAudioTest, SentenceWithoutKnownWordsAligns) {
  AnalyzedAudio audio(kLanguageEnglish);
  EXPECT_EQ(audio.AddPossibleSentence(L"xyzzy"), 1);
  EXPECT_EQ(m_messages.Of(MessageStream::kWideError),
            "*** Error: Word <XYZZY> not found in VeralDictionary::LookupWord()\n");
  EXPECT_EQ(audio.AddPossibleSentence(L""), 2);
  Samples samples = test::ChainRecording("en_learner");
  EXPECT_EQ(Align(audio, samples), 1);
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
  EXPECT_EQ(audio.GetUttEndSampleNum(), 0);
}

TEST_F(AnalyzedAudioTest, ReleaseMemoryKeepsTheAlignment) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.ReleaseMemory();
  audio.AddPossibleSentence(L"I ATE");
  Samples samples = test::ChainRecording("en_learner");
  ASSERT_EQ(Align(audio, samples), 0);
  const auto before = Readings(audio);
  audio.ReleaseMemory();
  audio.ReleaseMemory();
  EXPECT_EQ(Readings(audio), before);
}

TEST_F(AnalyzedAudioTest, ModelTypeThatNamesNoModelComesBack) {
  for (const int type : {5, 6, 7, 11, 99}) {
    EXPECT_EQ(AnalyzedAudio::LoadModelFile("/nonexistent", static_cast<ModelFileType>(type)), type);
  }
  EXPECT_TRUE(m_messages.Entries().empty());
}

TEST_F(AnalyzedAudioTest, ModelThatDoesNotLoadLeavesNone) {
  EXPECT_EQ(AnalyzedAudio::LoadModelFile("/nonexistent", kFrameModelJapanese), -1);
  AnalyzedAudio audio(kLanguageJapanese);
  audio.AddPossibleSentence(L"\u3055\u304F\u3089");
  Samples samples = test::ChainRecording("ja_learner");
  EXPECT_EQ(Align(audio, samples), -1);
  const std::string model = test::VectorPath("models/frame_ja.bin");
  EXPECT_GE(AnalyzedAudio::LoadModelFile(model.c_str(), kFrameModelJapanese), 0);
  samples = test::ChainRecording("ja_learner");
  EXPECT_EQ(Align(audio, samples), 0);
}

// The suppressor as its library has it, block by block: 16000 Hz, 160 samples, rounded to nearest.
TEST_F(AnalyzedAudioTest, NoiseReductionRunsTheSuppressor) {
  const Samples noisy = test::NoiseBursts(160 * 60 + 37, 5);
  for (int policy = 0; policy <= 3; ++policy) {
    Samples expected = noisy;
    NsHandle* const suppressor = WebRtcNs_Create();
    ASSERT_EQ(WebRtcNs_Init(suppressor, 16000), 0);
    ASSERT_EQ(WebRtcNs_set_policy(suppressor, policy), 0);
    for (std::size_t block = 0; block < 60; ++block) {
      std::array<float, 160> values;
      std::copy_n(expected.begin() + static_cast<std::ptrdiff_t>(160 * block), 160, values.begin());
      const float* in = values.data();
      float* out = values.data();
      WebRtcNs_Analyze(suppressor, values.data());
      WebRtcNs_Process(suppressor, &in, 1, &out);
      for (std::size_t i = 0; i < 160; ++i) {
        const float cut = std::min(std::max(values[i], -32768.0F), 32767.0F);
        expected[160 * block + i] = static_cast<std::int16_t>(std::lround(cut));
      }
    }
    WebRtcNs_Free(suppressor);
    Samples samples = noisy;
    EXPECT_EQ(AnalyzedAudio::NoiseReduction(samples.data(),
                                            static_cast<std::uint32_t>(samples.size()), policy),
              1);
    EXPECT_EQ(samples, expected) << policy;
    EXPECT_NE(samples, noisy) << policy;
  }
  EXPECT_EQ(m_messages.All(), "");
}

TEST_F(AnalyzedAudioTest, NoiseReductionRefuses) {
  Samples samples = test::NoiseBursts(1600, 5);
  const Samples before = samples;
  EXPECT_EQ(AnalyzedAudio::NoiseReduction(nullptr, 1600, 1), -1);
  EXPECT_EQ(AnalyzedAudio::NoiseReduction(samples.data(), 0, 1), -1);
  EXPECT_EQ(m_messages.StandardOutput(), "");
  EXPECT_EQ(AnalyzedAudio::NoiseReduction(samples.data(), 1600, 4), -1);
  EXPECT_EQ(m_messages.StandardOutput(), "WebRtcNs_set_policy fail\n");
  EXPECT_EQ(AnalyzedAudio::NoiseReduction(samples.data(), 159, 1), 1);
  EXPECT_EQ(samples, before);
}

TEST_F(AnalyzedAudioTest, OneRecordingOneResult) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"I READ THE CAT");
  std::vector<double> first;
  for (int run = 0; run < 3; ++run) {
    Samples samples = test::ChainRecording("en_tutor");
    ASSERT_EQ(Align(audio, samples), 0);
    if (run == 0) first = Readings(audio);
    EXPECT_EQ(Readings(audio), first);
  }
}

}  // namespace
}  // namespace veral3
