#include "text/SpokenNumbers.h"

#include <gtest/gtest.h>

#include <string>

#include "common/Unicode.h"
#include "text/Kana.h"

namespace veral3 {
namespace {

std::string Chinese(std::wstring_view text) {
  return Utf8FromWide(SpellNumbers(text, kLanguageChinese));
}

// The inline segments as "kana/label".
std::string Japanese(std::wstring_view text) {
  const std::string spelled = Utf8FromWide(SpellNumbers(text, kLanguageJapanese));
  std::string words;
  for (std::size_t at = 0; (at = spelled.find("|1 1 ? ", at)) != std::string::npos;) {
    at += 7;
    const std::size_t bar = spelled.find('|', at);
    const std::string pronunciation = spelled.substr(at, bar - at);
    const std::string phonemes = pronunciation.substr(pronunciation.rfind(' ') + 1);
    const std::size_t end = std::min(spelled.find(' ', bar), spelled.size());
    if (!words.empty()) words += " ";
    words += phonemes + "/" + spelled.substr(bar + 1, end - bar - 1);
    at = end;
  }
  return words;
}

TEST(ChineseNumbers, Whole) {
  EXPECT_EQ(Chinese(L"0"), "零");
  EXPECT_EQ(Chinese(L"10"), "十");
  EXPECT_EQ(Chinese(L"15"), "十五");
  EXPECT_EQ(Chinese(L"20"), "二十");
  EXPECT_EQ(Chinese(L"105"), "一百零五");
  EXPECT_EQ(Chinese(L"110"), "一百一十");
  EXPECT_EQ(Chinese(L"222"), "兩百二十二");
  EXPECT_EQ(Chinese(L"2000"), "兩千");
  EXPECT_EQ(Chinese(L"1,005"), "一千零五");
  EXPECT_EQ(Chinese(L"20000"), "兩萬");
  EXPECT_EQ(Chinese(L"120000"), "十二萬");
  EXPECT_EQ(Chinese(L"100,050"), "十萬零五十");
  EXPECT_EQ(Chinese(L"100000000"), "一億");
  EXPECT_EQ(Chinese(L"1000000001"), "十億零一");
}

TEST(ChineseNumbers, OfManyDigitsOrWithLeadingZeros) {
  EXPECT_EQ(Chinese(L"007"), "零零七");
  EXPECT_EQ(Chinese(L"0912"), "零九一二");
  EXPECT_EQ(Chinese(L"11111111111111111"), "一一一一一一一一一一一一一一一一一");
}

TEST(ChineseNumbers, FractionsSignsAndPercent) {
  EXPECT_EQ(Chinese(L"3.14"), "三點一四");
  EXPECT_EQ(Chinese(L"50%"), "百分之五十");
  EXPECT_EQ(Chinese(L"-5度"), "負五度");
  EXPECT_EQ(Chinese(L"2-3個"), "二-三個");
  EXPECT_EQ(Chinese(L"5."), "五.");
  EXPECT_EQ(Chinese(L"1,2"), "一,二");
}

TEST(ChineseNumbers, InContext) {
  EXPECT_EQ(Chinese(L"2026年"), "二零二六年");
  EXPECT_EQ(Chinese(L"2個人"), "兩個人");
  EXPECT_EQ(Chinese(L"2月2號"), "二月二號");
  EXPECT_EQ(Chinese(L"12個"), "十二個");
  EXPECT_EQ(Chinese(L"3:30"), "三點三十分");
}

TEST(JapaneseNumbers, Whole) {
  EXPECT_EQ(Japanese(L"0"), "zero/〇");
  EXPECT_EQ(Japanese(L"7"), "nana/七");
  EXPECT_EQ(Japanese(L"10"), "Zuu/十");
  EXPECT_EQ(Japanese(L"365"), "saMbjaku/三百 rokuZuu/六十 go/五");
  EXPECT_EQ(Japanese(L"8600"), "hasseN/八千 roppjaku/六百");
  EXPECT_EQ(Japanese(L"10000"), "iYimaN/一万");
  EXPECT_EQ(Japanese(L"120,000"), "Zuu/十 nimaN/二万");
  EXPECT_EQ(Japanese(L"10000000"), "isseMmaN/千万");
}

TEST(JapaneseNumbers, CountersChangeSounds) {
  EXPECT_EQ(Japanese(L"1本"), "ippoN/一本");
  EXPECT_EQ(Japanese(L"3本"), "saMboN/三本");
  EXPECT_EQ(Japanese(L"6本"), "roppoN/六本");
  EXPECT_EQ(Japanese(L"10本"), "ZuppoN/十本");
  EXPECT_EQ(Japanese(L"4分"), "joMpuN/四分");
  EXPECT_EQ(Japanese(L"5分"), "gofuN/五分");
  EXPECT_EQ(Japanese(L"8回"), "hakkai/八回");
  EXPECT_EQ(Japanese(L"6回"), "rokkai/六回");
  EXPECT_EQ(Japanese(L"1歳"), "issai/一歳");
  EXPECT_EQ(Japanese(L"6歳"), "rokusai/六歳");
  EXPECT_EQ(Japanese(L"9時"), "kuZi/九時");
  EXPECT_EQ(Japanese(L"7月"), "CiYigaXu/七月");
  EXPECT_EQ(Japanese(L"4年"), "joneN/四年");
  EXPECT_EQ(Japanese(L"2000円"), "niseNeN/二千円");
}

TEST(JapaneseNumbers, ReadingsOfTheirOwn) {
  EXPECT_EQ(Japanese(L"1日"), "XuitaYi/一日");
  EXPECT_EQ(Japanese(L"20日"), "haXuka/20日");
  EXPECT_EQ(Japanese(L"21日"), "niZuu/二十 iYiniYi/一日");
  EXPECT_EQ(Japanese(L"2人"), "futari/二人");
  EXPECT_EQ(Japanese(L"4人"), "joniN/四人");
  EXPECT_EQ(Japanese(L"3つ"), "mitXu/三つ");
  EXPECT_EQ(Japanese(L"20歳"), "hataYi/20歳");
}

TEST(JapaneseNumbers, FractionsPercentAndTime) {
  EXPECT_EQ(Japanese(L"3.1"), "saN/三 teN/点 iYi/一");
  EXPECT_EQ(Japanese(L"50%"), "goZuu/五十 paaseNto/パーセント");
  EXPECT_EQ(Japanese(L"-5"), "mainasu/マイナス go/五");
  EXPECT_EQ(Japanese(L"6:30"), "rokuZi/六時 saNZuppuN/三十分");
  EXPECT_EQ(Japanese(L"012"), "zero/〇 iYi/一 ni/二");
}

TEST(SpellNumbers, LeavesInlineSegmentsAndEnglishAlone) {
  const std::wstring inline_word = L"|1 1 ? 2 33 0 2 nihW|你好2 是";
  EXPECT_EQ(SpellNumbers(inline_word, kLanguageChinese), inline_word);
  EXPECT_EQ(SpellNumbers(L"3 apples", kLanguageEnglish), L"3 apples");
  EXPECT_EQ(SpellNumbers(L"", kLanguageChinese), L"");
}

}  // namespace
}  // namespace veral3
