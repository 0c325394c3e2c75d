#include "text/TextPreparation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "common/Unicode.h"

namespace veral3 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string Prepare(std::wstring_view text, LanguageType language = kLanguageEnglish) {
  return PrepareText(Utf8FromWide(text), language);
}

HasWord Dictionary(std::set<std::wstring> words) {
  return [words = std::move(words)](std::wstring_view word) {
    std::wstring upper(word);
    std::ranges::transform(upper, upper.begin(), UpperCase);
    return words.contains(upper);
  };
}

TEST(PrepareText, PlainTextStays) {
  EXPECT_EQ(Prepare(L"It's 3,500.25, isn't it?"), "It's 3,500.25, isn't it?");
  EXPECT_EQ(Prepare(L""), "");
}

TEST(PrepareText, WidthBecomesUsual) {
  EXPECT_EQ(Prepare(L"\uFF27\uFF4F\u3000\uFF14\uFF12\uFF01"), "Go 42!");
  // Halfwidth ga-ki-i with a voicing mark, and the length mark.
  EXPECT_EQ(Prepare(L"\uFF76\uFF9E\uFF77\uFF70", kLanguageJapanese),
            Utf8FromWide(L"\u30AC\u30AD\u30FC"));
}

TEST(PrepareText, ApostrophesAreStraightInEnglish) {
  EXPECT_EQ(Prepare(L"don\u2019t rock\u2018n\u2019roll it\u02BCs o\uFF07clock"),
            "don't rock'n'roll it's o'clock");
  // In Chinese they are quotation marks.
  EXPECT_EQ(Prepare(L"\u4ED6\u8BF4\u2018\u597D\u2019", kLanguageChinese),
            Utf8FromWide(L"\u4ED6\u8BF4 \u597D"));
}

TEST(PrepareText, QuotesDashesAndSignsPartWords) {
  EXPECT_EQ(Prepare(L"\u201CYes\u201D\u2014he said\u2026 \u00ABno\u00BB \u2022 ok"),
            "Yes he said no ok");
  EXPECT_EQ(Prepare(L"well\u2013known well\u2010known"), "well known well known");
  EXPECT_EQ(Prepare(L"good \U0001F600 day"), "good day");
}

TEST(PrepareText, BlanksOfEveryKindBecomeOne) {
  EXPECT_EQ(Prepare(L" a\u00A0b\u202Fc\u2007d\u200Be\tf\r\ng\u2028h \u3000 i\u0085"),
            "a b c d e f g h i");
  EXPECT_EQ(Prepare(L"a \u036F b \u036F"), "a b");  // marks that are taken off part nothing
}

TEST(PrepareText, InvisibleCharactersGo) {
  EXPECT_EQ(Prepare(L"\uFEFFco\u00ADop\u200D\u2060er\uFE0Fate"), "cooperate");
}

TEST(PrepareText, AccentsGoInEnglishAndAreComposedElsewhere) {
  EXPECT_EQ(Prepare(L"caf\u00E9 nai\u0308ve"), "cafe naive");
  EXPECT_EQ(Prepare(L"\u304B\u3099", kLanguageJapanese), Utf8FromWide(L"\u304C"));
}

TEST(PrepareText, InlineSegmentsPassThrough) {
  const std::string text = "say |1 1 ? 2 01 0 2 h@lo|hello and |3 12 |";
  EXPECT_EQ(PrepareText(text, kLanguageEnglish), text);
  // A fullwidth bar is no segment.
  EXPECT_EQ(Prepare(L"a \uFF5C b"), "a b");
}

TEST(PrepareText, BadBytesDoNoHarm) {
  EXPECT_EQ(PrepareText("a \xFF\xC3 b", kLanguageEnglish), "a b");
}

TEST(CheckSentence, NamesEachMissingWordOnce) {
  const auto check = CheckSentence("the Blorf, the blip and the Blorf", kLanguageEnglish,
                                   Dictionary({L"THE", L"AND"}));
  EXPECT_THAT(check.missing_words, ElementsAre("Blorf", "blip"));
  EXPECT_EQ(check.num_words, 4);
}

TEST(CheckSentence, WordsAreTheEngines) {
  const auto check = CheckSentence("don't, students' well-known", kLanguageEnglish,
                                   Dictionary({L"DON'T", L"STUDENTS", L"WELL", L"KNOWN"}));
  EXPECT_THAT(check.missing_words, IsEmpty());
  EXPECT_EQ(check.num_words, 4);
}

TEST(CheckSentence, NumbersAreReadInEnglishOnly) {
  const auto english =
      CheckSentence("3,500.25 1234567890123456 00", kLanguageEnglish, Dictionary({}));
  EXPECT_EQ(english.num_words, 1);
  EXPECT_THAT(english.unread_numbers, ElementsAre("1234567890123456", "00"));
  EXPECT_THAT(english.missing_words, IsEmpty());
  const auto japanese = CheckSentence("12 3", kLanguageJapanese, Dictionary({}));
  EXPECT_EQ(japanese.num_words, 0);
  EXPECT_THAT(japanese.unread_numbers, ElementsAre("12", "3"));
}

TEST(CheckSentence, InlinePronunciationsAreNotLookedUp) {
  const auto check =
      CheckSentence("go |1 1 ? 1 1 0 hYt|hyte now", kLanguageEnglish, Dictionary({L"GO"}));
  EXPECT_EQ(check.num_words, 2);
  EXPECT_THAT(check.missing_words, ElementsAre("now"));
}

TEST(CheckSentence, ChineseWordsArePartedByBlanksAndPunctuation) {
  const auto check = CheckSentence(Utf8FromWide(L"\u4F60\u597D\uFF0C \u4E16\u754C\u3002"),
                                   kLanguageChinese, Dictionary({L"\u4F60\u597D"}));
  EXPECT_EQ(check.num_words, 1);
  EXPECT_THAT(check.missing_words, ElementsAre(Utf8FromWide(L"\u4E16\u754C")));
}

TEST(UnreadSymbols, AreTheSpokenOnes) {
  EXPECT_THAT(UnreadSymbols(Utf8FromWide(L"50% & \u20AC5 (a) 5\uFF05 100%!"), kLanguageEnglish),
              ElementsAre("%", "&", Utf8FromWide(L"\u20AC")));
  EXPECT_THAT(UnreadSymbols("50% & %", kLanguageChinese), ElementsAre("&", "%"));
  EXPECT_THAT(UnreadSymbols("|1 1 ? 1 1 0 h@t|hut", kLanguageEnglish), IsEmpty());
}

TEST(UnreadSymbols, TheWordOfAnInlinePronunciationIsSaidByIt) {
  EXPECT_THAT(UnreadSymbols("|1 1 ? 3 100 0 2 3 {tO|AT&T & |1 1 ? 1 1 0 {t|@", kLanguageEnglish),
              ElementsAre("&"));
  EXPECT_THAT(UnreadSymbols("|3 12 |% $", kLanguageEnglish), ElementsAre("%", "$"));
}

TEST(UnreadSymbols, SignsBetweenNumbersAreSpoken) {
  EXPECT_THAT(UnreadSymbols("1/2", kLanguageEnglish), ElementsAre("/"));
  EXPECT_THAT(UnreadSymbols(Utf8FromWide(L"\uFF11\uFF0F\uFF12"), kLanguageJapanese),
              ElementsAre("/"));
  EXPECT_THAT(UnreadSymbols(Utf8FromWide(L"3 \u00D7 4 ~ 5"), kLanguageChinese),
              ElementsAre(Utf8FromWide(L"\u00D7"), "~"));
  EXPECT_THAT(UnreadSymbols("and/or 1/ /2 a/2 8:30", kLanguageEnglish), IsEmpty());
}

TEST(InlinePronunciationHelp, HasTheWordAndAnExampleOfTheLanguage) {
  EXPECT_EQ(InlinePronunciationHelp("blorf", kLanguageEnglish),
            "write it with its pronunciation in its place, as\n"
            "    |1 1 ? SYLLABLES MARKS STARTS PHONEMES|blorf\n"
            "(number of syllables; a stress digit 0, 1 or 2 for each; where each begins in the\n"
            "phonemes, counted from 0; the phonemes), for example\n"
            "    |1 1 ? 2 01 0 2 h@lo|hello\n");
  EXPECT_THAT(InlinePronunciationHelp("x", kLanguageChinese), HasSubstr("|1 1 ? 2 33 0 2 nihW|"));
  EXPECT_THAT(InlinePronunciationHelp("x", kLanguageJapanese),
              HasSubstr("|1 1 ? 3 111 0 2 4 sakura|"));
}

}  // namespace
}  // namespace veral3
