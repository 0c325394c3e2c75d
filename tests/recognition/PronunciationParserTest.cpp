#include "recognition/PronunciationParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recognition/CPhonemeSet.h"

namespace veral3 {
namespace {

constexpr int kEnglish = CPhonemeSet::kEnglish;
constexpr int kChinese = CPhonemeSet::kChinese;
constexpr int kJapanese = CPhonemeSet::kJapanese;

using Numbers = std::vector<std::int32_t>;

void ExpectGood(int set, const std::string& text, const std::string& phonemes, const Numbers& marks,
                const Numbers& starts) {
  SCOPED_TRACE(text);
  OwnedWordEntry::Variant slot;
  EXPECT_EQ(ParsePronunciation(set, text, slot), PronunciationStatus::kGood);
  EXPECT_EQ(slot.phonemes, phonemes);
  EXPECT_EQ(slot.syllable_marks, marks);
  EXPECT_EQ(slot.syllable_starts, starts);
}

void ExpectNothing(int set, const std::string& text, PronunciationStatus status) {
  SCOPED_TRACE(text);
  OwnedWordEntry::Variant slot{"left", {1, 2}, {0, 3}};
  EXPECT_EQ(ParsePronunciation(set, text, slot), status);
  EXPECT_EQ(slot.phonemes, "");
  EXPECT_TRUE(slot.syllable_marks.empty());
  EXPECT_TRUE(slot.syllable_starts.empty());
}

void ExpectMalformed(int set, const std::string& text) {
  ExpectNothing(set, text, PronunciationStatus::kMalformed);
}

TEST(PronunciationParser, ExpansionMovesTheStartsAfterIt) {
  ExpectGood(kEnglish, "? 1 1 0 hYt", "hAIt", {1}, {0});
  ExpectGood(kEnglish, "? 2 10 0 2 rYtR", "rAIt3", {1, 0}, {0, 3});
  ExpectGood(kChinese, "? 3 123 0 2 3 b{}#s", "buanu@is", {1, 2, 3}, {0, 4, 7});
}

TEST(PronunciationParser, EnglishTable) {
  ExpectGood(kEnglish, "? 1 0 0 RWYeoy", "3AUAIEI@UOI", {0}, {0});
  // Everything else is copied: the phonemes of the set, and what is none.
  const std::string same = "iIE{AOuUV@3pbtdkgmnNlfvTDszSZrchCJjw-<>!";
  ExpectGood(kEnglish, "? 1 0 0 " + same, same, {0}, {0});
}

TEST(PronunciationParser, ChineseTable) {
  const std::vector<std::pair<char, std::string>> table = {
      {'<', "Uan"}, {'>', "un"},  {'J', "un"},  {'A', "an"},  {'B', "in"},  {'D', "iM"},
      {'F', "UE"},  {'G', "ia"},  {'H', "uaM"}, {'I', "oM"},  {'K', "uai"}, {'L', "ua"},
      {'M', "@M"},  {'N', "@n"},  {'O', "ou"},  {'P', "aM"},  {'Q', "iE"},  {'T', "iaM"},
      {'V', "iou"}, {'W', "au"},  {'X', "ioM"}, {'Y', "iai"}, {'[', "uo"},  {']', "io"},
      {'e', "Ei"},  {'v', "iEn"}, {'w', "iau"}, {'y', "ai"},  {'{', "uan"}, {'}', "u@i"},
  };
  EXPECT_EQ(table.size(), 30U);
  for (const auto& [compact, expanded] : table) {
    ExpectGood(kChinese, std::string("? 2 13 0 2 b") + compact + "ba", "b" + expanded + "ba",
               {1, 3}, {0, static_cast<int>(expanded.size()) + 1});
  }
  const std::string same = "ao@ERiuU()bpmfdtnlgkhjqxZCSrzcs-!";
  ExpectGood(kChinese, "? 1 5 0 " + same, same, {5}, {0});
}

TEST(PronunciationParser, JapaneseTable) {
  ExpectGood(kJapanese, "? 2 11 0 3 hoMhoN", "honhon", {1, 1}, {0, 3});
  const std::string same = "aeioubpdtXYgkfhcsCrjZzmnw-RWYeoy!";
  ExpectGood(kJapanese, "? 1 1 0 " + same, same, {1}, {0});
}

TEST(PronunciationParser, AnUnknownSetExpandsNothing) {
  ExpectGood(0, "? 2 10 0 2 rYtRN", "rYtRN", {1, 0}, {0, 2});
}

TEST(PronunciationParser, ChineseHashGoesAndEnglishLosesALeadingOne) {
  ExpectGood(kChinese, "? 2 11 0 2 #a#b#", "ab", {1, 1}, {0, 1});
  ExpectGood(kEnglish, "? 1 1 0 #h#i", "h#i", {1}, {0});
  ExpectGood(kEnglish, "? 1 1 0 ##h", "#h", {1}, {0});
  ExpectGood(kJapanese, "? 1 1 0 #ka", "ka", {1}, {0});
  // The starts stay where they were.
  ExpectGood(kEnglish, "? 2 10 0 3 #hYtY", "hAItAI", {1, 0}, {0, 4});
  ExpectGood(kJapanese, "? 2 11 0 3 #kata", "kata", {1, 1}, {0, 3});
  // Only the hash in the front counts.
  ExpectMalformed(kChinese, "? 1 1 0 #");
  ExpectMalformed(kEnglish, "? 1 1 0 #");
  ExpectMalformed(kEnglish, "? 2 11 0 2 #h");
}

TEST(PronunciationParser, WhatStandsBeforeTheFirstSyllableGoes) {
  ExpectGood(kEnglish, "? 1 1 1 hYt", "AIt", {1}, {0});
  ExpectGood(kEnglish, "? 2 10 2 3 hYtY", "tAI", {1, 0}, {0, 1});
  ExpectGood(kChinese, "? 1 1 1 b{", "uan", {1}, {0});
  ExpectGood(kJapanese, "? 1 1 1 ka", "ka", {1}, {1});
}

TEST(PronunciationParser, StartsAscendWithinThePronunciation) {
  ExpectMalformed(kEnglish, "? 1 1 -1 hi");
  ExpectMalformed(kEnglish, "? 2 11 1 0 hi");
  ExpectMalformed(kEnglish, "? 1 1 3 hi");
  ExpectMalformed(kEnglish, "? 1 1 99999999999 hi");
  ExpectMalformed(kJapanese, "? 2 11 0 5 kata");
  ExpectGood(kEnglish, "? 2 11 0 0 hi", "hi", {1, 1}, {0, 0});
  ExpectGood(kEnglish, "? 2 11 0 2 hi", "hi", {1, 1}, {0, 2});
  ExpectMalformed(kEnglish, "? 1 1 2 hi");             // every phoneme before the first syllable
  ExpectGood(kEnglish, "? 1 1 x hi", "hi", {1}, {0});  // no number reads 0
}

TEST(PronunciationParser, MarksAreOneCharacterASyllable) {
  ExpectGood(kEnglish, "? 2 x! 0 1 hi", "hi", {'x' - '0', '!' - '0'}, {0, 1});
  ExpectGood(kEnglish, "? 1 \xE4\xBD\xA0 0 hi", "hi", {0x4F60 - '0'}, {0});
  ExpectMalformed(kEnglish, "? 1 12 0 hi");
  ExpectMalformed(kEnglish, "? 2 1 0 1 hi");
  ExpectMalformed(kEnglish, "? 2000000000 1 0 1 hi");
  ExpectMalformed(kEnglish, "? 1");
}

TEST(PronunciationParser, NoSyllableCountIsOneSyllableInJapaneseOnly) {
  ExpectGood(kJapanese, "? 0 susi", "susi", {1}, {0});
  ExpectGood(kJapanese, "? x susi", "susi", {1}, {0});
  ExpectGood(kJapanese, "? -3 hoN", "hon", {1}, {0});
  ExpectMalformed(kEnglish, "? 0 hYt");
  ExpectMalformed(kChinese, "? 0 ma");
  ExpectMalformed(kEnglish, "? x 1 0 hYt");
  ExpectMalformed(kEnglish, "");
  ExpectMalformed(0, "? 0 susi");
}

TEST(PronunciationParser, NothingWhereThePronunciationShouldStand) {
  ExpectNothing(kEnglish, "? 1 1 0", PronunciationStatus::kEmpty);
  ExpectNothing(kEnglish, "? 1 1", PronunciationStatus::kEmpty);
  ExpectNothing(kEnglish, "? 2 11 0 hi", PronunciationStatus::kEmpty);  // "hi" reads as a start
  ExpectNothing(kEnglish, "? 1 1 -4", PronunciationStatus::kEmpty);
  ExpectNothing(kJapanese, "? 0", PronunciationStatus::kEmpty);
  ExpectNothing(kJapanese, "", PronunciationStatus::kEmpty);
}

TEST(PronunciationParser, ACharacterThatIsNotNarrowCountsAsOnePhonemeOfNoSet) {
  ExpectGood(kEnglish, "? 2 11 0 2 h\xC3\xA9t", "h?t", {1, 1}, {0, 2});
  EXPECT_EQ(PhonemeSetOf(kLanguageEnglish)->GetPhonemeIndex('?'), -1);
  EXPECT_EQ(PhonemeSetOf(kLanguageChinese)->GetPhonemeIndex('?'), -1);
  EXPECT_EQ(PhonemeSetOf(kLanguageJapanese)->GetPhonemeIndex('?'), -1);
}

TEST(PronunciationParser, WhatFollowsThePronunciationIsIgnored) {
  ExpectGood(kEnglish, "? 1 1 0 hi and more", "hi", {1}, {0});
  ExpectGood(kEnglish, "\t?\t1 1   0 hi\r", "hi", {1}, {0});
}

}  // namespace
}  // namespace veral3
