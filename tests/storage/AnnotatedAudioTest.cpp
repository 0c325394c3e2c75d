#include "storage/AnnotatedAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <thread>

#include "recognition/FrameScores.h"
#include "recognition/Models.h"
#include "recognition/keras/Activation.h"
#include "recognition/keras/KerasModel.h"
#include "recognition/keras/LayerDense.h"
#include "signal/Mfcc.h"
#include "storage/FrameSegments.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"
#include "support/UndefinedActivation.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

// With the small models the tests of this program share one process: those that need none come
// first in the file.
TEST(AnnotatedAudio, WithoutAModelThereIsAMessage) {
  ASSERT_FALSE(FrameClassifierOf(CPhonemeSet::kEnglish)->IsLoaded());
  MessageCapture messages;
  AnnotatedAudio audio;
  const auto samples = NoiseBursts(22050, 1);
  EXPECT_EQ(audio.LoadAndAnnotate(samples.size(), samples.data(), kLanguageEnglish), -1);
  EXPECT_EQ(messages.StandardError(),
            "ERROR in FrameClassifier::ClassifyFrame(), no model is loaded.\n");
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
}

struct Labelled {
  std::string phonemes;
  std::vector<int> bounds;
  bool operator==(const Labelled&) const = default;
};

Labelled Read(const AnnotatedAudio& audio) {
  Labelled read{audio.GetPhonemes(), {}};
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    read.bounds.push_back(audio.GetPhonemeStartSample(i));
    read.bounds.push_back(audio.GetPhonemeEndSample(i));
  }
  return read;
}

Labelled Annotated(const std::vector<std::int16_t>& samples, LanguageType language) {
  AnnotatedAudio audio;
  EXPECT_EQ(audio.LoadAndAnnotate(samples.size(), samples.data(), language), 0);
  return Read(audio);
}

// What all scores at once say.
Labelled Expected(const std::vector<std::int16_t>& samples, LanguageType language) {
  const CPhonemeSet& set = *PhonemeSetOf(language);
  const auto mfcc = ComputeMfcc(samples.data(), static_cast<std::uint32_t>(samples.size()));
  std::vector<double> scores(mfcc.size() / kMfccSize * 3 * static_cast<std::size_t>(set.GetSize()));
  EXPECT_EQ(ComputeFrameScores(set, mfcc, scores), 0);
  std::string labels;
  AppendFrameLabels(set, scores, labels);
  Labelled expected;
  for (const FrameSegment& segment : SegmentsOf(labels, static_cast<int>(samples.size()))) {
    expected.phonemes += segment.phoneme;
    expected.bounds.insert(expected.bounds.end(), {segment.start, segment.end});
  }
  return expected;
}

// Puts a frame model of one layer in place of the English one.
void LoadFrameModel(const std::vector<double>& weights, const std::vector<double>& bias,
                    char activation) {
  const ScratchFolder folder;
  const std::string path = folder.Path() / "made.model";
  std::vector<std::unique_ptr<keras::Layer>> layers;
  layers.push_back(std::make_unique<keras::LayerDense>(weights, bias, activation));
  ASSERT_EQ(keras::KerasModel(1, std::move(layers)).save_binary_weights(path), 0);
  ASSERT_GE(LoadModelFile(path.c_str(), kFrameModelEnglish), 0);
}

TEST(AnnotatedAudio, RecordingsOfEveryLanguage) {
  LoadSmallEngine();
  for (const auto& [name, language] :
       {std::pair{"en_learner", kLanguageEnglish}, std::pair{"zh_learner", kLanguageChinese},
        std::pair{"ja_learner", kLanguageJapanese}}) {
    const auto samples = ChainRecording(name);
    const Labelled annotated = Annotated(samples, language);
    EXPECT_EQ(annotated, Expected(samples, language));
    ASSERT_FALSE(annotated.phonemes.empty());
    EXPECT_EQ(annotated.bounds.back(), static_cast<int>(samples.size()));
    for (std::size_t i = 1; i + 1 < annotated.bounds.size(); i += 2) {
      EXPECT_EQ(annotated.bounds[i], annotated.bounds[i + 1]);
      EXPECT_EQ(annotated.bounds[i] % 220, 0);
    }
  }
}

TEST(AnnotatedAudio, SamplesStayAsTheyAre) {
  LoadSmallEngine();
  const auto before = ChainRecording("en_learner");
  auto samples = before;
  Annotated(samples, kLanguageEnglish);
  EXPECT_EQ(samples, before);
}

TEST(AnnotatedAudio, FewSamplesAreNoFrames) {
  LoadSmallEngine();
  const std::vector<std::int16_t> samples(551, 100);
  AnnotatedAudio audio;
  for (const unsigned long count : {0ul, 1ul, 550ul}) {
    EXPECT_EQ(audio.LoadAndAnnotate(count, samples.data(), kLanguageEnglish), 0);
    EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
    EXPECT_STREQ(audio.GetPhonemes(), "");
  }
  EXPECT_EQ(audio.LoadAndAnnotate(0, nullptr, kLanguageEnglish), 0);
  EXPECT_EQ(audio.LoadAndAnnotate(551, samples.data(), kLanguageEnglish), 0);
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);  // one frame opens nothing
}

TEST(AnnotatedAudio, BadInputIsAMessageAndForgetsWhatWas) {
  LoadSmallEngine();
  const auto samples = ChainRecording("en_learner");
  AnnotatedAudio audio;
  for (const auto& [count, data, message] :
       {std::tuple{1ul, static_cast<const std::int16_t*>(nullptr), "no samples"},
        std::tuple{1000ul, static_cast<const std::int16_t*>(nullptr), "no samples"},
        std::tuple{0x7FFFFFFFul, static_cast<const std::int16_t*>(nullptr), "no samples"},
        std::tuple{0x80000000ul, static_cast<const std::int16_t*>(nullptr), "too many samples"},
        std::tuple{0x80000000ul, samples.data(), "too many samples"},
        std::tuple{std::numeric_limits<unsigned long>::max(), samples.data(),
                   "too many samples"}}) {
    ASSERT_EQ(audio.LoadAndAnnotate(samples.size(), samples.data(), kLanguageEnglish), 0);
    ASSERT_GT(audio.GetNumOfPhonemes(), 0);
    const MessageCapture messages;
    EXPECT_EQ(audio.LoadAndAnnotate(count, data, kLanguageEnglish), -1);
    EXPECT_EQ(messages.StandardError(),
              "ERROR in AnnotatedAudio::LoadAndAnnotate(), " + std::string(message) + "\n");
    EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
    EXPECT_EQ(audio.GetPhonemeStartSample(0), 0);
  }
}

TEST(AnnotatedAudio, AnUnknownLanguageIsReportedAndEnglishTaken) {
  LoadSmallEngine();
  const auto samples = ChainRecording("en_learner");
  const MessageCapture messages;
  const Labelled unknown = Annotated(samples, static_cast<LanguageType>(0));
  EXPECT_EQ(messages.StandardError(),
            "Error in AnalyzedAudio::AnalyzedAudio(), unknown Language Type\n");
  EXPECT_EQ(unknown, Annotated(samples, kLanguageEnglish));
}

TEST(AnnotatedAudio, FreshObjectsAndIndicesOutside) {
  LoadSmallEngine();
  AnnotatedAudio audio;
  EXPECT_STREQ(audio.GetPhonemes(), "");
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
  EXPECT_EQ(audio.GetPhonemeEndSample(5000), 0);
  const auto samples = ChainRecording("en_learner");
  ASSERT_EQ(audio.LoadAndAnnotate(samples.size(), samples.data(), kLanguageEnglish), 0);
  for (const int i : {-1, std::numeric_limits<int>::min(), audio.GetNumOfPhonemes(), 4095, 4096,
                      5000, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(audio.GetPhonemeStartSample(i), 0) << i;
    EXPECT_EQ(audio.GetPhonemeEndSample(i), 0) << i;
  }
}

// Behind the last segment lies nothing, also where a longer recording had more before.
TEST(AnnotatedAudio, ThereIsNoSegmentBehindTheLast) {
  LoadSmallEngine();
  const auto samples = ChainRecording("en_learner");
  AnnotatedAudio audio;
  std::vector<int> counts;
  for (std::size_t count = samples.size(); count > 2000; count -= 1000) {
    ASSERT_EQ(audio.LoadAndAnnotate(samples.size(), samples.data(), kLanguageEnglish), 0);
    ASSERT_EQ(audio.LoadAndAnnotate(count, samples.data(), kLanguageEnglish), 0);
    const int segments = audio.GetNumOfPhonemes();
    counts.push_back(segments);
    if (segments > 0) {
      EXPECT_EQ(audio.GetPhonemeEndSample(segments - 1), static_cast<int>(count));
    }
    EXPECT_EQ(audio.GetPhonemeStartSample(segments), 0) << segments;
    EXPECT_EQ(audio.GetPhonemeEndSample(segments), 0) << segments;
  }
  EXPECT_NE(counts.front(), counts.back());
}

TEST(AnnotatedAudio, PhonemesAreAPlainString) {
  LoadSmallEngine();
  AnnotatedAudio audio;
  char* phonemes = audio.GetPhonemes();
  EXPECT_STREQ(phonemes, "");
  const auto samples = ChainRecording("en_learner");
  ASSERT_EQ(audio.LoadAndAnnotate(samples.size(), samples.data(), kLanguageEnglish), 0);
  phonemes = audio.GetPhonemes();
  EXPECT_EQ(static_cast<int>(std::string(phonemes).size()), audio.GetNumOfPhonemes());
  EXPECT_STREQ(std::as_const(audio).GetPhonemes(), phonemes);
}

TEST(AnnotatedAudio, CopiesKeepWhatTheyHave) {
  LoadSmallEngine();
  const auto first = ChainRecording("en_learner");
  const auto second = NoiseBursts(30000, 3);
  AnnotatedAudio copy;
  Labelled before;
  {
    AnnotatedAudio audio;
    ASSERT_EQ(audio.LoadAndAnnotate(first.size(), first.data(), kLanguageEnglish), 0);
    before = Read(audio);
    copy = audio;
    const AnnotatedAudio other(audio);
    ASSERT_EQ(audio.LoadAndAnnotate(second.size(), second.data(), kLanguageEnglish), 0);
    EXPECT_NE(Read(audio), before);
    EXPECT_EQ(Read(other), before);
  }
  EXPECT_EQ(Read(copy), before);
}

TEST(AnnotatedAudio, MoreThan4096SegmentsEndWithTheLast) {
  LoadSmallEngine();
  // Bursts of noise and near silence in turn, five frames each: two phonemes in turn.
  const int kFrames = 27000;
  std::vector<std::int16_t> samples(static_cast<std::size_t>(kFrames) * 220 + 331);
  const auto noise = NoiseBursts(2205 * 3, 9);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const bool loud = (i / (220 * 5)) % 2 == 0;
    samples[i] = static_cast<std::int16_t>(loud ? noise[2205 + i % 4000] : noise[i % 2000]);
  }
  // Two outputs that follow the normalised energy of the frame (value 12 of its 39), up or down.
  const auto states = 3 * static_cast<std::size_t>(PhonemeSetOf(kLanguageEnglish)->GetSize());
  std::vector<double> weights(195 * states, 0.0);
  weights[2 * 39 + 12] = 50.0;
  weights[3 * 195 + 2 * 39 + 12] = -50.0;
  std::vector<double> bias(states, -1000.0);
  bias[0] = -35.0;
  bias[3] = 35.0;
  const MessageCapture messages;
  LoadFrameModel(weights, bias, keras::kSigmoid);

  const Labelled annotated = Annotated(samples, kLanguageEnglish);
  EXPECT_EQ(annotated.phonemes.size(), 4096u);
  EXPECT_EQ(annotated, Expected(samples, kLanguageEnglish));
  AnnotatedAudio audio;
  ASSERT_EQ(audio.LoadAndAnnotate(samples.size(), samples.data(), kLanguageEnglish), 0);
  EXPECT_EQ(audio.GetPhonemeEndSample(4095), static_cast<int>(samples.size()));
  EXPECT_GT(audio.GetPhonemeStartSample(4095), 0);
  EXPECT_EQ(audio.GetPhonemeStartSample(5000), audio.GetPhonemeStartSample(4095));
  EXPECT_EQ(audio.GetPhonemeEndSample(5000), audio.GetPhonemeEndSample(4095));
  ASSERT_GE(LoadModelFile(VectorPath("models/frame_en.bin").c_str(), kFrameModelEnglish), 0);
}

// What would end the process becomes a refusal where an application's handler throws.
TEST(AnnotatedAudio, WhatWouldEndTheProcessIsRefused) {
  LoadSmallEngine();
  const auto samples = ChainRecording("en_learner");
  const Labelled expected = Annotated(samples, kLanguageEnglish);
  const EndProcessTrap trap;
  MessageCapture messages;
  AnnotatedAudio audio;
  {
    const UndefinedActivation model(kFrameModelEnglish);
    messages.Clear();
    EXPECT_EQ(audio.LoadAndAnnotate(samples.size(), samples.data(), kLanguageEnglish), -1);
    EXPECT_EQ(messages.All(), std::string(kUndefinedActivation) +
                                  "ERROR in AnnotatedAudio::LoadAndAnnotate(), unknown error\n");
    EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
  }
  EXPECT_EQ(audio.LoadAndAnnotate(samples.size(), samples.data(), kLanguageEnglish), 0);
  EXPECT_EQ(Read(audio), expected);
}

// Also run under ThreadSanitizer.
TEST(AnnotatedAudioThreads, SeveralRecordingsAtOnce) {
  LoadSmallEngine();
  const auto first = ChainRecording("en_learner");
  const auto second = ChainRecording("ja_learner");
  const Labelled one = Annotated(first, kLanguageEnglish);
  const Labelled two = Annotated(second, kLanguageJapanese);
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      if (i % 2 == 0) {
        EXPECT_EQ(Annotated(first, kLanguageEnglish), one);
      } else {
        EXPECT_EQ(Annotated(second, kLanguageJapanese), two);
      }
    });
  }
}

}  // namespace
}  // namespace veral3::test
