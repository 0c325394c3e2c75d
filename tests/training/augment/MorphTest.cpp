#include "training/augment/Morph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstdlib>

#include "tests/training/augment/Signals.h"

namespace veral3::training {
namespace {

// A voice of `pitch` Hz: pulses through a resonance at each of the given frequencies.
Utterance Vowel(double pitch, const std::vector<double>& formants, double bandwidth) {
  std::vector<double> signal(33075, 0.0);
  for (double at = 0.0; at < 33075.0; at += 22050.0 / pitch) {
    signal[static_cast<std::size_t>(at)] = 1.0;
  }
  std::vector<double> sum(signal.size(), 0.0);
  for (const double hz : formants) {
    const double radius = std::exp(-kTau / 2 * bandwidth / 22050);
    const double b1 = 2 * radius * std::cos(kTau * hz / 22050);
    const double b2 = -radius * radius;
    double y1 = 0.0;
    double y2 = 0.0;
    for (std::size_t i = 0; i < signal.size(); ++i) {
      const double y = signal[i] + b1 * y1 + b2 * y2;
      y2 = y1;
      y1 = y;
      sum[i] += y;
    }
  }
  double peak = 0.0;
  for (const double x : sum) peak = std::max(peak, std::abs(x));
  Utterance utterance{"a", "own", {{'-', 0}, {'A', 100}}, {}};
  for (const double x : sum) {
    utterance.samples.push_back(static_cast<std::int16_t>(std::lround(x / peak * 12000)));
  }
  return utterance;
}

double Size(const Utterance& utterance, double hz) {
  return AmplitudeAt<std::int16_t>(std::span(utterance.samples).subspan(8000, 16000), hz);
}

// The strongest harmonic within a range.
double PeakBetween(const Utterance& utterance, double pitch, double low, double high) {
  double best = 0.0;
  double most = 0.0;
  for (double hz = pitch; hz < high; hz += pitch) {
    if (hz < low || Size(utterance, hz) <= most) continue;
    most = Size(utterance, hz);
    best = hz;
  }
  return best;
}

VirtualSpeaker Bent(double size) {  // by the same share everywhere
  VirtualSpeaker speaker;
  speaker.bends[0] = {size, 0.0, 0.25};
  return speaker;
}

TEST(Morph, TheSpeakerWhoChangesNothingChangesNothing) {
  const Utterance clean = Bursts(6, 3);
  const Utterance result = Morph(clean, {});
  ASSERT_EQ(result.samples.size(), clean.samples.size());
  for (std::size_t i = 0; i < clean.samples.size(); ++i) {
    ASSERT_NEAR(result.samples[i], clean.samples[i], 2) << i;
  }
}

TEST(Morph, MovesFormantsAndKeepsThePitch) {
  const Utterance clean = Vowel(50, {600, 1500, 3200}, 300.0);
  ASSERT_NEAR(PeakBetween(clean, 50, 1000, 2200), 1500, 26);
  for (const auto& [size, wanted] : {std::pair{0.1, 1500 / 1.1}, std::pair{-0.1, 1500 / 0.9}}) {
    const Utterance result = Morph(clean, Bent(size));
    EXPECT_NEAR(PeakBetween(result, 50, 1000, 2200), wanted, 51) << size;
    EXPECT_NEAR(PeakBetween(result, 50, 2400, 4500), wanted * 3200 / 1500, 76) << size;
    // Between harmonics there is still nothing.
    EXPECT_LT(Size(result, 1525), 0.05 * Size(result, 1500));
  }
}

TEST(Morph, BendsOneFormantUpAndAnotherDown) {
  const Utterance clean = Vowel(50, {700, 3300}, 300.0);
  VirtualSpeaker speaker;  // about the mel scale: 700 Hz lies at .25 of 11025 Hz, 3300 Hz at .62
  speaker.bends[0] = {0.08, 1.3, 0.0};
  const Utterance result = Morph(clean, speaker);
  EXPECT_LT(PeakBetween(result, 50, 300, 1300), 690);
  EXPECT_GT(PeakBetween(result, 50, 2500, 4500), 3390);
}

TEST(Morph, TiltsTheSpectrum) {
  Random random(4);
  Utterance noise{"", "own", {}, {}};
  for (int i = 0; i < 66150; ++i) {
    noise.samples.push_back(static_cast<std::int16_t>(2000 * random.Normal()));
  }
  VirtualSpeaker speaker;
  speaker.tilt_db = 6.0;
  const Utterance result = Morph(noise, speaker);
  const auto power = [&](const Utterance& utterance, double low, double high) {
    double sum = 0.0;
    for (double hz = low; hz < high; hz += 11) {
      const double size = AmplitudeAt<std::int16_t>(utterance.samples, hz);
      sum += size * size;
    }
    return sum;
  };
  // 100 to 300 Hz lie about .073 up the scale (200 Hz), 9000 to 10000 Hz about .95.
  const auto change = [&](double low, double high) {
    return 10 * std::log10(power(result, low, high) / power(noise, low, high));
  };
  EXPECT_NEAR(change(9000, 10000) - change(100, 300), 6.0 * (0.955 - 0.089), 0.5);
}

TEST(Morph, SharpensAndFlattensFormants) {
  const Utterance clean = Vowel(100, {800, 3000}, 250.0);
  const auto contrast = [](const Utterance& utterance) {
    return Decibels(Size(utterance, 800) / Size(utterance, 1700));
  };
  for (const double sharpness : {0.8, 1.2}) {
    VirtualSpeaker speaker;
    speaker.sharpness = sharpness;
    EXPECT_NEAR(contrast(Morph(clean, speaker)) / contrast(clean), sharpness, 0.06);
  }
}

TEST(Morph, RoughensAboveItsFrequencyOnly) {
  const Utterance clean = Vowel(105, {500, 1500, 2500, 3500, 4500}, 300.0);
  VirtualSpeaker speaker;
  speaker.rough_above_hz = 2900;
  speaker.roughness = 1.0;
  const Utterance result = Morph(clean, speaker);
  EXPECT_NEAR(Size(result, 1470) / Size(clean, 1470), 1.0, 0.1);
  EXPECT_LT(Size(result, 1522) / Size(result, 1470), 0.02);
  // The harmonic melts into the noise around it, about as strong in all.
  EXPECT_LT(Size(result, 3465) / Size(clean, 3465), 0.5);
  const auto band = [](const Utterance& utterance) {
    double sum = 0.0;
    for (double hz = 3300; hz < 3800; hz += 0.5) sum += std::pow(Size(utterance, hz), 2);
    return sum;
  };
  EXPECT_NEAR(Decibels(std::sqrt(band(result) / band(clean))), 0.0, 0.5);
}

TEST(Morph, KeepsTimeLabelsAndLevel) {
  const Utterance clean = Bursts(12, 5);
  for (std::uint64_t seed = 0; seed < 6; ++seed) {
    Random random(seed);
    const Utterance result = Morph(clean, DrawVirtualSpeaker(random));
    EXPECT_EQ(result.samples.size(), clean.samples.size());
    EXPECT_EQ(result.labels, clean.labels);
    EXPECT_EQ(result.syllables, clean.syllables);
    EXPECT_EQ(result.spoken_tones, clean.spoken_tones);
    EXPECT_EQ(result.text, clean.text);
    EXPECT_NEAR(Decibels(Rms<std::int16_t>(result.samples) / Rms<std::int16_t>(clean.samples)), 0.0,
                0.3);
    for (const PhonemeLabel& label : result.labels) {
      if (label.symbol == '-') continue;
      int onset = label.start - 800;
      while (std::abs(int{result.samples[static_cast<std::size_t>(onset)]}) < 2000) ++onset;
      EXPECT_NEAR(onset, label.start, 160) << seed;
    }
  }
}

TEST(Morph, IsTheSameForTheSameSpeaker) {
  const Utterance clean = Bursts(3, 5);
  Random random(9);
  const VirtualSpeaker one = DrawVirtualSpeaker(random);
  const VirtualSpeaker other = DrawVirtualSpeaker(random);
  EXPECT_EQ(Morph(clean, one).samples, Morph(clean, one).samples);
  EXPECT_NE(Morph(clean, one).samples, Morph(clean, other).samples);
}

TEST(Morph, SpeakersAreWithinTheirRanges) {
  int rough = 0;
  double flattest = 2.0;
  double sharpest = 0.0;
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    Random random(seed);
    const VirtualSpeaker speaker = DrawVirtualSpeaker(random);
    for (const Ripple& bend : speaker.bends) {
      EXPECT_GE(bend.size, 0.04);
      EXPECT_LE(bend.size, 0.05);
    }
    EXPECT_LE(std::abs(speaker.tilt_db), 6.0);
    flattest = std::min(flattest, speaker.sharpness);
    sharpest = std::max(sharpest, speaker.sharpness);
    if (speaker.roughness > 0.0) {
      ++rough;
      EXPECT_GE(speaker.rough_above_hz, 1000.0);
      EXPECT_LE(speaker.rough_above_hz, 8000.0);
    }
  }
  EXPECT_NEAR(flattest, 0.8, 0.01);
  EXPECT_NEAR(sharpest, 1.2, 0.01);
  EXPECT_NEAR(rough, 150, 40);
}

TEST(Morph, TakesEmptySilentAndVeryShortRecordings) {
  Random random(2);
  const VirtualSpeaker speaker = DrawVirtualSpeaker(random);
  for (const std::size_t length : {0u, 1u, 5u, 511u, 513u}) {
    const Utterance silent{"", "own", {}, std::vector<std::int16_t>(length, 0)};
    EXPECT_EQ(Morph(silent, speaker).samples, silent.samples);
    const Utterance loud{"", "own", {}, std::vector<std::int16_t>(length, -32768)};
    EXPECT_EQ(Morph(loud, speaker).samples.size(), length);
  }
}

}  // namespace
}  // namespace veral3::training
