#include "training/augment/Conditions.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <stdexcept>

#include "tests/training/augment/Signals.h"
#include "training/common/ParallelFor.h"

namespace veral3::training {
namespace {

const std::vector<Utterance>& Others() {
  static const std::vector<Utterance> others = {
      ToneBetweenPauses(1500, "one"), ToneBetweenPauses(2100, "two"),
      ToneBetweenPauses(2700, "three"), ToneBetweenPauses(3300, "four")};
  return others;
}

int PeakOf(const Utterance& utterance) {
  int peak = 0;
  for (const std::int16_t x : utterance.samples) peak = std::max(peak, std::abs(int{x}));
  return peak;
}

Utterance Under(const Utterance& clean, Condition condition, std::uint64_t seed = 1) {
  Random random(seed);
  return UnderCondition(clean, condition, Others(), random);
}

TEST(Conditions, AreNineteenInTheirOrderWithNamesOfTheirOwn) {
  std::set<std::string_view> names;
  for (std::size_t i = 0; i < kConditions.size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(kConditions[i]), i);
    names.insert(NameOf(kConditions[i]));
  }
  EXPECT_EQ(names.size(), 19u);
  EXPECT_EQ(NameOf(Condition::kBabble20), "babble 20 dB");
  EXPECT_FALSE(names.contains(""));
}

TEST(Conditions, SameSeedSameSamplesOnAnyNumberOfThreads) {
  const Utterance clean = Bursts(4, 7);
  std::vector<Utterance> one(kConditions.size());
  std::vector<Utterance> many(kConditions.size());
  for (const auto& [threads, results] : {std::pair{1, &one}, std::pair{4, &many}}) {
    ParallelFor(results->size(), threads, [&, out = results](std::size_t i) {
      Random random(MixSeed(5, i));
      (*out)[i] = UnderCondition(clean, kConditions[i], Others(), random);
    });
  }
  for (std::size_t i = 0; i < one.size(); ++i) {
    EXPECT_EQ(one[i].samples, many[i].samples) << NameOf(kConditions[i]);
    EXPECT_EQ(one[i].labels, many[i].labels) << NameOf(kConditions[i]);
    EXPECT_EQ(one[i].samples == clean.samples, kConditions[i] == Condition::kClean)
        << NameOf(kConditions[i]);
  }
}

TEST(Conditions, CarryWhatIsSaidAlong) {
  const Utterance clean = Bursts(5, 8);
  for (const Condition condition : kConditions) {
    const Utterance result = Under(clean, condition);
    EXPECT_EQ(result.text, clean.text);
    EXPECT_EQ(result.voice, clean.voice);
    EXPECT_EQ(PhonemesOf(result), PhonemesOf(clean)) << NameOf(condition);
    EXPECT_EQ(result.tones, clean.tones);
    EXPECT_EQ(result.spoken_tones, clean.spoken_tones);
    EXPECT_EQ(result.syllables, clean.syllables);
    ASSERT_FALSE(result.labels.empty());
    EXPECT_EQ(result.labels.front().start, 0);
    for (std::size_t i = 1; i < result.labels.size(); ++i) {
      EXPECT_LT(result.labels[i - 1].start, result.labels[i].start) << NameOf(condition);
    }
    EXPECT_LE(result.labels.back().start, static_cast<std::int32_t>(result.samples.size()));
  }
}

TEST(Conditions, SoundsBeginWhereTheirLabelsSay) {
  const Utterance clean = Bursts(12, 9);
  for (const Condition condition :
       {Condition::kClean, Condition::kOpus12, Condition::kMp3At32, Condition::kClipping6,
        Condition::kQuiet40, Condition::kPadding10ms, Condition::kPadding3s, Condition::kPitchUp400,
        Condition::kTempo07, Condition::kTempo15}) {
    const Utterance result = Under(clean, condition);
    // Time stretching goes by steps.
    const bool stretched = condition == Condition::kPitchUp400 || condition >= Condition::kTempo07;
    const double tolerance = stretched ? 0.009 : 0.003;
    double sum = 0.0;
    int count = 0;
    for (const PhonemeLabel& label : result.labels) {
      if (label.symbol == '-') continue;
      const int from = std::max(0, label.start - 700);
      int loudest = 0;
      for (int i = label.start; i < label.start + 1300; ++i) {
        loudest = std::max(loudest, std::abs(int{result.samples[static_cast<std::size_t>(i)]}));
      }
      int onset = from;
      while (std::abs(int{result.samples[static_cast<std::size_t>(onset)]}) < loudest / 3) ++onset;
      EXPECT_NEAR((onset - label.start) / 22050.0, 0.0, tolerance) << NameOf(condition);
      sum += (onset - label.start) / 22050.0;
      ++count;
    }
    EXPECT_NEAR(sum / count, 0.0, 0.003) << NameOf(condition);
  }
}

TEST(Conditions, NoiseHasItsDistanceFromTheSpeechAlone) {
  const Utterance clean = ToneBetweenPauses(700);
  const double speech = 8000 / std::sqrt(2.0);  // its pauses, half of the recording, not counted
  for (const auto& [condition, db] :
       {std::pair{Condition::kWhite20, 20.0}, std::pair{Condition::kWhite10, 10.0},
        std::pair{Condition::kWhite5, 5.0}, std::pair{Condition::kBabble20, 20.0},
        std::pair{Condition::kBabble10, 10.0}, std::pair{Condition::kBabble5, 5.0},
        std::pair{Condition::kHum, 20.0}}) {
    const std::vector<float> noise = Difference(Under(clean, condition), clean);
    EXPECT_NEAR(Decibels(speech / Rms<float>(noise)), db, 0.3) << NameOf(condition);
  }
}

TEST(Conditions, WhiteNoiseIsEquallyStrongInEveryBand) {
  const Utterance clean = ToneBetweenPauses(700);
  const std::vector<float> noise = Difference(Under(clean, Condition::kWhite10), clean);
  double least = 1e9;
  double most = 0.0;
  for (double band = 500; band < 10500; band += 1000) {
    double sum = 0.0;
    for (double hz = band; hz < band + 1000; hz += 10) {
      const double size = AmplitudeAt<float>(noise, hz);
      sum += size * size;
    }
    least = std::min(least, sum);
    most = std::max(most, sum);
  }
  EXPECT_LT(most / least, 2.0);
}

TEST(Conditions, ATelephoneKeepsItsBandOnly) {
  for (const auto& [hz, db, tolerance] :
       {std::tuple{1000.0, 0.0, 0.1}, std::tuple{3000.0, 0.0, 0.1}, std::tuple{400.0, 0.0, 0.3}}) {
    const Utterance result = Under(ToneBetweenPauses(hz), Condition::kTelephone);
    const auto middle = std::span(std::as_const(result.samples)).subspan(16000, 12000);
    EXPECT_NEAR(Decibels(Rms<std::int16_t>(middle) * std::sqrt(2.0) / 8000), db, tolerance) << hz;
  }
  for (const double hz : {60.0, 180.0, 3600.0, 5000.0, 9000.0}) {
    const Utterance result = Under(ToneBetweenPauses(hz), Condition::kTelephone);
    const auto middle = std::span(std::as_const(result.samples)).subspan(16000, 12000);
    EXPECT_LT(Rms<std::int16_t>(middle), 100) << hz;
  }
}

TEST(Conditions, ClippingHalvesThePeak) {
  const Utterance clean = ToneBetweenPauses(443.7);
  const Utterance result = Under(clean, Condition::kClipping6);
  EXPECT_NEAR(PeakOf(result), 8000 * 0.5012, 3);
  // A sine is above half of its peak for two thirds of its time.
  const auto clipped = std::ranges::count_if(
      result.samples, [&](std::int16_t x) { return std::abs(int{x}) == PeakOf(result); });
  EXPECT_NEAR(static_cast<double>(clipped) / 22050, 2.0 / 3.0, 0.02);
}

TEST(Conditions, AQuietRecordingHasItsPeakAtMinus40dB) {
  EXPECT_NEAR(PeakOf(Under(ToneBetweenPauses(441), Condition::kQuiet40)), 328, 1);
}

TEST(Conditions, PaddingIsExactWhateverTheRecordingHad) {
  const Utterance clean = ToneBetweenPauses(441);
  for (const auto& [condition, length] :
       {std::pair{Condition::kPadding10ms, 221}, std::pair{Condition::kPadding3s, 66150}}) {
    for (std::uint64_t seed = 0; seed < 6; ++seed) {
      const Utterance result = Under(clean, condition, seed);
      EXPECT_THAT(result.labels,
                  testing::ElementsAre(PhonemeLabel{'-', 0}, PhonemeLabel{'A', length},
                                       PhonemeLabel{'-', length + 22050}));
      ASSERT_EQ(result.samples.size(), static_cast<std::size_t>(22050 + 2 * length));
      EXPECT_TRUE(std::equal(clean.samples.begin() + 11025, clean.samples.begin() + 33075,
                             result.samples.begin() + length));
      const auto edge =
          std::span(std::as_const(result.samples)).first(static_cast<std::size_t>(length));
      EXPECT_LT(Rms<std::int16_t>(edge), 8.5);
    }
  }
}

// The loudest frequency of the middle of the speech.
double LoudestOf(const Utterance& utterance) {
  const std::size_t start = utterance.samples.size() / 2 - 4000;
  const auto middle = std::span(std::as_const(utterance.samples)).subspan(start, 8000);
  double best = 0.0;
  double most = 0.0;
  for (double hz = 300; hz < 2000; hz += 2) {
    const double size = AmplitudeAt<std::int16_t>(middle, hz);
    if (size > most) {
      most = size;
      best = hz;
    }
  }
  return best;
}

TEST(Conditions, AChildsVoiceIsATempoKeptAnd400CentsHigher) {
  const Utterance clean = ToneBetweenPauses(800);
  const Utterance result = Under(clean, Condition::kPitchUp400);
  EXPECT_EQ(result.samples.size(), clean.samples.size());
  EXPECT_EQ(result.labels, clean.labels);
  EXPECT_NEAR(1200.0 * std::log2(LoudestOf(result) / 800.0), 400.0, 8.0);
}

TEST(Conditions, TempoKeepsThePitch) {
  const Utterance clean = ToneBetweenPauses(800);
  for (const auto& [condition, tempo] :
       {std::pair{Condition::kTempo07, 0.7}, std::pair{Condition::kTempo15, 1.5}}) {
    const Utterance result = Under(clean, condition);
    EXPECT_NEAR(static_cast<double>(result.samples.size()), 44100 / tempo, 1);
    EXPECT_NEAR(result.labels[1].start, 11025 / tempo, 1);
    EXPECT_NEAR(result.labels[2].start, 33075 / tempo, 1);
    EXPECT_NEAR(LoudestOf(result), 800.0, 4.0);
  }
}

TEST(Conditions, TakeEmptyAndVeryShortRecordings) {
  for (const Condition condition : kConditions) {
    for (const std::size_t length : {0u, 1u, 2u, 10u, 300u, 700u}) {
      Utterance clean{"", "own", {}, std::vector<std::int16_t>(length, 0)};
      for (std::size_t i = 0; i < length; ++i) clean.samples[i] = i % 2 == 0 ? 32767 : -32768;
      for (int labelled = 0; labelled < 3; ++labelled) {
        if (labelled == 1) clean.labels = {{'-', 0}};
        if (labelled == 2) clean.labels = {{'A', 0}};
        const Utterance result = Under(clean, condition);
        const bool padded =
            condition == Condition::kPadding10ms || condition == Condition::kPadding3s;
        if (padded) {
          const std::size_t edge = condition == Condition::kPadding10ms ? 221 : 66150;
          EXPECT_EQ(result.samples.size(), length + 2 * edge);
        } else if (condition < Condition::kTempo07) {
          EXPECT_EQ(result.samples.size(), length) << NameOf(condition);
        }
        EXPECT_EQ(PhonemesOf(result), PhonemesOf(clean));
      }
    }
  }
}

TEST(Conditions, SilenceStaysSilentButForItsPadding) {
  const Utterance silence{"", "own", {}, std::vector<std::int16_t>(8000, 0)};
  for (const Condition condition : kConditions) {
    if (condition == Condition::kPadding10ms || condition == Condition::kPadding3s) continue;
    EXPECT_LE(PeakOf(Under(silence, condition)), 2) << NameOf(condition);
  }
}

TEST(Conditions, BabbleOfNobodyIsRefused) {
  Random random(1);
  EXPECT_THROW(UnderCondition(Bursts(2, 1), Condition::kBabble10, {}, random),
               std::invalid_argument);
  EXPECT_NO_THROW(UnderCondition(Bursts(2, 1), Condition::kHum, {}, random));
}

}  // namespace
}  // namespace veral3::training
