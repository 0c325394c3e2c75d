#include "core/Intensity.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <limits>
#include <random>

#include "core/Alignments.h"

namespace veral3 {
namespace {

using test::MakeAlignment;

std::vector<double> SlowIntensities(const std::vector<std::int16_t>& samples) {
  std::vector<double> intensity;
  for (std::size_t begin = 0; begin + 551 <= samples.size(); begin += 220) {
    double sum = 0.0;
    for (std::size_t i = begin; i < begin + 551; ++i)
      sum += static_cast<double>(samples[i] * samples[i]);
    intensity.push_back(sum);
  }
  return intensity;
}

std::vector<std::int16_t> Constant(int num_frames, std::int16_t value) {
  return std::vector<std::int16_t>(static_cast<std::size_t>(220 * (num_frames - 1) + 551), value);
}

TEST(FrameIntensities, EqualTheSumOfEachFrame) {
  std::mt19937 random(1);
  for (const std::size_t size : {551U, 660U, 770U, 771U, 990U, 991U, 992U, 5000U, 22050U}) {
    std::vector<std::int16_t> samples(size);
    for (auto& s : samples) s = static_cast<std::int16_t>(random() & 0xFFFF);
    EXPECT_EQ(FrameIntensities(samples, INT_MAX), SlowIntensities(samples)) << size;
  }
}

// Of the last frame nothing behind it: there, here, lies memory that nobody may read.
TEST(FrameIntensities, NothingIsReadBehindTheSamples) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const memory =
      mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  auto* const end = reinterpret_cast<std::int16_t*>(static_cast<char*>(memory) + page);
  ASSERT_EQ(mprotect(end, page, PROT_NONE), 0);
  for (const std::size_t size : {551U, 552U, 770U, 771U, 991U}) {
    const std::span<const std::int16_t> samples(end - size, size);
    std::fill(end - size, end, std::int16_t{100});
    const std::vector<double> intensity = FrameIntensities(samples, INT_MAX);
    EXPECT_EQ(intensity, std::vector<double>((size - 551) / 220 + 1, 551.0 * 10000.0)) << size;
  }
  EXPECT_EQ(munmap(memory, 2 * page), 0);
}

TEST(FrameIntensities, FullScaleIsExact) {
  const std::vector<std::int16_t> samples = Constant(20, -32768);
  for (const double x : FrameIntensities(samples, 20)) EXPECT_EQ(x, 551.0 * 1073741824.0);
}

TEST(FrameIntensities, HasOnlyFramesThatExist) {
  EXPECT_TRUE(FrameIntensities({}, 5).empty());
  const std::vector<std::int16_t> short_of_one(550, 100);
  EXPECT_TRUE(FrameIntensities(short_of_one, 5).empty());
  EXPECT_EQ(FrameIntensities(Constant(4, 1), 10).size(), 4U);
  EXPECT_EQ(FrameIntensities(Constant(4, 1), 2).size(), 2U);
  EXPECT_TRUE(FrameIntensities(Constant(4, 1), 0).empty());
  EXPECT_TRUE(FrameIntensities(Constant(4, 1), -1).empty());
}

TEST(BackgroundIntensity, IsTheMeanOfTheLastThreeFrames) {
  EXPECT_EQ(BackgroundIntensity(std::vector<double>{9.0, 1.0, 2.0, 6.0}), 3.0);
  EXPECT_EQ(BackgroundIntensity(std::vector<double>{1.0, 2.0, 6.0}), 0.0);
  EXPECT_EQ(BackgroundIntensity({}), 0.0);
}

TEST(MeasureIntensity, TakesTheLoudestFrameOfEachSyllable) {
  std::vector<std::int16_t> samples = Constant(20, 0);
  samples[220 * 6 + 10] = 100;  // in frames 4, 5 and 6
  samples[220 * 12 + 200] = 7;  // in frames 11 and 12
  const AlignmentResult alignment =
      MakeAlignment(20, {{'a', 2, 6}, {'n', 6, 11}, {'a', 12, 18}}, {0, 1, 2});
  const IntensityMeasures measures = MeasureIntensity(alignment, samples, 0.0);
  EXPECT_EQ(measures.syllable, (std::vector<double>{10000.0, 10000.0, 49.0}));
  EXPECT_EQ(measures.convexity, (std::vector<double>{0.0, 0.0, 0.0}));
  // Speech: frames 4 and 5 in the first syllable, 6 in the second, 12 in the third.
  EXPECT_EQ(measures.mean_speech, 30049.0 / 15.0);
  EXPECT_EQ(measures.speech_to_utterance, 30049.0 / 30098.0);
}

TEST(MeasureIntensity, CountsLoudFramesAtBothEnds) {
  const std::vector<std::int16_t> samples = Constant(20, 100);
  const AlignmentResult alignment = MakeAlignment(20, {{'a', 3, 10}, {'n', 10, 15}}, {0});
  const IntensityMeasures measures = MeasureIntensity(alignment, samples, 0.0);
  EXPECT_EQ(measures.loud_frames_before, 3);  // 0, 1, 2
  EXPECT_EQ(measures.loud_frames_after, 5);   // 15 to 19
  EXPECT_EQ(measures.mean_speech, 5510000.0);
}

TEST(MeasureIntensity, AThirdOfTheMeanIsNotLoudYet) {
  // Speech at 1000 a sample; lead-in just at and just above 0.3 of its energy.
  std::vector<std::int16_t> samples = Constant(20, 1000);
  std::fill_n(samples.begin(), 220 * 5 + 551, std::int16_t{547});
  const AlignmentResult alignment = MakeAlignment(20, {{'a', 10, 20}}, {0});
  EXPECT_EQ(MeasureIntensity(alignment, samples, 0.0).loud_frames_before, 4);  // 6 to 9
  std::fill_n(samples.begin(), 220 * 5 + 551, std::int16_t{548});
  EXPECT_EQ(MeasureIntensity(alignment, samples, 0.0).loud_frames_before, 10);
}

TEST(MeasureIntensity, SilenceDividesTheEarlierRatio) {
  const std::vector<std::int16_t> samples = Constant(10, 0);
  const AlignmentResult alignment = MakeAlignment(10, {{'a', 2, 8}}, {0});
  EXPECT_EQ(MeasureIntensity(alignment, samples, 0.0).speech_to_utterance, 0.0);
  double ratio = 0.5;
  ratio = MeasureIntensity(alignment, samples, ratio).speech_to_utterance;
  EXPECT_EQ(ratio, 0.5 / 1e-20);
  for (int i = 0; i < 20; ++i) {
    ratio = MeasureIntensity(alignment, samples, ratio).speech_to_utterance;
  }
  EXPECT_EQ(ratio, std::numeric_limits<double>::infinity());
  const IntensityMeasures measures = MeasureIntensity(alignment, samples, 0.0);
  EXPECT_EQ(measures.mean_speech, 0.0);
  EXPECT_EQ(measures.loud_frames_before, 0);
  EXPECT_EQ(measures.loud_frames_after, 0);
}

TEST(MeasureIntensity, SoundIgnoresTheEarlierRatio) {
  const AlignmentResult alignment = MakeAlignment(10, {{'a', 0, 10}}, {0});
  EXPECT_EQ(MeasureIntensity(alignment, Constant(10, 3), 99.0).speech_to_utterance, 1.0);
}

TEST(MeasureIntensity, WithoutWordsEverythingOfTheSpeechIsZero) {
  const IntensityMeasures measures =
      MeasureIntensity(MakeAlignment(20, {}, {}, {}), Constant(20, 100), 0.0);
  EXPECT_EQ(measures.frame.size(), 20U);
  EXPECT_EQ(measures.mean_speech, 0.0);
  EXPECT_EQ(measures.speech_to_utterance, 0.0);
  EXPECT_EQ(measures.loud_frames_before, 0);
  EXPECT_EQ(measures.loud_frames_after, 0);
  EXPECT_TRUE(measures.syllable.empty());
}

TEST(MeasureIntensity, SyllablesWithoutFramesHaveNoSpeech) {
  const IntensityMeasures measures =
      MeasureIntensity(MakeAlignment(20, {{'a', 5, 5}}, {0}), Constant(20, 100), 0.0);
  EXPECT_EQ(measures.mean_speech, 0.0);
  EXPECT_EQ(measures.syllable, std::vector<double>{0.0});
  EXPECT_EQ(measures.convexity, std::vector<double>{0.0});
}

TEST(MeasureIntensity, NoFramesNoIntensity) {
  const IntensityMeasures measures =
      MeasureIntensity(MakeAlignment(20, {{'a', 2, 8}}, {0}), {}, 0.0);
  EXPECT_TRUE(measures.frame.empty());
  EXPECT_EQ(measures.background, 0.0);
  EXPECT_EQ(measures.syllable, std::vector<double>{0.0});
}

TEST(MeasureIntensity, ConvexityReadsFromTheFirstFrame) {
  // The energy rises, falls and rises in the first 30 frames and stands still in the syllable.
  std::vector<std::int16_t> samples = Constant(80, 0);
  for (int stretch = 0; stretch < 30; ++stretch) {
    const int level = stretch < 10 ? stretch : stretch < 20 ? 20 - stretch : stretch - 20;
    std::fill_n(samples.begin() + stretch * 220, 220, static_cast<std::int16_t>(100 * level));
  }
  const AlignmentResult alignment = MakeAlignment(80, {{'a', 40, 75}}, {0});
  EXPECT_GT(MeasureIntensity(alignment, samples, 0.0).convexity[0], 0.0);
}

}  // namespace
}  // namespace veral3
