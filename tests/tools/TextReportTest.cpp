// `veral3 check-text` with the resources of the source tree.
#include "tools/TextReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "JsonSchema.h"
#include "Process.h"
#include "support/Vectors.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

const std::filesystem::path kSource = VERAL3_SOURCE_DIR;

test::ProcessResult CheckText(const std::string& language, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"check-text", "--lang", language});
  return test::RunVeral3(arguments);
}

json CheckTextJson(const std::string& language, const std::string& text, int status = 0) {
  const test::ProcessResult result = CheckText(language, {"--format", "json", text});
  EXPECT_EQ(result.status, status) << result.err;
  const json schema =
      json::parse(veral3::test::ReadFile(kSource / "docs/formats/check-text.schema.json"));
  json value = json::parse(result.out);
  EXPECT_EQ(test::SchemaError(value, schema), "");
  return value;
}

void Append(std::string& list, const std::string& item) {
  if (!list.empty()) list += ' ';
  list += item;
}

std::string Words(const json& report) {
  std::string words;
  for (const json& word : report["words"]) Append(words, word["text"]);
  return words;
}

std::string Readings(const json& report) {
  std::string readings;
  for (const json& word : report["words"]) {
    Append(readings, word["pronunciations"].empty() ? "?" : word["pronunciations"][0]["reading"]);
  }
  return readings;
}

TEST(CheckTextCommand, ChineseIsCutAndReadInPinyin) {
  const json report = CheckTextJson("zh", "研究生命的起源");
  EXPECT_EQ(Words(report), "研究 生命 的 起源");
  EXPECT_EQ(Readings(report), "yán jiù shēng mìng de qǐ yuán");
  EXPECT_EQ(report["words"][0]["pronunciations"][0]["syllables"][1],
            (json{{"phonemes", "jiou"}, {"mark", 4}}));
}

TEST(CheckTextCommand, JapaneseIsCutAndReadInKana) {
  const json report = CheckTextJson("ja", "今日はいい天気ですね");
  EXPECT_EQ(Words(report), "今日 は いい 天気 です ね");
  EXPECT_EQ(Readings(report), "きょー わ いー てんき です ね");
}

TEST(CheckTextCommand, NumbersAreSpelled) {
  EXPECT_EQ(Words(CheckTextJson("zh", "我有2,500元")), "我有 兩千 五百元");
  EXPECT_EQ(Words(CheckTextJson("ja", "3本と20日")), "三本 と 20日");
  EXPECT_EQ(Words(CheckTextJson("en", "I have 105")), "I HAVE ONE HUNDRED AND FIVE");
}

TEST(CheckTextCommand, WhatIsMissingIsNamedWithTheRemedy) {
  const json report = CheckTextJson("zh", "我愛㑇㑇", 1);
  EXPECT_EQ(report["missing"], json::array({"㑇㑇"}));
  EXPECT_EQ(report["words"].back()["known"], false);
  const test::ProcessResult table = CheckText("zh", {"我愛㑇㑇"});
  EXPECT_EQ(table.status, 1);
  EXPECT_THAT(table.out, HasSubstr("not in the dictionary"));
  EXPECT_THAT(table.err, HasSubstr("㑇㑇"));
  EXPECT_THAT(table.err, HasSubstr("--reading \"ni3 hao3\""));
}

TEST(CheckTextCommand, ReadingGivesTheInlinePronunciation) {
  const test::ProcessResult chinese = CheckText("zh", {"--reading", "le4 se4", "垃圾"});
  EXPECT_EQ(chinese.status, 0);
  EXPECT_EQ(chinese.out, "|1 1 ? 2 44 0 2 l@s@|垃圾\n");
  const test::ProcessResult japanese = CheckText("ja", {"--reading", "さくら", "桜"});
  EXPECT_EQ(japanese.out, "|1 1 ? 3 111 0 2 4 sakura|桜\n");
  // What it prints is what the engine takes.
  EXPECT_EQ(Words(CheckTextJson("zh", "我 |1 1 ? 2 44 0 2 l@s@|㑇㑇")), "我 㑇㑇");
  EXPECT_EQ(CheckText("zh", {"--reading", "xyz1", "垃圾"}).status, 2);
  EXPECT_EQ(CheckText("en", {"--reading", "a", "b"}).status, 2);
}

TEST(CheckTextCommand, AReadingHasASyllableForEachChineseCharacter) {
  const test::ProcessResult fewer = CheckText("zh", {"--reading", "ni3", "你好"});
  EXPECT_EQ(fewer.status, 2);
  EXPECT_EQ(fewer.out, "");
  EXPECT_EQ(fewer.err, "veral3: \"你好\" has 2 characters, the reading 1 syllable\n");
  const test::ProcessResult more = CheckText("zh", {"--reading", "ni3 hao3", "您好", "好"});
  EXPECT_EQ(more.status, 2);
  EXPECT_EQ(more.out, "");  // not of the first one either
  EXPECT_EQ(more.err, "veral3: \"好\" has 1 character, the reading 2 syllables\n");
  // How Latin letters are read is nobody's to say.
  EXPECT_EQ(CheckText("zh", {"--reading", "ti4 xu4", "T恤"}).status, 0);
  EXPECT_EQ(CheckText("zh", {"--reading", "xu4", "T恤"}).status, 2);
  EXPECT_EQ(CheckText("zh", {"--reading", "ou1 kei1", "OK"}).status, 0);
  EXPECT_EQ(CheckText("ja", {"--reading", "きょう", "今日"}).status, 0);
  // What would be two words, or another segment.
  EXPECT_EQ(CheckText("zh", {"--reading", "ni3 hao3", "你 好"}).status, 2);
  EXPECT_EQ(CheckText("zh", {"--reading", "ni3 hao3", "|你好"}).status, 2);
}

TEST(CheckTextCommand, ALengthMarkIsReadWithItsKana) {
  EXPECT_EQ(Readings(CheckTextJson("ja", "らーめん")), "らー めん");
  EXPECT_EQ(Readings(CheckTextJson("ja", "すごーい")), "す ごー い");
  EXPECT_EQ(Readings(CheckTextJson("ja", "食べるー")), "たべ るー");
  EXPECT_EQ(CheckTextJson("ja", "んー", 1)["missing"], json::array({"んー"}));
}

TEST(CheckTextCommand, ASignBetweenNumbersIsNamed) {
  for (const char* language : {"en", "zh", "ja"}) {
    const test::ProcessResult result = CheckText(language, {"--text", "1/2"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "veral3: not read, write in words what is spoken: /\n");
  }
  EXPECT_EQ(CheckTextJson("en", "1/2")["unread_symbols"], json::array({"/"}));
}

TEST(TextTable, ColumnsStandWhereATerminalPutsThem) {
  TextReport report;
  report.words = {{"e\xCC\x81", true, {{{{"x", 1}}, "r"}}}, {"\xF0\xA0\x80\x80", false, {}}};
  EXPECT_EQ(TextTable(report, kLanguageEnglish),
            "word  sounds                 syllables  stress\n"
            "e\xCC\x81     r                      x          1\n"
            "\xF0\xA0\x80\x80    not in the dictionary\n");
}

TEST(CheckTextCommand, WrongUsage) {
  EXPECT_EQ(CheckText("zh", {}).status, 2);
  EXPECT_EQ(CheckText("zh", {"\xFF"}).status, 2);
  EXPECT_EQ(CheckText("zh", {"--text-file", "/nonexistent"}).status, 2);
  EXPECT_EQ(CheckText("zh", {"--resources", "/nonexistent", "你好"}).status, 2);
  EXPECT_EQ(CheckText("zh", {"，。"}).status, 1);
}

class PhraseLists : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(PhraseLists, AreKnownThroughout) {
  const auto [language, name] = GetParam();
  const test::ProcessResult result =
      CheckText(language, {"--format", "json", "--text-file",
                           (kSource / "examples/phrases" / (std::string(name) + ".txt")).string()});
  EXPECT_EQ(result.status, 0) << result.err;
  for (const json& report : json::parse(result.out)) {
    EXPECT_TRUE(report["missing"].empty()) << report["text"] << report["missing"];
    EXPECT_TRUE(report["unread_symbols"].empty()) << report["text"];
    for (const json& word : report["words"]) {
      EXPECT_FALSE(word["pronunciations"].empty()) << word;
      for (const json& pronunciation : word["pronunciations"]) {
        EXPECT_EQ(pronunciation["reading"].get<std::string>().find('?'), std::string::npos)
            << pronunciation;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, PhraseLists,
                         testing::Values(std::pair("en", "english"), std::pair("zh", "chinese"),
                                         std::pair("ja", "japanese")));

}  // namespace
}  // namespace veral3::tools
