#include "training/augment/SpeechLevel.h"

#include <gtest/gtest.h>

#include "tests/training/augment/Signals.h"

namespace veral3::training {
namespace {

TEST(SpeechLevel, DoesNotCountPauses) {
  // 0.1 s of 300 under a phoneme, a pause with a noise in it, 0.2 s of 600 under two phonemes.
  std::vector<float> signal(2205, 300.0F);
  signal.insert(signal.end(), 8820, 50.0F);
  signal.insert(signal.end(), 4410, -600.0F);
  const std::vector<PhonemeLabel> labels = {{'a', 0}, {'-', 2205}, {'b', 11025}, {'c', 13000}};
  EXPECT_NEAR(SpeechLevel(signal, labels), std::sqrt((90000.0 + 2 * 360000.0) / 3), 0.01);
}

TEST(SpeechLevel, WithoutLabelsTakesWhatIsLoud) {
  std::vector<float> signal(22050, 3.0F);  // a faint hum, 40 dB below
  std::fill(signal.begin() + 4410, signal.begin() + 8820, 300.0F);
  EXPECT_NEAR(SpeechLevel(signal, {}), 300.0, 0.01);
  const std::vector<PhonemeLabel> pause = {{'-', 0}};
  EXPECT_NEAR(SpeechLevel(signal, pause), 300.0, 0.01);
  EXPECT_EQ(SpeechLevel({}, {}), 0.0);
}

TEST(SpeechLevel, LabelsBeyondTheEndAreNothing) {
  const std::vector<float> signal(100, 5.0F);
  const std::vector<PhonemeLabel> labels = {{'a', 50}, {'b', 200}, {'c', 300}};
  EXPECT_NEAR(SpeechLevel(signal, labels), 5.0, 1e-6);
}

TEST(SpeechLevel, SixDecibelsAreAboutAFactorOfTwo) {
  EXPECT_NEAR(FactorOfDb(6.0206), 2.0, 1e-5);
  EXPECT_NEAR(FactorOfDb(-40.0), 0.01, 1e-9);
}

}  // namespace
}  // namespace veral3::training
