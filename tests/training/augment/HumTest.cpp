#include "training/augment/Hum.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/training/augment/Signals.h"

namespace veral3::training {
namespace {

TEST(Hum, IsOfTheMainsAndItsHarmonicsOnly) {
  int fifty = 0;
  constexpr int kSeeds = 8;
  for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
    Random random(seed);
    std::vector<float> hum(22050, 0.0F);
    AddHum(hum, 100.0, random);
    EXPECT_NEAR(Rms<float>(hum), 100.0, 0.1);
    const bool is_fifty = AmplitudeAt<float>(hum, 50) > AmplitudeAt<float>(hum, 60);
    fifty += is_fifty;
    const double mains = is_fifty ? 50.0 : 60.0;
    double power = 0.0;
    int harmonics = 0;
    for (int k = 1; k <= 12; ++k) {
      // At the best of the frequencies near it.
      double size = 0.0;
      for (double off = -0.1; off <= 0.1001; off += 0.02) {
        size = std::max(size, AmplitudeAt<float>(hum, (mains + off) * k));
      }
      harmonics += k > 1 && size > 3.0;
      power += size * size / 2;
    }
    EXPECT_NEAR(power, 10000.0, 100.0) << seed;
    EXPECT_GE(harmonics, 3) << seed;
  }
  EXPECT_GT(fifty, 0);
  EXPECT_LT(fifty, kSeeds);
}

}  // namespace
}  // namespace veral3::training
