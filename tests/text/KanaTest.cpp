#include "text/Kana.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/Unicode.h"
#include "recognition/DictionaryFile.h"

namespace veral3 {
namespace {

using testing::ElementsAre;

Reading Read(std::wstring_view kana) {
  const auto reading = ReadKana(kana);
  EXPECT_TRUE(reading.has_value());
  return reading.value_or(Reading{});
}

TEST(ReadKana, SyllablesTakeLengthClosureAndMoraicN) {
  const Reading school = Read(L"がっこう");
  EXPECT_EQ(school.phonemes, "gakkoo");
  EXPECT_THAT(school.starts, ElementsAre(0, 3));
  EXPECT_EQ(school.marks, "11");
  const Reading tokyo = Read(L"トーキョー");
  EXPECT_EQ(tokyo.phonemes, "tookjoo");
  EXPECT_THAT(tokyo.starts, ElementsAre(0, 3));
  const Reading japan = Read(L"にっぽん");
  EXPECT_EQ(japan.phonemes, "nippoN");
  EXPECT_THAT(japan.starts, ElementsAre(0, 3));
}

TEST(ReadKana, MoraicNBeforeLipsIsM) {
  EXPECT_EQ(Read(L"さんぽ").phonemes, "saMpo");
  EXPECT_EQ(Read(L"さんま").phonemes, "saMma");
  EXPECT_EQ(Read(L"さんか").phonemes, "saNka");
}

TEST(ReadKana, MoraicNFirstIsASyllable) {
  const Reading reading = Read(L"んまい");
  EXPECT_EQ(reading.phonemes, "Mmai");
  EXPECT_THAT(reading.starts, ElementsAre(0, 1, 3));
}

TEST(ReadKana, ClosuresBeforeAffricates) {
  EXPECT_EQ(Read(L"みっつ").phonemes, "mitXu");
  EXPECT_EQ(Read(L"まっち").phonemes, "matYi");
  EXPECT_EQ(Read(L"ばっじ").phonemes, "badZi");
  EXPECT_EQ(Read(L"ざっし").phonemes, "zaCCi");
  // At the edges of a word a small tsu is silent.
  EXPECT_EQ(Read(L"あっ").phonemes, "a");
  EXPECT_EQ(Read(L"って").phonemes, "te");
}

TEST(ReadKana, WhatCannotBeRead) {
  EXPECT_FALSE(ReadKana(L"").has_value());
  EXPECT_FALSE(ReadKana(L"ー").has_value());
  EXPECT_FALSE(ReadKana(L"っ").has_value());
  EXPECT_FALSE(ReadKana(L"んー").has_value());
  EXPECT_FALSE(ReadKana(L"漢字").has_value());
  EXPECT_FALSE(ReadKana(L"kana").has_value());
}

TEST(IsKana, HiraganaKatakanaAndTheLengthMark) {
  EXPECT_TRUE(IsKana(L"スマホ"));
  EXPECT_TRUE(IsKana(L"らーめん"));
  EXPECT_FALSE(IsKana(L"食べる"));
  EXPECT_FALSE(IsKana(L""));
}

TEST(KanaOfPhonemes, GivesBackWhatWasRead) {
  // Expanded: both moraic n are "n".
  EXPECT_EQ(KanaOfPhonemes("gakkoo", {0, 3}), "がっこー");
  EXPECT_EQ(KanaOfPhonemes("kinen", {0, 2}), "きねん");
  EXPECT_EQ(KanaOfPhonemes("kinen", {0, 3}), "きんえん");
  EXPECT_EQ(KanaOfPhonemes("sanbon", {0, 3}), "さんぼん");
  EXPECT_EQ(KanaOfPhonemes("mitXu", {0, 3}), "みっつ");
  EXPECT_EQ(KanaOfPhonemes("des", {0, 2}), "で(す)");
}

TEST(InlinePronunciation, IsWhatTheEngineParses) {
  EXPECT_EQ(InlinePronunciation(Read(L"さくら"), L"桜"), L"|1 1 ? 3 111 0 2 4 sakura|桜");
}

// Every word in kana of the shipped dictionary is read as one of its pronunciations, save those
// whose spelling does not follow their sound (particles, verbs in -ou); and what its pronunciation
// is written as reads back to it.
TEST(ReadKana, AgreesWithTheDictionary) {
  const DictionaryFile file = ReadDictionaryFile(VERAL3_SOURCE_DIR "/resources/KJP-UTF8Order.txt");
  std::size_t kana_words = 0;
  std::size_t agreed = 0;
  for (std::size_t i = 0; i < file.words.size(); ++i) {
    const std::wstring word = WideFromUtf8(file.Word(i));
    if (!IsKana(word)) continue;
    const auto reading = ReadKana(word);
    if (!reading) continue;
    ++kana_words;
    std::string expanded = reading->phonemes;
    for (char& c : expanded) {
      if (c == 'N' || c == 'M') c = 'n';
    }
    for (const auto& variant : ParseVariants(file, i)) {
      if (variant.phonemes == expanded) {
        ++agreed;
        break;
      }
    }
  }
  EXPECT_GT(kana_words, 20000u);
  EXPECT_GT(static_cast<double>(agreed), 0.97 * static_cast<double>(kana_words));
}

}  // namespace
}  // namespace veral3
