#include "text/Segmentation.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "common/Unicode.h"

namespace veral3 {
namespace {

WordCost Costs(std::map<std::wstring, int, std::less<>> costs) {
  return [costs = std::move(costs)](std::wstring_view word) -> std::optional<int> {
    const auto found = costs.find(word);
    if (found == costs.end()) return std::nullopt;
    return found->second;
  };
}

std::string Cut(std::wstring_view text, const WordCost& cost,
                LanguageType language = kLanguageChinese) {
  return Utf8FromWide(SegmentText(text, language, cost));
}

const WordCost kLife = Costs({{L"研究", 58},
                              {L"研究生", 81},
                              {L"生命", 60},
                              {L"命", 90},
                              {L"的", 20},
                              {L"起源", 90},
                              {L"生", 70}});

TEST(SegmentText, TakesTheLikeliestCutNotTheLongestWord) {
  EXPECT_EQ(Cut(L"研究生命的起源", kLife), "研究 生命 的 起源");
}

TEST(SegmentText, BlanksAndPunctuationPart) {
  EXPECT_EQ(Cut(L"研究 生命，的起源。", kLife), "研究 生命，的 起源。");
  // What the writer parted off as a word is one.
  EXPECT_EQ(Cut(L"研究生 命", kLife), "研究生 命");
}

TEST(SegmentText, AWordMoreCosts30) {
  const auto costs = [](int whole) {
    return Costs({{L"甲乙", whole}, {L"甲", 50}, {L"乙", 50}, {L"丙", 10}});
  };
  EXPECT_EQ(Cut(L"甲乙丙", costs(129)), "甲乙 丙");
  EXPECT_EQ(Cut(L"甲乙丙", costs(130)), "甲乙 丙");  // equal: the longer word first
  EXPECT_EQ(Cut(L"甲乙丙", costs(131)), "甲 乙 丙");
}

TEST(SegmentText, UnknownCharactersStayTogether) {
  EXPECT_EQ(Cut(L"研究龘龘的", kLife), "研究 龘龘 的");
  EXPECT_EQ(Cut(L"研究OK的", kLife), "研究 OK 的");
  EXPECT_EQ(Cut(L"龘", kLife), "龘");
}

TEST(SegmentText, UnknownKanaBecomeInlinePronunciations) {
  const WordCost cost = Costs({{L"で", 20}, {L"見る", 60}});
  EXPECT_EQ(Cut(L"スマホで見る", cost, kLanguageJapanese),
            "|1 1 ? 3 111 0 2 4 sumaho|スマホ で 見る");
  EXPECT_EQ(Cut(L"スマホ", cost), "スマホ");  // in Chinese they say nothing
}

// A length mark, a small kana and a small tsu say nothing on their own, whatever words the
// characters before them make.
TEST(SegmentText, KanaThatGoOnStayWithTheirOwn) {
  const WordCost cost = Costs({{L"ら", 20},
                               {L"めん", 60},
                               {L"麺", 60},
                               {L"メ", 10},
                               {L"タ", 10},
                               {L"って", 10},
                               {L"フ", 10}});
  EXPECT_EQ(Cut(L"らーめん", cost, kLanguageJapanese), "|1 1 ? 1 1 0 raa|らー めん");
  EXPECT_EQ(Cut(L"メー", cost, kLanguageJapanese), "|1 1 ? 1 1 0 mee|メー");
  EXPECT_EQ(Cut(L"めんー", cost, kLanguageJapanese), "めんー");  // none to lengthen: a missing word
  EXPECT_EQ(Cut(L"フォメ", cost, kLanguageJapanese), "|1 1 ? 1 1 0 fo|フォ メ");
  EXPECT_EQ(Cut(L"メッタ", cost, kLanguageJapanese), "|1 1 ? 2 11 0 3 metta|メッタ");
  // A word of the dictionary may begin with one.
  EXPECT_EQ(Cut(L"麺って", cost, kLanguageJapanese), "麺 って");
  EXPECT_EQ(Cut(L"ー", cost, kLanguageJapanese), "ー");
  // Behind a letter they have none of their own.
  EXPECT_EQ(Cut(L"uゃne", cost, kLanguageJapanese), "uゃne");
  EXPECT_EQ(Cut(L"メuー", cost, kLanguageJapanese), "メ uー");
}

TEST(SegmentText, InlineSegmentsStay) {
  EXPECT_EQ(Cut(L"研究|1 1 ? 2 44 0 2 l@s@|垃圾 生命的", kLife),
            "研究|1 1 ? 2 44 0 2 l@s@|垃圾 生命 的");
  EXPECT_EQ(Cut(L"|1 1 ? 1 1 0", kLife), "|1 1 ? 1 1 0");
}

TEST(SegmentText, EnglishStays) {
  EXPECT_EQ(SegmentText(L"well known", kLanguageEnglish, kLife), L"well known");
}

TEST(SegmentText, LongTextWithoutBlanks) {
  std::wstring text;
  for (int i = 0; i < 20000; ++i) text += L"研究";
  const std::wstring cut = SegmentText(text, kLanguageChinese, kLife);
  EXPECT_EQ(cut.size(), text.size() + 19999);
}

}  // namespace
}  // namespace veral3
