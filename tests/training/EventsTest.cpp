#include "training/speech/PhonemeEvents.h"

#include <gmock/gmock.h>

#include "recognition/CPhonemeSet.h"
#include "training/speech/ArpabetEvents.h"
#include "training/speech/EnglishEvents.h"

namespace veral3::training {
namespace {

using ::testing::ElementsAre;

const EventTable& American() { return EnglishEventTable(EnglishAccent::kAmerican); }
const EventTable& British() { return EnglishEventTable(EnglishAccent::kBritish); }

std::string SymbolsOf(const std::vector<PhonemeLabel>& labels) {
  std::string symbols;
  for (const PhonemeLabel& label : labels) symbols += label.symbol;
  return symbols;
}

TEST(EnglishEvents, AccentsDifferInTheirLowVowelsAndInR) {
  EXPECT_EQ(American().SymbolsOf("0"), "A");
  EXPECT_EQ(British().SymbolsOf("0"), "O");
  EXPECT_EQ(American().SymbolsOf("aa"), "{");
  EXPECT_EQ(British().SymbolsOf("aa"), "A");
  EXPECT_EQ(American().SymbolsOf("3"), "3");
  EXPECT_EQ(British().SymbolsOf("3"), "@");
  EXPECT_EQ(American().SymbolsOf("A@"), "Ac");
  EXPECT_EQ(British().SymbolsOf("A@"), "A");
  EXPECT_EQ(American().SymbolsOf("aI3"), "AI3");
  EXPECT_EQ(British().SymbolsOf("aI3"), "AI@");
}

TEST(EnglishEvents, EverySymbolIsOfTheEnglishSet) {
  const CPhonemeSet* set = PhonemeSetOf(kLanguageEnglish);
  for (const char* name : {"p", "t2", "?", "tS", "dZ", "x", "C", "n-", "@L", "i@3", "O@", "aU@",
                           "oU#", "a#", "E#", "_:", "_!", "_"}) {
    for (const char symbol : American().SymbolsOf(name)) {
      EXPECT_GE(set->GetPhonemeIndex(symbol), 0) << name;
    }
  }
}

TEST(EnglishEvents, AnUnknownEventIsAnErrorThatNamesIt) {
  try {
    American().SymbolsOf("A~");
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), ::testing::HasSubstr("[A~]"));
  }
  EXPECT_FALSE(American().Knows("A~"));
}

TEST(EventTable, RefusesAnEventThatStandsTwice) {
  EXPECT_THROW(EventTable({{"a", "b"}, {"a", "c"}}), std::runtime_error);
}

TEST(Shares, FollowTheKindOfSound) {
  EXPECT_THAT(SharesOf("p"), ElementsAre(100));
  EXPECT_THAT(SharesOf("AI"), ElementsAre(55, 45));
  EXPECT_THAT(SharesOf("@n"), ElementsAre(40, 60));
  EXPECT_THAT(SharesOf("@U"), ElementsAre(55, 45));
  EXPECT_THAT(SharesOf("AI@"), ElementsAre(40, 30, 30));
}

TEST(Labels, DiphthongsDivideTheirTime) {
  const std::vector<PhonemeEvent> events = {{"aI", 264}, {"_:", 1264}};
  EXPECT_THAT(LabelsFromEvents(events, American(), 2000),
              ElementsAre(PhonemeLabel{'-', 0}, PhonemeLabel{'A', 264}, PhonemeLabel{'I', 814},
                          PhonemeLabel{'-', 1264}));
}

TEST(Labels, ColouringOfAVowelIsDroppedBeforeAnR) {
  const std::vector<PhonemeEvent> events = {{"A@", 0}, {"r", 1000}, {"i", 2000}, {"A@", 3000}};
  EXPECT_EQ(SymbolsOf(LabelsFromEvents(events, American(), 4000)), "AriAc");
}

TEST(Labels, AnEmptyEventExtendsThePhonemeBeforeIt) {
  const std::vector<PhonemeEvent> events = {{"n", 100}, {";", 500}, {"i", 700}};
  EXPECT_THAT(LabelsFromEvents(events, American(), 1000),
              ElementsAre(PhonemeLabel{'-', 0}, PhonemeLabel{'n', 100}, PhonemeLabel{'i', 700}));
}

TEST(Labels, AdjoiningPausesAreOne) {
  const std::vector<PhonemeEvent> events = {{"s", 100}, {"_:", 500}, {"_", 700}, {"s", 900}};
  EXPECT_EQ(SymbolsOf(LabelsFromEvents(events, American(), 1000)), "-s-s");
}

TEST(Closures, BelongToTheStopAfterThem) {
  std::vector<std::int16_t> samples(10000, 10000);
  std::fill(samples.begin() + 4000, samples.begin() + 5000, std::int16_t{100});  // below 1.5 %
  std::vector<PhonemeLabel> labels = {{'A', 0}, {'p', 5000}, {'A', 6000}};
  TakeClosures(labels, samples, kEnglishStops);
  EXPECT_NEAR(labels[1].start, 4000, 22);
  EXPECT_EQ(labels[2].start, 6000);
}

TEST(Closures, TakeAtMostSevenTenthsOfThePhonemeBefore) {
  std::vector<std::int16_t> samples(10000, 0);
  samples[9000] = 10000;
  std::vector<PhonemeLabel> labels = {{'-', 0}, {'A', 1000}, {'t', 2000}, {'A', 8000}};
  TakeClosures(labels, samples, kEnglishStops);
  EXPECT_GE(labels[2].start, 1300);
  EXPECT_LE(labels[2].start, 1322);
}

TEST(Closures, TakeAtMost120MsAnd50MsOfAPause) {
  std::vector<std::int16_t> samples(40000, 0);
  samples[39000] = 10000;
  std::vector<PhonemeLabel> labels = {{'A', 0}, {'t', 20000}, {'-', 21000}, {'k', 30000}};
  TakeClosures(labels, samples, kEnglishStops);
  EXPECT_NEAR(labels[1].start, 20000 - 2646, 22);
  EXPECT_NEAR(labels[3].start, 30000 - 1102, 22);
}

TEST(Closures, StartAtSampleZeroStays) {
  std::vector<std::int16_t> samples(1000, 0);
  std::vector<PhonemeLabel> labels = {{'p', 0}, {'A', 500}};
  TakeClosures(labels, samples, kEnglishStops);
  EXPECT_EQ(labels[0].start, 0);
}

TEST(ArpabetEvents, KnowAnRAfterItsVowel) {
  EXPECT_EQ(ArpabetEventTable().SymbolsOf("r"), "r");
  EXPECT_EQ(ArpabetEventTable().SymbolsOf("r_coda"), "c");
  EXPECT_EQ(ArpabetEventTable().SymbolsOf("ax"), "@");
  EXPECT_EQ(ArpabetEventTable().SymbolsOf("ah"), "V");
  EXPECT_TRUE(IsArpabetVowel("ow"));
  EXPECT_FALSE(IsArpabetVowel("w"));
  EXPECT_FALSE(IsArpabetVowel("en"));
}

}  // namespace
}  // namespace veral3::training
