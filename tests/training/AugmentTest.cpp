#include "training/augment/Augment.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "training/common/ParallelFor.h"

namespace veral3::training {
namespace {

Utterance Tone() {
  Utterance utterance{"tone", "test", {{'-', 0}, {'A', 2205}, {'-', 19845}}, {}};
  for (int i = 0; i < 22050; ++i) {
    const bool silent = i < 2205 || i >= 19845;
    utterance.samples.push_back(static_cast<std::int16_t>(
        silent ? 0 : 8000 * std::sin(2 * std::numbers::pi * 500 * i / 22050)));
  }
  return utterance;
}

double Level(std::span<const float> signal) {
  double sum = 0.0;
  for (const float x : signal) sum += static_cast<double>(x) * static_cast<double>(x);
  return std::sqrt(sum / static_cast<double>(signal.size()));
}

TEST(Augment, SameSeedSameSamplesOnAnyNumberOfThreads) {
  const Utterance clean = Tone();
  std::vector<Utterance> one(16);
  std::vector<Utterance> many(16);
  for (const auto& [threads, results] : {std::pair{1, &one}, std::pair{4, &many}}) {
    ParallelFor(results->size(), threads, [&, out = results](std::size_t i) {
      Random random(MixSeed(3, i));
      (*out)[i] = Augment(clean, {}, random);
    });
  }
  for (std::size_t i = 0; i < one.size(); ++i) {
    EXPECT_EQ(one[i].samples, many[i].samples) << i;
    EXPECT_EQ(one[i].labels, many[i].labels) << i;
  }
  EXPECT_NE(one[0].samples, one[1].samples);
}

TEST(Augment, LabelsMoveWithTheirSound) {
  AugmentOptions quiet;
  quiet.noise_chance = 0.0;
  quiet.reverb_chance = 0.0;
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Utterance result = Augment(Tone(), quiet, random);
    ASSERT_EQ(result.labels.size(), 3u);
    int peak = 0;
    for (const std::int16_t x : result.samples) peak = std::max(peak, std::abs(int{x}));
    std::size_t first = 0;
    while (std::abs(int{result.samples[first]}) < peak / 3) ++first;
    EXPECT_NEAR(static_cast<double>(first), result.labels[1].start, 110) << seed;
  }
}

TEST(Resample, ChangesLengthAndPitchTogether) {
  std::vector<float> tone;
  for (int i = 0; i < 22050; ++i) {
    tone.push_back(static_cast<float>(1000 * std::sin(2 * std::numbers::pi * 441 * i / 22050)));
  }
  const std::vector<float> slower = Resample(tone, 1.1);
  EXPECT_EQ(slower.size(), 24255u);
  int crossings = 0;
  for (std::size_t i = 1; i < slower.size(); ++i) crossings += slower[i - 1] < 0 && slower[i] >= 0;
  EXPECT_NEAR(crossings, 441, 2);
}

TEST(Resample, LeavesNothingOfNothing) {
  EXPECT_TRUE(Resample({}, 1.1).empty());
  EXPECT_TRUE(Resample(std::vector<float>(1, 5.0F), 0.3).empty());
  Random random(1);
  const Utterance result = Augment({}, {.warp_chance = 1.0}, random);
  EXPECT_GT(result.samples.size(), 2204u);  // padding alone
  EXPECT_TRUE(result.labels.empty());
}

TEST(Equalise, KeepsALevelSpectrumAndCutsAboveTheCorner) {
  std::vector<double> level(9, 6.0206);  // a factor of 2
  for (const auto& [hz, wanted] : {std::pair{1000.0, 2.0}, std::pair{9000.0, 0.0}}) {
    std::vector<float> tone;
    for (int i = 0; i < 8000; ++i) {
      tone.push_back(static_cast<float>(std::sin(2 * std::numbers::pi * hz * i / 22050)));
    }
    const double before = Level(tone);
    Equalise(tone, level, 5000.0);
    EXPECT_NEAR(Level(std::span(tone).subspan(200, 7600)) / before, wanted, 0.02) << hz;
  }
}

TEST(Noise, HasTheAskedLevelInEveryColour) {
  for (const double colour : {0.0, 0.5, 1.0}) {
    Random random(1);
    std::vector<float> signal(22050, 0.0f);
    AddNoise(signal, colour, 250.0, random);
    EXPECT_NEAR(Level(signal), 250.0, 0.5) << colour;
  }
}

}  // namespace
}  // namespace veral3::training
