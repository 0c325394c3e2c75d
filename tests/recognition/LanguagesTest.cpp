#include "recognition/Languages.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <set>
#include <string>

#include "recognition/CPhonemeSet.h"
#include "recognition/Dictionaries.h"
#include "recognition/ModelFit.h"
#include "recognition/Models.h"

namespace veral3 {
namespace {

using testing::ElementsAre;
using testing::IsNull;
using testing::NotNull;

constexpr LanguageType kNone = static_cast<LanguageType>(4);

TEST(Languages, NamesAndFilesOfEach) {
  const auto& rows = Languages();
  ASSERT_EQ(rows.size(), 3U);
  std::vector<std::string> told;
  for (const LanguageRow& row : rows) {
    told.push_back(std::string(row.code) + " " + row.name + " " + row.record_code + " " +
                   row.phoneme_tag + " " + row.dictionary + " " + row.frame_model.file + " " +
                   row.phoneme_model.file + " " + (row.tone_model ? row.tone_model->file : "-") +
                   " " + row.variety_name);
  }
  EXPECT_THAT(told, ElementsAre("en English EN EN_KEP5 KEN-UTF8Order.txt EnglishFrame.model "
                                "EnglishPhon.model - American English",
                                "zh Chinese ZH TW_KCP KCN-UTF8Order.txt ChineseFrame.model "
                                "ChinesePhon.model ChineseTone.model Mandarin as spoken in Taiwan",
                                "ja Japanese JP JP_KJP KJP-UTF8Order.txt JapaneseFrame.model "
                                "JapanesePhon.model - Tokyo Japanese"));
}

TEST(Languages, NumbersOfEach) {
  const auto& rows = Languages();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const int place = static_cast<int>(i);
    EXPECT_EQ(rows[i].language, place + 1);
    EXPECT_EQ(rows[i].variety, place + 1);
    EXPECT_EQ(rows[i].frame_model.type, place);
    EXPECT_EQ(rows[i].phoneme_model.type, place + 8);
    EXPECT_EQ(PlaceOf(rows[i]), i);
  }
  EXPECT_EQ(rows[0].phonemes->GetIdentifier(), 11);
  EXPECT_EQ(rows[1].phonemes->GetIdentifier(), 7);
  EXPECT_EQ(rows[2].phonemes->GetIdentifier(), 10);
  EXPECT_EQ(rows[1].tone_model->type, 3);
}

TEST(Languages, WhatTheirSyllablesAndTextsAreLike) {
  EXPECT_TRUE(HasStress(kLanguageEnglish));
  EXPECT_FALSE(HasStress(kLanguageChinese));
  EXPECT_FALSE(HasStress(kLanguageJapanese));
  EXPECT_FALSE(HasTones(kLanguageEnglish));
  EXPECT_TRUE(HasTones(kLanguageChinese));
  EXPECT_FALSE(HasTones(kLanguageJapanese));
  EXPECT_FALSE(LacksBlanks(kLanguageEnglish));
  EXPECT_TRUE(LacksBlanks(kLanguageChinese));
  EXPECT_TRUE(LacksBlanks(kLanguageJapanese));
  std::vector<std::string> scripts;
  for (const LanguageRow& row : Languages()) scripts.emplace_back(ReadingName(row.reading));
  EXPECT_THAT(scripts, ElementsAre("sounds", "pinyin", "kana"));
}

TEST(Languages, AreFoundByCodeAndNameInAnyCase) {
  for (const char* const english : {"en", "EN", "English", "ENGLISH", "english"}) {
    ASSERT_THAT(FindLanguage(english), NotNull()) << english;
    EXPECT_EQ(FindLanguage(english)->language, kLanguageEnglish);
  }
  EXPECT_EQ(FindLanguage("zh")->language, kLanguageChinese);
  EXPECT_EQ(FindLanguage("Japanese")->language, kLanguageJapanese);
  EXPECT_EQ(LanguageCodes(", "), "en, zh, ja");
  EXPECT_EQ(LanguageCodes("|"), "en|zh|ja");
}

TEST(Languages, WhatNamesNoneIsNobodysGuess) {
  for (const char* const other : {"ko", "", "e", "eng", "en ", "1", "EN_KEP5", "zh-TW"}) {
    EXPECT_THAT(FindLanguage(other), IsNull()) << other;
  }
  for (const int number : {-1, 0, 4, 100}) {
    const auto language = static_cast<LanguageType>(number);
    EXPECT_THAT(FindLanguage(language), IsNull()) << number;
    EXPECT_EQ(LanguageCode(language), "");
    EXPECT_EQ(LanguageName(language), "");
    EXPECT_FALSE(HasTones(language));
    EXPECT_FALSE(HasStress(language));
    EXPECT_FALSE(LacksBlanks(language));
  }
  EXPECT_THAT(FindLanguageOfPhonemeSet(0), IsNull());
  EXPECT_THAT(FindLanguageOfTag("TW"), IsNull());
  EXPECT_THAT(PhonemeSetOf(kNone), IsNull());
  EXPECT_THAT(DictionaryOf(kNone), IsNull());
  EXPECT_THAT(FrameClassifierOf(0), IsNull());
  EXPECT_THAT(PhonClassifierOf(8), IsNull());
}

TEST(Languages, PhonemeSetsAreFoundByLanguageIdentifierAndTag) {
  for (const LanguageRow& row : Languages()) {
    EXPECT_EQ(PhonemeSetOf(row.language), row.phonemes);
    EXPECT_EQ(FindLanguageOfPhonemeSet(row.phonemes->GetIdentifier()), &row);
    EXPECT_EQ(FindLanguageOfTag(row.phoneme_tag), &row);
  }
}

// Two rows that shared one of these would be taken for each other.
TEST(Languages, NoTwoShareWhatTellsThemApart) {
  std::set<std::string> texts;
  std::set<int> numbers;
  std::size_t count = 0;
  for (const LanguageRow& row : Languages()) {
    for (const char* const text : {row.code, row.name, row.record_code, row.phoneme_tag,
                                   row.dictionary, row.frame_model.file, row.phoneme_model.file}) {
      texts.insert(text);
      ++count;
    }
    numbers.insert({row.frame_model.type, row.phoneme_model.type});
  }
  EXPECT_EQ(texts.size(), count);
  EXPECT_EQ(numbers.size(), 2 * kNumLanguages);
  std::set<std::pair<int, int>> shapes;
  for (const ModelNeeds& needs : AllModelNeeds()) shapes.insert({needs.inputs, needs.outputs});
  EXPECT_EQ(shapes.size(), AllModelNeeds().size());
}

TEST(Languages, EveryTypeOfModelIsOneOfTheirs) {
  std::vector<std::string> names;
  for (const ModelNeeds& needs : AllModelNeeds()) {
    names.push_back(std::to_string(needs.type) + " " + NameOf(needs));
    EXPECT_EQ(NeedsOf(needs.type), &needs);
  }
  EXPECT_THAT(names, ElementsAre("0 English frame model", "1 Chinese frame model",
                                 "2 Japanese frame model", "3 Chinese tone model",
                                 "4 utterance goodness model", "8 English phoneme model",
                                 "9 Chinese phoneme model", "10 Japanese phoneme model"));
  for (const int other : {-1, 5, 6, 7, 11}) {
    EXPECT_THAT(NeedsOf(static_cast<ModelFileType>(other)), IsNull()) << other;
  }
}

TEST(Languages, TheirFilesAreThoseOfTheResources) {
  const std::filesystem::path folder = std::filesystem::path(VERAL3_SOURCE_DIR) / "resources";
  for (const LanguageRow& row : Languages()) {
    for (const char* const file : {row.dictionary, row.frame_model.file, row.phoneme_model.file}) {
      EXPECT_TRUE(std::filesystem::exists(folder / file)) << file;
    }
    if (row.tone_model) {
      EXPECT_TRUE(std::filesystem::exists(folder / row.tone_model->file));
    }
  }
}

std::string OutputOf(const std::string& command) {
  std::string text;
  std::FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return "cannot run " + command;
  char buffer[256];
  while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) text += buffer;
  return pclose(pipe) == 0 ? text : "failed";
}

// The training scripts' view of the table.
TEST(Languages, ScriptsReadTheSameTable) {
  std::string wanted;
  for (const LanguageRow& row : Languages()) {
    const std::string line = std::string(row.code) + " " + std::to_string(row.language) + " " +
                             row.name + " " + row.dictionary + " " + row.frame_model.file + " " +
                             row.phoneme_model.file + "\n";
    EXPECT_EQ(OutputOf(VERAL3_SOURCE_DIR "/training/languages " + std::string(row.code)), line);
    wanted += line;
  }
  EXPECT_EQ(OutputOf(VERAL3_SOURCE_DIR "/training/languages"), wanted);
  EXPECT_EQ(OutputOf(VERAL3_SOURCE_DIR "/training/languages ko 2>/dev/null"), "failed");
}

}  // namespace
}  // namespace veral3
