#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <stdexcept>

#include "training/goodness/Readings.h"
#include "training/measure/Scores.h"

namespace veral3::training {
namespace {

// Half a second of speech of one height between pauses of a tenth.
Utterance Spoken(const std::string& text, std::int16_t height) {
  Utterance utterance{text, "test", {{'-', 0}, {'A', 2205}, {'-', 13230}}, {}};
  utterance.samples.assign(15435, 0);
  std::fill(utterance.samples.begin() + 2205, utterance.samples.begin() + 13230, height);
  return utterance;
}

const std::vector<Utterance>& Utterances() {
  static const std::vector<Utterance> utterances = {Spoken("one two three four five six.", 1000),
                                                    Spoken("red green blue", 2000)};
  return utterances;
}

const std::vector<Utterance>& Foreign() {
  static const std::vector<Utterance> utterances = {Spoken("un deux", 3000)};
  return utterances;
}

const CPhonemeSet& English() { return *PhonemeSetOf(kLanguageEnglish); }

// As it comes, without noise or filters, so that samples can be counted.
AugmentOptions Plain() {
  return {.warp_chance = 0.0,
          .reverb_chance = 0.0,
          .low_pass_chance = 0.0,
          .telephone_chance = 0.0,
          .noise_chance = 0.0,
          .equaliser_db = 0.0};
}

// Samples of speech, which is louder than a tenth of the loudest. The padding and the equaliser's
// edges are not.
double SpeechSeconds(const Reading& reading) {
  int peak = 0;
  for (const std::int16_t x : reading.samples) peak = std::max(peak, std::abs(int{x}));
  const auto loud = std::ranges::count_if(
      reading.samples, [peak](std::int16_t x) { return std::abs(int{x}) * 10 > peak; });
  return static_cast<double>(loud) / 22050.0;
}

int WordsThatDiffer(const std::string& a, const std::string& b) {
  std::istringstream first(a);
  std::istringstream second(b);
  int differ = 0;
  for (std::string x, y; first >> x && second >> y;) differ += x != y;
  return differ;
}

TEST(Readings, AreOfTheKindAskedFor) {
  const ReadingMaker maker(English(), Utterances(), Foreign());
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const auto seconds = [&](ReadingKind kind) {
      const Reading reading = maker.Make(0, kind, Plain(), random);
      EXPECT_EQ(reading.sentence, Utterances()[0].text);
      return SpeechSeconds(reading);
    };
    EXPECT_NEAR(seconds(ReadingKind::kRight), 0.5, 0.01);
    EXPECT_NEAR(seconds(ReadingKind::kOtherSentence), 0.5, 0.01);
    EXPECT_NEAR(seconds(ReadingKind::kOtherLanguage), 0.5, 0.01);
    EXPECT_NEAR(seconds(ReadingKind::kRepeated), 1.0, 0.02);
    const double cut = seconds(ReadingKind::kCutOff);
    EXPECT_GT(cut, 0.19);
    EXPECT_LT(cut, 0.31);
    for (const ReadingKind kind : {ReadingKind::kSpeechBefore, ReadingKind::kSpeechAfter}) {
      const double more = seconds(kind);
      EXPECT_GT(more, 0.7);
      EXPECT_LT(more, 1.01);
    }
  }
}

TEST(Readings, PausesStandBetweenWordsAndTakeNoSpeech) {
  const ReadingMaker maker(English(), Utterances(), {});
  const std::vector<std::int32_t> starts = {2205, 4000, 6000, 8000, 10000, 12000};
  bool longer = false;
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Reading reading = maker.Make(0, ReadingKind::kRightWithPauses, Plain(), random, starts);
    EXPECT_NEAR(SpeechSeconds(reading), 0.5, 0.03);
    EXPECT_LT(reading.samples.size(), 15435U + 22050U * 3U);  // 3 pauses and the padding
    longer = longer || reading.samples.size() > 15435U + 22050U * 6U / 5U;  // more than padding
  }
  EXPECT_TRUE(longer);
}

TEST(Readings, MispronouncedOnesTakePhonemesOfTheSameKindFromOthers) {
  // A vowel of another height in the second sentence, and a consonant that must not be taken.
  std::vector<Utterance> utterances = {Spoken("one two", 1000), Spoken("red green", 4000)};
  utterances[1].labels = {{'-', 0}, {'i', 2205}, {'s', 6000}, {'-', 13230}};
  std::fill(utterances[1].samples.begin() + 6000, utterances[1].samples.begin() + 13230, 9000);
  utterances[0].labels.clear();
  for (std::int32_t start = 2205; start < 13230; start += 1102) {
    utterances[0].labels.push_back({'A', start});
  }
  const ReadingMaker maker(English(), utterances, {});
  int exchanged = 0;
  for (std::uint64_t seed = 0; seed < 40; ++seed) {
    Random random(seed);
    AugmentOptions plain = Plain();
    const Reading reading = maker.Make(0, ReadingKind::kMispronounced, plain, random);
    EXPECT_EQ(reading.sentence, "one two");
    // Longer by the vowel of the other sentence, once for each that was exchanged.
    exchanged += SpeechSeconds(reading) > 0.55;
  }
  EXPECT_GT(exchanged, 10);
  EXPECT_LT(exchanged, 40);
}

TEST(Readings, OneThirdOfTheWordsAreExchanged) {
  const ReadingMaker maker(English(), Utterances(), {});
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const std::string six = maker.WithWordsChanged(Utterances()[0].text, random);
    EXPECT_EQ(WordsThatDiffer("one two three four five six.", six), 2) << six;
    EXPECT_EQ(WordsThatDiffer("red green blue", maker.WithWordsChanged("red green blue", random)),
              1);
    EXPECT_NE(maker.WithWordsChanged("red", random), "red");
    const Reading reading = maker.Make(0, ReadingKind::kWordsChanged, Plain(), random);
    EXPECT_NE(reading.sentence, Utterances()[0].text);
  }
}

TEST(Readings, SilenceNoiseAndTonesAreNoSpeech) {
  const ReadingMaker maker(English(), Utterances(), {});
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Reading silence = maker.Make(1, ReadingKind::kSilence, Plain(), random);
    EXPECT_TRUE(std::ranges::all_of(silence.samples, [](int x) { return std::abs(x) < 400; }));
    for (const ReadingKind kind : {ReadingKind::kNoise, ReadingKind::kTones}) {
      const Reading reading = maker.Make(1, kind, Plain(), random);
      EXPECT_EQ(reading.sentence, "red green blue");
      EXPECT_GE(reading.samples.size(), 13000U);
      EXPECT_LE(reading.samples.size(), 100000U);
      EXPECT_TRUE(std::ranges::any_of(reading.samples, [](int x) { return std::abs(x) > 50; }));
    }
  }
}

TEST(Readings, TheSameNumbersMakeTheSameReading) {
  const ReadingMaker maker(English(), Utterances(), Foreign());
  for (const ReadingKind kind : kReadingKinds) {
    Random first(5);
    Random second(5);
    const Reading a = maker.Make(1, kind, AugmentOptions{}, first);
    const Reading b = maker.Make(1, kind, AugmentOptions{}, second);
    EXPECT_EQ(a.sentence, b.sentence);
    EXPECT_EQ(a.samples, b.samples) << NameOf(kind);
  }
}

TEST(Readings, HaveNamesOfTheirOwn) {
  std::set<std::string_view> names;
  for (const ReadingKind kind : kReadingKinds) names.insert(NameOf(kind));
  EXPECT_EQ(names.size(), kReadingKinds.size());
  EXPECT_FALSE(names.contains(""));
}

TEST(Readings, NeedSomethingToBeWrongWith) {
  const std::vector<Utterance> one = {Spoken("red green", 1), Spoken("red green", 2)};
  EXPECT_THROW(ReadingMaker(English(), one, {}), std::runtime_error);
  const ReadingMaker maker(English(), Utterances(), {});
  EXPECT_FALSE(maker.HasForeign());
  Random random(1);
  EXPECT_THROW(maker.Make(0, ReadingKind::kOtherLanguage, Plain(), random), std::runtime_error);
}

TEST(Percentile, IsTheNearestValueRoundedUp) {
  const std::vector<double> values = {5, 1, 4, 2, 3, 6, 7, 8, 9, 10};
  EXPECT_EQ(Percentile(values, 10.0), 1.0);
  EXPECT_EQ(Percentile(values, 11.0), 2.0);
  EXPECT_EQ(Percentile(values, 100.0), 10.0);
  EXPECT_EQ(Percentile(values, 0.0), 1.0);
  EXPECT_EQ(Percentile({}, 10.0), 0.0);
}

}  // namespace
}  // namespace veral3::training
