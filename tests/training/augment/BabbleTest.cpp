#include "training/augment/Babble.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "tests/training/augment/Signals.h"

namespace veral3::training {
namespace {

// Ten voices, each a tone of its own that lasts five seconds; the louder the higher.
std::vector<Utterance> Voices() {
  std::vector<Utterance> voices;
  for (int voice = 0; voice < 10; ++voice) {
    Utterance one{"tone", std::string(1, static_cast<char>('0' + voice)), {{'A', 0}}, {}};
    const double hz = 500.0 + 900.0 * voice;
    for (int i = 0; i < 110250; ++i) {
      one.samples.push_back(
          static_cast<std::int16_t>(800.0 * (voice + 1) * std::sin(kTau * hz * i / 22050)));
    }
    voices.push_back(one);
  }
  return voices;
}

// Amplitude of each voice's tone, of those that are there.
std::map<int, double> Heard(std::span<const float> babble, double least) {
  std::map<int, double> heard;
  for (int voice = 0; voice < 10; ++voice) {
    const double size = AmplitudeAt<float>(babble, 500.0 + 900.0 * voice);
    if (size > least) heard[voice] = size;
  }
  return heard;
}

TEST(Babble, HasSoManyVoicesOfEqualLevelAndNotOnesOwn) {
  const std::vector<Utterance> voices = Voices();
  for (int count = 1; count <= 8; ++count) {
    Random random(static_cast<std::uint64_t>(count));
    const std::vector<float> babble = Babble(voices, "3", count, 2000, random);
    ASSERT_EQ(babble.size(), 2000u);
    const auto heard = Heard(babble, 0.05);
    EXPECT_EQ(heard.size(), static_cast<std::size_t>(count));
    EXPECT_FALSE(heard.contains(3));
    for (const auto& [voice, size] : heard) EXPECT_NEAR(size, std::sqrt(2.0), 0.02) << voice;
  }
}

TEST(Babble, GoesOnWithoutOnesOwnVoice) {
  std::vector<Utterance> voices;
  for (int i = 0; i < 12; ++i) {
    voices.push_back(i % 2 == 0 ? ToneBetweenPauses(1000, "own") : ToneBetweenPauses(2500, "she"));
  }
  Random random(2);
  const std::vector<float> babble = Babble(voices, "own", 3, 100000, random);
  EXPECT_LT(AmplitudeAt<float>(babble, 1000), 0.001);
  EXPECT_GT(AmplitudeAt<float>(babble, 2500), 0.1);
}

TEST(Babble, LastsAsLongAsTheRecording) {
  const std::vector<Utterance> voices = Voices();
  Random random(3);
  const std::vector<float> babble = Babble(voices, "", 3, 200000, random);
  for (std::size_t i = 0; i + 4000 <= babble.size(); i += 4000) {
    EXPECT_NEAR(Rms<float>(std::span(babble).subspan(i, 4000)), std::sqrt(3.0), 0.9) << i;
  }
}

TEST(Babble, DrawsFromThreeToEightVoices) {
  const std::vector<Utterance> voices = Voices();
  std::size_t fewest = 99;
  std::size_t most = 0;
  for (std::uint64_t seed = 0; seed < 60; ++seed) {
    Random random(seed);
    std::vector<float> signal(2000, 0.0F);
    AddBabble(signal, voices, "", 5.0, random);
    EXPECT_NEAR(Rms<float>(signal), 5.0, 0.01);
    const std::size_t heard = Heard(signal, 0.5).size();
    fewest = std::min(fewest, heard);
    most = std::max(most, heard);
  }
  EXPECT_EQ(fewest, 3u);
  EXPECT_GE(most, 8u);
  EXPECT_LE(most, 9u);  // one may hand over to the next
}

TEST(Babble, OfSilentUtterancesIsSilence) {
  const std::vector<Utterance> silent(3, Utterance{"", "x", {}, std::vector<std::int16_t>(100, 0)});
  Random random(1);
  std::vector<float> signal(50, 1.0F);
  AddBabble(signal, silent, "", 5.0, random);
  EXPECT_EQ(signal, std::vector<float>(50, 1.0F));
  const std::vector<Utterance> empty(2, Utterance{"", "x", {}, {}});
  AddBabble(signal, empty, "x", 5.0, random);
  EXPECT_EQ(signal, std::vector<float>(50, 1.0F));
}

TEST(Babble, OfOnesOwnVoiceWhereThereIsNoOther) {
  const std::vector<Utterance> own = {ToneBetweenPauses(600, "own")};
  Random random(1);
  const std::vector<float> babble = Babble(own, "own", 3, 2000, random);
  EXPECT_GT(Rms<float>(babble), 0.5);
}

}  // namespace
}  // namespace veral3::training
