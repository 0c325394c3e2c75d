#include "text/Pinyin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "recognition/DictionaryFile.h"

namespace veral3 {
namespace {

using testing::ElementsAre;

TEST(ReadPinyin, SyllablesWithTones) {
  const auto rubbish = ReadPinyin("le4 se4");
  ASSERT_TRUE(rubbish.has_value());
  EXPECT_EQ(rubbish->phonemes, "l@s@");
  EXPECT_EQ(rubbish->marks, "44");
  EXPECT_THAT(rubbish->starts, ElementsAre(0, 2));
  EXPECT_EQ(InlinePronunciation(*rubbish, L"垃圾"), L"|1 1 ? 2 44 0 2 l@s@|垃圾");
}

TEST(ReadPinyin, SpellingsOfTheFrontVowel) {
  for (const char* woman : {"nv3", "nu:3", "nü3", "NÜ3"}) {
    const auto reading = ReadPinyin(woman);
    ASSERT_TRUE(reading.has_value()) << woman;
    EXPECT_EQ(reading->phonemes, "nU") << woman;
  }
  EXPECT_EQ(ReadPinyin("lue4")->phonemes, "lF");
  EXPECT_EQ(ReadPinyin("jun1")->phonemes, "jUn");
  EXPECT_EQ(ReadPinyin("zhun3")->phonemes, "ZJ");
  EXPECT_EQ(ReadPinyin("xue2")->phonemes, "xF");
}

TEST(ReadPinyin, ApicalVowelsAndNeutralTone) {
  EXPECT_EQ(ReadPinyin("shi4")->phonemes, "S)");
  EXPECT_EQ(ReadPinyin("si4")->phonemes, "s(");
  EXPECT_EQ(ReadPinyin("ma")->marks, "5");
}

TEST(ReadPinyin, WhatIsNoSyllable) {
  for (const char* text : {"", " ", "xyz1", "ma6", "ma0", "4", "hello", "ng2", "马"}) {
    EXPECT_FALSE(ReadPinyin(text).has_value()) << text;
  }
}

TEST(PinyinOfPhonemes, MarksTheVowel) {
  EXPECT_EQ(PinyinOfPhonemes("hau", 3), "hǎo");
  EXPECT_EQ(PinyinOfPhonemes("M", 2), "?");
  EXPECT_EQ(PinyinOfPhonemes("jiou", 3), "jiǔ");
  EXPECT_EQ(PinyinOfPhonemes("lU", 4), "lǜ");
  EXPECT_EQ(PinyinOfPhonemes("su@i", 4), "suì");
  EXPECT_EQ(PinyinOfPhonemes("Zou", 1), "zhōu");
  EXPECT_EQ(PinyinOfPhonemes("d@", 5), "de");
  EXPECT_EQ(PinyinOfPhonemes("", 1), "?");
}

// Every syllable of the shipped dictionary has a spelling, and the spelling reads back to it.
TEST(PinyinOfPhonemes, CoversTheDictionary) {
  const DictionaryFile file = ReadDictionaryFile(VERAL3_SOURCE_DIR "/resources/KCN-UTF8Order.txt");
  std::set<std::string> syllables;
  for (std::size_t i = 0; i < file.words.size(); ++i) {
    for (const auto& variant : ParseVariants(file, i)) {
      for (std::size_t s = 0; s < variant.syllable_starts.size(); ++s) {
        const auto begin = static_cast<std::size_t>(variant.syllable_starts[s]);
        const std::size_t end = s + 1 < variant.syllable_starts.size()
                                    ? static_cast<std::size_t>(variant.syllable_starts[s + 1])
                                    : variant.phonemes.size();
        syllables.insert(variant.phonemes.substr(begin, end - begin));
      }
    }
  }
  EXPECT_GE(syllables.size(), 400u);
  for (const std::string& syllable : syllables) {
    const std::string pinyin = PinyinOfPhonemes(syllable, 5);
    ASSERT_NE(pinyin, "?") << syllable;
    const auto reading = ReadPinyin(pinyin);
    ASSERT_TRUE(reading.has_value()) << pinyin;
    OwnedWordEntry::Variant variant;
    const std::string line = "? 1 5 0 " + reading->phonemes;
    ASSERT_EQ(ReadAPronunEntry(file.phoneme_set, line, variant), 0) << line;
    EXPECT_EQ(variant.phonemes, syllable) << pinyin;
  }
}

}  // namespace
}  // namespace veral3
