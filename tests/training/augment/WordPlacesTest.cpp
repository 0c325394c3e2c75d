#include "training/augment/WordPlaces.h"

#include <gmock/gmock.h>

#include "common/Messages.h"
#include "recognition/DictionaryFile.h"

namespace veral3::training {
namespace {

const VeralDictionary& Dictionary() {
  static const VeralDictionary dictionary(
      IndexDictionary("VERAL 3 EN_KEP5 4\n"
                      "BAT 1 ? 1 1 0 b{t\n"
                      "DOG 2 ? 1 1 0 dOg\n"
                      "? 1 1 0 dAg\n"
                      "NET 1 ? 1 1 0 nEt\n"
                      "SAND 1 ? 1 1 0 s{nd\n",
                      "small.txt"));
  return dictionary;
}

// A label every 100 samples.
Utterance Said(const std::string& text, const std::string& labels) {
  Utterance utterance{text, "test", {}, {}};
  for (const char symbol : labels) {
    utterance.labels.push_back({symbol, static_cast<std::int32_t>(100 * utterance.labels.size())});
  }
  utterance.samples.assign(100 * labels.size(), 0);
  return utterance;
}

using testing::ElementsAre;
using testing::IsEmpty;
using Place = WordPlace;

TEST(WordPlaces, AreWhereThePronunciationsBegin) {
  EXPECT_THAT(WordPlacesOf(Said("Bat dog net.", "-b{tdAg-nEt-"), Dictionary()),
              ElementsAre(Place{"Bat", 0}, Place{"dog", 3}, Place{"net.", 6}));
  EXPECT_THAT(WordPlacesOf(Said("dog dog", "dAgdOg"), Dictionary()),
              ElementsAre(Place{"dog", 0}, Place{"dog", 3}));
}

TEST(WordPlaces, AreFoundThoughAPhonemeDiffersIsMissingOrTooMuch) {
  EXPECT_THAT(WordPlacesOf(Said("bat dog net", "bitdAgnit"), Dictionary()),
              ElementsAre(Place{"bat", 0}, Place{"dog", 3}, Place{"net", 6}));
  EXPECT_THAT(WordPlacesOf(Said("bat dog net", "b{dAgnEt"), Dictionary()),
              ElementsAre(Place{"bat", 0}, Place{"dog", 2}, Place{"net", 5}));
  EXPECT_THAT(WordPlacesOf(Said("bat dog net", "br{tdAgnEt"), Dictionary()),
              ElementsAre(Place{"bat", 0}, Place{"dog", 4}, Place{"net", 7}));
}

TEST(WordPlaces, APauseDecidesWhoseAPhonemeIs) {
  EXPECT_THAT(WordPlacesOf(Said("sand dog", "s{n-dAg"), Dictionary()),
              ElementsAre(Place{"sand", 0}, Place{"dog", 3}));
  EXPECT_THAT(WordPlacesOf(Said("sand dog", "s{nd-Ag"), Dictionary()),
              ElementsAre(Place{"sand", 0}, Place{"dog", 4}));
}

TEST(WordPlaces, AMarkGoesWithTheWordBeforeIt) {
  EXPECT_THAT(WordPlacesOf(Said("bat , dog", "b{t-dAg"), Dictionary()),
              ElementsAre(Place{"bat ,", 0}, Place{"dog", 3}));
}

TEST(WordPlaces, AreNoneForUnknownWordsOtherSpeechOrNone) {
  SetMessageHandler([](MessageStream, std::string_view) {});
  EXPECT_THAT(WordPlacesOf(Said("bat zebra", "b{tzibr@"), Dictionary()), IsEmpty());
  SetMessageHandler({});
  EXPECT_THAT(WordPlacesOf(Said("bat dog", "SuloIm"), Dictionary()), IsEmpty());
  EXPECT_THAT(WordPlacesOf(Said("bat dog", "-"), Dictionary()), IsEmpty());
  EXPECT_THAT(WordPlacesOf(Said("", "b{t"), Dictionary()), IsEmpty());
  EXPECT_THAT(WordPlacesOf(Said("", ""), Dictionary()), IsEmpty());
  EXPECT_THAT(WordPlacesOf(Said("bat dog net", "b"), Dictionary()), IsEmpty());
}

TEST(WordPlaces, FallOnSyllablesWhereTheseAreKnown) {
  Utterance utterance = Said("bat dog", "b{tdAg");
  utterance.tones = utterance.spoken_tones = "12";
  utterance.syllables = {0, 3};
  EXPECT_EQ(WordPlacesOf(utterance, Dictionary()).size(), 2u);
  utterance.syllables = {0, 2};
  EXPECT_THAT(WordPlacesOf(utterance, Dictionary()), IsEmpty());
}

TEST(WordPlaces, WithoutWordsAreStretchesUpToPauses) {
  const Utterance utterance = Said("wer weiss", "-abcdefghijklmnopq-rs-tuvwxyz");
  std::vector<std::size_t> lengths(8, 0);
  for (std::uint64_t seed = 0; seed < 50; ++seed) {
    Random random(seed);
    const auto places = WordlikePlaces(utterance, random);
    EXPECT_EQ(places.front().first, 0u);
    std::vector<std::size_t> firsts;
    for (const Place& place : places) {
      EXPECT_EQ(place.text, "");
      firsts.push_back(place.first);
    }
    EXPECT_THAT(firsts, testing::IsSupersetOf({17u, 19u}));  // behind the pauses
    for (std::size_t i = 1; i < firsts.size() && firsts[i] < 17; ++i) {
      ASSERT_LE(firsts[i] - firsts[i - 1], 7u);
      ++lengths[firsts[i] - firsts[i - 1]];
    }
  }
  EXPECT_EQ(lengths[1] + lengths[2], 0u);
  for (std::size_t length = 3; length <= 7; ++length) EXPECT_GT(lengths[length], 5u) << length;
}

TEST(WordPlaces, WithoutWordsDivideNoSyllable) {
  Utterance utterance = Said("x", "abcdefghijklmnopqrstuvwxyz");
  utterance.syllables = {0, 9, 11, 20};
  utterance.tones = utterance.spoken_tones = "1111";
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    for (const Place& place : WordlikePlaces(utterance, random)) {
      EXPECT_THAT(place.first, testing::AnyOf(0u, 9u, 11u, 20u));
    }
  }
  Random random(1);
  EXPECT_THAT(WordlikePlaces(Said("", "-"), random), IsEmpty());
  EXPECT_THAT(WordlikePlaces(Said("", ""), random), IsEmpty());
}

}  // namespace
}  // namespace veral3::training
