#include "training/augment/Codec.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/training/augment/Signals.h"

namespace veral3::training {
namespace {

// A harmonic voice with clicks and hiss up to the highest frequencies.
std::vector<float> Lively() {
  std::vector<float> signal = Floats(Bursts(25, 4).samples);
  Random random(2);
  for (float& x : signal) x += static_cast<float>(300.0 * random.Normal());
  return signal;
}

double BandPower(std::span<const float> signal, double low, double high) {
  double sum = 0.0;
  for (double hz = low; hz < high; hz += 37) {
    const double size = AmplitudeAt<float>(signal, hz);
    sum += size * size;
  }
  return sum;
}

TEST(Codec, KeepsToItsBitRate) {
  const std::vector<float> signal = Lively();
  const double seconds = static_cast<double>(signal.size()) / 22050;
  for (const auto& [codec, rate, least, most] :
       {std::tuple{Codec::kOpus, 12.0, 10.0, 13.5}, std::tuple{Codec::kOpus, 24.0, 21.0, 27.0},
        std::tuple{Codec::kMp3, 32.0, 31.0, 34.0}, std::tuple{Codec::kMp3, 64.0, 62.0, 68.0},
        std::tuple{Codec::kMp3, 16.0, 15.5, 17.5}}) {
    const double bits = static_cast<double>(Encode(signal, codec, rate).size()) * 8.0;
    EXPECT_GT(bits / seconds / 1000, least) << rate;
    EXPECT_LT(bits / seconds / 1000, most) << rate;
  }
}

TEST(Codec, KeepsTheTimeWithinAMillisecond) {
  const std::vector<float> signal = Lively();
  for (const Codec codec : {Codec::kOpus, Codec::kMp3}) {
    for (const double rate : {12.0, 16.0, 32.0, 64.0, 96.0}) {
      const std::vector<float> coded = ThroughCodec(signal, codec, rate);
      ASSERT_EQ(coded.size(), signal.size());
      EXPECT_NEAR(LagOf(std::span(signal).first(12000), coded, 1200), 0, 22) << rate;
      EXPECT_NEAR(LagOf(std::span(signal).last(12000), std::span(coded).last(12000), 1200), 0, 22)
          << rate;
    }
  }
}

TEST(Codec, ALowRateLosesTheHighestFrequencies) {
  const std::vector<float> signal = Lively();
  const std::vector<float> opus = ThroughCodec(signal, Codec::kOpus, 12.0);
  EXPECT_LT(BandPower(opus, 8600, 10900), 0.03 * BandPower(signal, 8600, 10900));
  EXPECT_GT(BandPower(opus, 200, 3000), 0.5 * BandPower(signal, 200, 3000));
  const std::vector<float> narrow = ThroughCodec(signal, Codec::kMp3, 16.0);
  EXPECT_LT(BandPower(narrow, 9000, 10900), 0.03 * BandPower(signal, 9000, 10900));
}

TEST(Codec, AHighRateKeepsTheVoice) {
  const std::vector<float> signal = Floats(Bursts(10, 6).samples);
  for (const Codec codec : {Codec::kOpus, Codec::kMp3}) {
    const std::vector<float> coded = ThroughCodec(signal, codec, 128.0);
    std::vector<float> lost(signal);
    for (std::size_t i = 0; i < lost.size(); ++i) lost[i] -= coded[i];
    EXPECT_GT(Decibels(Rms<float>(signal) / Rms<float>(lost)), 12.0);
  }
}

TEST(Codec, ShortSignalsKeepTheirLength) {
  for (const Codec codec : {Codec::kOpus, Codec::kMp3}) {
    for (const std::size_t length : {0u, 1u, 7u, 400u, 1200u}) {
      EXPECT_EQ(ThroughCodec(std::vector<float>(length, 500.0F), codec, 16.0).size(), length);
    }
  }
}

TEST(Codec, WhatIsNoFileIsRefused) {
  EXPECT_THROW(Decode({1, 2, 3, 4}, Codec::kMp3, 10), std::runtime_error);
  EXPECT_THROW(Decode({}, Codec::kOpus, 10), std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
