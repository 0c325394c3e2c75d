#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>

#include "tests/training/augment/Signals.h"
#include "training/augment/Augment.h"
#include "training/common/ParallelFor.h"

namespace veral3::training {
namespace {

// As it comes, so that one thing can be looked at alone.
AugmentOptions Plain() {
  AugmentOptions options;
  options.warp_chance = 0.0;
  options.reverb_chance = 0.0;
  options.low_pass_chance = 0.0;
  options.telephone_chance = 0.0;
  options.noise_chance = 0.0;
  options.equaliser_db = 0.0;
  options.level_range_db = 0.0;
  return options;
}

Utterance Made(const Utterance& clean, const AugmentOptions& options, std::uint64_t seed = 1) {
  Random random(seed);
  return Augment(clean, options, random);
}

std::span<const std::int16_t> SpeechOf(const Utterance& utterance) {
  const auto start = static_cast<std::size_t>(utterance.labels[1].start);
  return std::span(utterance.samples)
      .subspan(start, static_cast<std::size_t>(utterance.labels[2].start) - start);
}

double LoudestOf(std::span<const std::int16_t> samples) {
  const auto middle = samples.subspan(samples.size() / 2 - 2500, 5000);
  double best = 0.0;
  double most = 0.0;
  for (double hz = 300; hz < 1300; hz += 8) {
    const double size = AmplitudeAt<std::int16_t>(middle, hz);
    if (size <= most) continue;
    most = size;
    best = hz;
  }
  return best;
}

TEST(WideAugmentation, NothingOfItHappensUnlessAskedFor) {
  const std::vector<Utterance> others = {ToneBetweenPauses(2000, "other")};
  AugmentOptions options;
  options.others = others;
  for (std::uint64_t seed = 0; seed < 10; ++seed) {
    EXPECT_EQ(Made(Bursts(4, 2), options, seed).samples, Made(Bursts(4, 2), {}, seed).samples);
  }
}

TEST(WideAugmentation, ChildrenSpeakHigherAtTheSamePace) {
  AugmentOptions options = Plain();
  options.child_chance = 1.0;
  options.warp_chance = 1.0;  // gives way
  double lowest = 9999;
  double highest = 0;
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    const Utterance result = Made(ToneBetweenPauses(800), options, seed);
    EXPECT_EQ(SpeechOf(result).size(), 22050u);
    const double hz = LoudestOf(SpeechOf(result));
    lowest = std::min(lowest, hz);
    highest = std::max(highest, hz);
  }
  EXPECT_NEAR(lowest, 880, 25);
  EXPECT_NEAR(highest, 1080, 25);
}

TEST(WideAugmentation, TempoChangesTimesAndNotPitch) {
  AugmentOptions options = Plain();
  options.tempo_chance = 1.0;
  std::size_t shortest = 99999;
  std::size_t longest = 0;
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    const Utterance result = Made(ToneBetweenPauses(800), options, seed);
    const auto speech = SpeechOf(result);
    EXPECT_NEAR(LoudestOf(speech), 800, 9);
    EXPECT_GT(Rms<std::int16_t>(speech.subspan(300, speech.size() - 600)), 20000);
    shortest = std::min(shortest, speech.size());
    longest = std::max(longest, speech.size());
  }
  EXPECT_NEAR(static_cast<double>(shortest), 22050 / 1.5, 700);
  EXPECT_NEAR(static_cast<double>(longest), 22050 / 0.7, 1500);
}

TEST(WideAugmentation, EdgesAreFromTenMillisecondsToThreeSeconds) {
  AugmentOptions options = Plain();
  options.edges_chance = 1.0;
  int shorter = 0;  // than a tenth of a second
  int longer = 0;   // than a second
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    const Utterance result = Made(ToneBetweenPauses(800), options, seed);
    ASSERT_EQ(result.labels.size(), 3u);
    const double before = result.labels[1].start / 22050.0;
    const double after =
        static_cast<double>(result.samples.size()) / 22050 - result.labels[2].start / 22050.0;
    for (const double edge : {before, after}) {
      EXPECT_GE(edge, 0.0099);
      EXPECT_LE(edge, 3.01);
      shorter += edge < 0.1;
      longer += edge > 1.0;
    }
    const auto onset =
        std::ranges::find_if(result.samples, [](int x) { return std::abs(x) > 9000; });
    EXPECT_NEAR(static_cast<double>(onset - result.samples.begin()), result.labels[1].start, 70);
    EXPECT_EQ(SpeechOf(result).size(), 22050u);
  }
  // On a scale of ratios a tenth of a second is .40 of the way, a second .81.
  EXPECT_NEAR(shorter, 400 * 0.404, 40);
  EXPECT_NEAR(longer, 400 * 0.193, 32);
}

TEST(WideAugmentation, PaddingBeforeAFirstPhonemeIsAPause) {
  Utterance clean = ToneBetweenPauses(800);
  clean.samples.erase(clean.samples.begin(), clean.samples.begin() + 11025);
  clean.labels = {{'A', 0}, {'-', 22050}};
  AugmentOptions options = Plain();
  const Utterance result = Made(clean, options);
  ASSERT_EQ(result.labels.size(), 3u);
  EXPECT_EQ(result.labels[0], (PhonemeLabel{'-', 0}));
  EXPECT_EQ(result.labels[1].symbol, 'A');
  const auto onset = std::ranges::find_if(result.samples, [](int x) { return std::abs(x) > 9000; });
  EXPECT_NEAR(static_cast<double>(onset - result.samples.begin()), result.labels[1].start, 70);
}

TEST(WideAugmentation, BabbleIsFiveTo25DecibelsBelowTheSpeech) {
  std::vector<Utterance> others;
  for (int voice = 0; voice < 9; ++voice) {
    others.push_back(
        ToneBetweenPauses(2000.0 + 500 * voice, std::string(1, static_cast<char>('a' + voice))));
  }
  AugmentOptions options = Plain();
  options.babble_chance = 1.0;
  options.others = others;
  double least = 99;
  double most = -99;
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    const Utterance result = Made(ToneBetweenPauses(800), options, seed);
    const auto speech = SpeechOf(result);
    double babble = 0.0;
    for (double hz = 1950; hz < 6100; hz += 4.0) {
      babble += std::pow(AmplitudeAt<std::int16_t>(speech.first(5000), hz), 2);
    }
    double own = 0.0;
    for (double hz = 750; hz < 850; hz += 4.0) {
      own += std::pow(AmplitudeAt<std::int16_t>(speech.first(5000), hz), 2);
    }
    const double db = 10 * std::log10(own / babble);
    least = std::min(least, db);
    most = std::max(most, db);
  }
  // A stretch of it is not as loud as the whole.
  EXPECT_GT(least, 2.0);
  EXPECT_LT(least, 9.0);
  EXPECT_GT(most, 21.0);
  EXPECT_LT(most, 29.0);
  options.others = {};
  EXPECT_EQ(Made(ToneBetweenPauses(800), options).samples,
            Made(ToneBetweenPauses(800), Plain()).samples);
}

TEST(WideAugmentation, HumClippingBandsAndCodecsEachByTheirChance) {
  const Utterance clean = ToneBetweenPauses(800);
  AugmentOptions hum = Plain();
  hum.hum_chance = 1.0;
  const auto pause = [](const Utterance& utterance) {
    return Rms<std::int16_t>(std::span(utterance.samples).first(11025));
  };
  EXPECT_EQ(pause(Made(clean, Plain())), 0.0);
  const double speech = 32000 / std::sqrt(2.0);
  EXPECT_GT(pause(Made(clean, hum)), 0.02 * speech);
  EXPECT_LT(pause(Made(clean, hum)), 0.4 * speech);

  AugmentOptions clipping = Plain();
  clipping.clipping_chance = 1.0;
  const Utterance clipped = Made(clean, clipping);
  EXPECT_GT(std::ranges::count_if(clipped.samples, [](int x) { return std::abs(x) >= 31999; }),
            22050 / 3);

  AugmentOptions band = Plain();
  band.band_chance = 1.0;
  const std::vector<Utterance> high = {ToneBetweenPauses(5000)};
  Utterance both = clean;
  for (std::size_t i = 0; i < both.samples.size(); ++i) {
    both.samples[i] = static_cast<std::int16_t>(both.samples[i] + high[0].samples[i]);
  }
  const auto share = [](const Utterance& utterance) {
    const auto middle = SpeechOf(utterance).subspan(8000, 5000);
    return AmplitudeAt<std::int16_t>(middle, 5000) / AmplitudeAt<std::int16_t>(middle, 800);
  };
  EXPECT_NEAR(share(Made(both, Plain())), 1.0, 0.05);
  EXPECT_LT(share(Made(both, band)), 0.01);

  AugmentOptions codec = Plain();
  codec.codec_chance = 1.0;
  for (std::uint64_t seed = 0; seed < 6; ++seed) {
    const Utterance plain = Made(Bursts(6, 3), Plain(), seed);
    const Utterance coded = Made(Bursts(6, 3), codec, seed);
    ASSERT_EQ(coded.samples.size(), plain.samples.size());
    EXPECT_EQ(coded.labels, plain.labels);
    const std::vector<float> lost = Difference(coded, plain);
    EXPECT_GT(Rms<float>(lost), 0.03 * Rms<std::int16_t>(plain.samples));
    EXPECT_NEAR(LagOf(Floats(plain.samples), Floats(coded.samples), 60), 0, 22);
  }
}

TEST(WideAugmentation, LevelsReachDownAsFarAsAsked) {
  AugmentOptions options = Plain();
  options.level_range_db = 45.0;
  int quietest = 32767;
  for (std::uint64_t seed = 0; seed < 60; ++seed) {
    int peak = 0;
    for (const int x : Made(ToneBetweenPauses(800), options, seed).samples) {
      peak = std::max(peak, std::abs(x));
    }
    quietest = std::min(quietest, peak);
  }
  EXPECT_GE(Decibels(quietest / 32000.0), -45.2);
  EXPECT_LE(Decibels(quietest / 32000.0), -42.0);
}

TEST(WideAugmentation, AllOfItKeepsWhatIsSaidOnAnyNumberOfThreads) {
  const std::vector<Utterance> others = {ToneBetweenPauses(1500, "one"), Bursts(9, 4)};
  const AugmentOptions options = WideAugmentation(others);
  const Utterance clean = Bursts(5, 8);
  std::vector<Utterance> one(40);
  std::vector<Utterance> many(one.size());
  for (const auto& [threads, results] : {std::pair{1, &one}, std::pair{4, &many}}) {
    ParallelFor(results->size(), threads, [&, out = results](std::size_t i) {
      Random random(MixSeed(6, i));
      (*out)[i] = Augment(clean, options, random);
    });
  }
  for (std::size_t i = 0; i < one.size(); ++i) {
    EXPECT_EQ(one[i].samples, many[i].samples) << i;
    EXPECT_EQ(one[i].labels, many[i].labels) << i;
    EXPECT_EQ(PhonemesOf(one[i]), PhonemesOf(clean));
    EXPECT_EQ(one[i].spoken_tones, clean.spoken_tones);
    EXPECT_EQ(one[i].syllables, clean.syllables);
    EXPECT_TRUE(std::ranges::is_sorted(one[i].labels, {}, &PhonemeLabel::start));
    EXPECT_LE(one[i].labels.back().start, static_cast<std::int32_t>(one[i].samples.size()));
  }
}

TEST(WideAugmentation, TakesEmptyAndVeryShortRecordings) {
  const std::vector<Utterance> others = {ToneBetweenPauses(1500, "one")};
  const AugmentOptions options = WideAugmentation(others);
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    for (const std::size_t length : {0u, 1u, 50u, 600u}) {
      Utterance clean{"", "own", {}, std::vector<std::int16_t>(length, 1000)};
      EXPECT_GE(Made(clean, options, seed).samples.size(), 441u);
      clean.labels = {{'A', 0}};
      EXPECT_EQ(PhonemesOf(Made(clean, options, seed)), "A");
    }
  }
}

}  // namespace
}  // namespace veral3::training
