#include "training/augment/RoomResponse.h"

#include <gtest/gtest.h>

#include "tests/training/augment/Signals.h"

namespace veral3::training {
namespace {

// Schroeder's method: the energy that is still to come, from 5 to 25 dB below all of it.
double DecayTime(std::span<const float> tail) {
  std::vector<double> left(tail.size() + 1, 0.0);
  for (std::size_t i = tail.size(); i-- > 0;) {
    left[i] = left[i + 1] + static_cast<double>(tail[i]) * static_cast<double>(tail[i]);
  }
  const auto when = [&](double db) {
    std::size_t i = 0;
    while (10.0 * std::log10(left[i] / left[0]) > -db) ++i;
    return static_cast<double>(i) / 22050;
  };
  return (when(25.0) - when(5.0)) * 3.0;
}

TEST(RoomResponse, DiesAwayInTheTimeAsked) {
  for (const double rt60 : {0.3, 0.5, 0.8}) {
    for (std::uint64_t seed = 0; seed < 4; ++seed) {
      Random random(seed);
      const std::vector<float> response = RoomResponse(rt60, 3.0, random);
      // After the early echoes.
      EXPECT_NEAR(DecayTime(std::span(response).subspan(1000)), rt60, 0.15 * rt60);
    }
  }
}

TEST(RoomResponse, IsWeakerThanTheDirectSoundByWhatWasAsked) {
  for (const double db : {0.0, 4.0, 8.0}) {
    Random random(5);
    const std::vector<float> response = RoomResponse(0.4, db, random);
    EXPECT_EQ(response[0], 1.0F);
    const auto rest = std::span(response).subspan(1);
    const double energy = Rms<float>(rest) * Rms<float>(rest) * static_cast<double>(rest.size());
    EXPECT_NEAR(-10.0 * std::log10(energy), db, 0.1);
    EXPECT_EQ(rest.front(), 0.0F);  // nothing before the first echo
  }
}

TEST(RoomResponse, ASignalIsHeardAtOnceAndLingers) {
  Random random(6);
  const std::vector<float> response = RoomResponse(0.5, 4.0, random);
  std::vector<float> signal(30000, 0.0F);
  signal[100] = 1000.0F;
  signal[25000] = -500.0F;
  Reverberate(signal, response);
  ASSERT_EQ(signal.size(), 30000u);
  for (std::size_t i = 0; i < signal.size(); i += 7) {
    double wanted = 0.0;
    if (i >= 100 && i - 100 < response.size())
      wanted += 1000.0 * static_cast<double>(response[i - 100]);
    if (i >= 25000 && i - 25000 < response.size())
      wanted -= 500.0 * static_cast<double>(response[i - 25000]);
    ASSERT_NEAR(static_cast<double>(signal[i]), wanted, 0.01) << i;
  }
}

TEST(RoomResponse, NothingInARoomIsNothing) {
  Random random(1);
  std::vector<float> none;
  Reverberate(none, RoomResponse(0.3, 4.0, random));
  EXPECT_TRUE(none.empty());
}

}  // namespace
}  // namespace veral3::training
