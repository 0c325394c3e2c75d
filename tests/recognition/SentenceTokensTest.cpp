#include "recognition/SentenceTokens.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

constexpr int kEnglish = CPhonemeSet::kEnglish;
constexpr int kChinese = CPhonemeSet::kChinese;
constexpr int kJapanese = CPhonemeSet::kJapanese;

// The tokens of a sentence, numbers marked with a leading '='.
std::vector<std::wstring> Tokens(int set, const std::wstring& sentence) {
  std::vector<std::wstring> tokens;
  for (std::size_t position = 0;;) {
    const SentenceToken token = NextSentenceToken(set, sentence, position);
    if (token.text.empty()) return tokens;
    tokens.push_back((token.is_number ? L"=" : L"") + std::wstring(token.text));
    EXPECT_GT(token.next, position);
    EXPECT_LE(token.next, sentence.size());
    position = token.next;
  }
}

using Strings = std::vector<std::wstring>;

TEST(SentenceTokens, EnglishWordsEndAtAsciiPunctuationAndSpace) {
  EXPECT_EQ(Tokens(kEnglish, L" The cat, (the) \"dog\"\tand\nI! "),
            (Strings{L"The", L"cat", L"the", L"dog", L"and", L"I"}));
  EXPECT_EQ(Tokens(kEnglish, L"well-known a_b"), (Strings{L"well", L"known", L"a", L"b"}));
  EXPECT_EQ(Tokens(kEnglish, L"...!?"), Strings{});
  EXPECT_EQ(Tokens(kEnglish, L""), Strings{});
  // Neither typographic quotes nor the spaces beyond ASCII end an English word.
  EXPECT_EQ(Tokens(kEnglish, L"\u201Chi\u201D caf\u00E9\u3000a\u00A0b"),
            (Strings{L"\u201Chi\u201D", L"caf\u00E9\u3000a\u00A0b"}));
}

TEST(SentenceTokens, ApostrophesBelongToAWordButTheLastDoesNot) {
  EXPECT_EQ(Tokens(kEnglish, L"don't students' 'tide' we''re read''"),
            (Strings{L"don't", L"students", L"tide", L"we''re", L"read'"}));
  EXPECT_EQ(Tokens(kChinese, L"\u4F60'\u597D' \u4F60\u2019\u597D"),
            (Strings{L"\u4F60'\u597D", L"\u4F60", L"\u597D"}));
}

TEST(SentenceTokens, NumbersRunOnOverCommasAndStops) {
  EXPECT_EQ(Tokens(kEnglish, L"3,500.25 1.2.3. .5 12, 5th 10%"),
            (Strings{L"=3,500.25", L"=1.2.3.", L"=5", L"=12,", L"=5", L"th", L"=10"}));
  // The character that stops a number is looked at again; the one that stops a word is not.
  EXPECT_EQ(Tokens(kChinese, L"2024\u5E74"), (Strings{L"=2024", L"\u5E74"}));
  EXPECT_EQ(Tokens(kEnglish, L"cat5 a5"), (Strings{L"cat5", L"a5"}));
  // Digits are ASCII's.
  EXPECT_EQ(Tokens(kJapanese, L"\uFF15"), Strings{L"\uFF15"});
}

TEST(SentenceTokens, InlineSegmentsRunPastTheirClosingBarToWhiteSpace) {
  EXPECT_EQ(Tokens(kEnglish, L"a |1 1 ? 1 1 0 hYt|high, b"),
            (Strings{L"a", L"|1 1 ? 1 1 0 hYt|high,", L"b"}));
  EXPECT_EQ(Tokens(kEnglish, L"|3 12 34|x y"), (Strings{L"|3 12 34|x", L"y"}));
  EXPECT_EQ(Tokens(kEnglish, L"a|b c"), (Strings{L"a", L"|b c"}));
  EXPECT_EQ(Tokens(kEnglish, L"12|3 4"), (Strings{L"=12", L"|3 4"}));
  // Only a bar right before the next word opens one.
  EXPECT_EQ(Tokens(kEnglish, L"a | b |\"c |\td"), (Strings{L"a", L"b", L"c", L"d"}));
  EXPECT_EQ(Tokens(kEnglish, L"||"), Strings{});
  EXPECT_EQ(Tokens(kChinese, L"\u4F60|\u597D x"), (Strings{L"\u4F60", L"|\u597D x"}));
}

TEST(SentenceTokens, ChineseAndJapaneseUseUnicodePunctuationAndSpace) {
  for (const int set : {kChinese, kJapanese}) {
    EXPECT_EQ(Tokens(set, L"\u300C\u4F60\uFF0C\u597D\u300D\u3002\u3000\u4EBA\uFF01"),
              (Strings{L"\u4F60", L"\u597D", L"\u4EBA"}));
    EXPECT_EQ(Tokens(set, L"\u4F60\u00A0\u597D"), Strings{L"\u4F60\u00A0\u597D"});
    EXPECT_EQ(Tokens(set, L"\u4F60\u00D7\u597D \u20AC"), (Strings{L"\u4F60", L"\u597D"}));
  }
  EXPECT_EQ(Tokens(kJapanese, L"\u30B3\u30FC\u30D2\u30FC\u30FB\u3002"),
            Strings{L"\u30B3\u30FC\u30D2\u30FC"});
}

TEST(SentenceTokens, NextIndexSkipsSpaceAndPunctuation) {
  EXPECT_EQ(GetNextIndexOfVaildChar(kEnglish, L" ,a", 0), 2U);
  EXPECT_EQ(GetNextIndexOfVaildChar(kEnglish, L"a, b", 1), 3U);
  EXPECT_EQ(GetNextIndexOfVaildChar(kEnglish, L"a", 0), 0U);
  EXPECT_EQ(GetNextIndexOfVaildChar(kEnglish, L" ,", 0), 2U);
  EXPECT_EQ(GetNextIndexOfVaildChar(kEnglish, L"ab", 7), 2U);
  EXPECT_EQ(GetNextIndexOfVaildChar(kEnglish, L"", 0), 0U);
}

TEST(SentenceTokens, EveryAsciiPunctuationMarkIsSkippedInEverySet) {
  const std::wstring marks = L"!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
  EXPECT_EQ(marks.size(), 32U);
  for (int code = 1; code < 128; ++code) {
    const auto c = static_cast<wchar_t>(code);
    const bool is_mark = marks.find(c) != std::wstring::npos;
    const bool is_space = code == ' ' || (code >= 9 && code <= 13);
    for (const int set : {kEnglish, kChinese, kJapanese}) {
      EXPECT_EQ(IsSentencePunctuation(set, c), is_mark) << code;
      EXPECT_EQ(IsSentenceSpace(set, c), is_space) << code;
    }
  }
}

TEST(SentenceTokens, AnUnknownSetIsReportedAndHasNoPunctuation) {
  const test::MessageCapture messages;
  EXPECT_EQ(GetNextIndexOfVaildChar(0, L" ,a", 0), 1U);
  EXPECT_EQ(messages.Of(MessageStream::kError),
            "Error, unknown phoneme set in VeralDictionary::GetNextIndexOfVaildChar()\n");
  EXPECT_EQ(Tokens(3, L"a, 5"), (Strings{L"a,", L"=5"}));
}

TEST(SentenceTokens, CharactersThatAreNoCodePointsAreParts) {
  const std::wstring odd = {L'a', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x7FFFFFFF)};
  EXPECT_EQ(Tokens(kEnglish, odd), Strings{odd});
  EXPECT_EQ(Tokens(kChinese, odd), Strings{odd});
}

}  // namespace
}  // namespace veral3
