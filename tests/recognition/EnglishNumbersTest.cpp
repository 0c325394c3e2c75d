#include "recognition/EnglishNumbers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/Unicode.h"

namespace veral3 {
namespace {

std::string Joined(const std::vector<std::wstring_view>& words) {
  std::string text;
  for (const std::wstring_view word : words) {
    if (!text.empty()) text += ' ';
    text += Utf8FromWide(word);
  }
  return text;
}

std::string Read(std::wstring_view number) { return Joined(EnglishNumberWords(number)); }

// Below 1000, written as a person would put it.
std::string Reference(int number) {
  static const std::vector<std::string> small = {
      "ZERO",     "ONE",     "TWO",     "THREE",     "FOUR",     "FIVE",    "SIX",
      "SEVEN",    "EIGHT",   "NINE",    "TEN",       "ELEVEN",   "TWELVE",  "THIRTEEN",
      "FOURTEEN", "FIFTEEN", "SIXTEEN", "SEVENTEEN", "EIGHTEEN", "NINETEEN"};
  static const std::vector<std::string> tens = {"",      "",      "TWENTY",  "THIRTY", "FORTY",
                                                "FIFTY", "SIXTY", "SEVENTY", "EIGHTY", "NINETY"};
  const auto at = [](const std::vector<std::string>& words, int i) {
    return words[static_cast<std::size_t>(i)];
  };
  if (number < 20) return at(small, number);
  if (number < 100) {
    const std::string ten = at(tens, number / 10);
    return number % 10 == 0 ? ten : ten + ' ' + at(small, number % 10);
  }
  const std::string hundreds = at(small, number / 100) + " HUNDRED";
  return number % 100 == 0 ? hundreds : hundreds + " AND " + Reference(number % 100);
}

TEST(EnglishNumbers, EveryNumberBelowAThousand) {
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(Read(std::to_wstring(i)), Reference(i)) << i;
}

TEST(EnglishNumbers, TheKnownExamples) {
  EXPECT_EQ(Read(L"105"), "ONE HUNDRED AND FIVE");
  EXPECT_EQ(Read(L"115"), "ONE HUNDRED AND FIFTEEN");
  EXPECT_EQ(Read(L"1005"), "ONE THOUSAND AND FIVE");
  EXPECT_EQ(Read(L"1000000"), "ONE MILLION");
  EXPECT_EQ(Read(L"2500"), "TWO THOUSAND AND FIVE HUNDRED");
  EXPECT_EQ(Read(L"3,500.25"), "THREE THOUSAND AND FIVE HUNDRED POINT TWO FIVE");
  EXPECT_EQ(Read(L"1.2.3"), "ONE DOT TWO DOT THREE");
}

TEST(EnglishNumbers, AndStandsBeforeTheLastDigitThatIsSaid) {
  EXPECT_EQ(Read(L"110"), "ONE HUNDRED AND TEN");
  EXPECT_EQ(Read(L"1001000"), "ONE MILLION AND ONE THOUSAND");
  EXPECT_EQ(Read(L"105000"), "ONE HUNDRED AND FIVE THOUSAND");
  EXPECT_EQ(Read(L"200000000000007"), "TWO HUNDRED TRILLION AND SEVEN");
  EXPECT_EQ(Read(L"100"), "ONE HUNDRED");
  // Units that were said together with their tens have none before them.
  EXPECT_EQ(Read(L"21000"), "TWENTY ONE THOUSAND");
  EXPECT_EQ(Read(L"115000"), "ONE HUNDRED FIFTEEN THOUSAND");
}

TEST(EnglishNumbers, AGroupOfZerosSaysNoScale) {
  EXPECT_EQ(Read(L"1000000005"), "ONE BILLION AND FIVE");
  EXPECT_EQ(Read(L"100000000000000"), "ONE HUNDRED TRILLION");
}

TEST(EnglishNumbers, LeadingZeros) {
  EXPECT_EQ(Read(L"0"), "ZERO");
  EXPECT_EQ(Read(L"00"), "");
  EXPECT_EQ(Read(L"000"), "");
  EXPECT_EQ(Read(L"05"), "FIVE");
  EXPECT_EQ(Read(L"007"), "AND SEVEN");
  EXPECT_EQ(Read(L"010"), "AND TEN");
}

TEST(EnglishNumbers, MoreThanFifteenDigitsSayNothing) {
  EXPECT_NE(Read(L"123456789012345"), "");
  EXPECT_EQ(Read(L"1234567890123456"), "");
  EXPECT_EQ(Read(L"1,234,567,890,123,456"), "");
  EXPECT_EQ(Read(L"1234567890123456.5"), "POINT FIVE");
  EXPECT_EQ(Read(L"1234567890123456.5."), "DOT FIVE DOT");
  EXPECT_EQ(Read(std::wstring(100000, L'9')), "");
}

TEST(EnglishNumbers, Points) {
  EXPECT_EQ(Read(L"0.05"), "ZERO POINT ZERO FIVE");
  EXPECT_EQ(Read(L".5"), "POINT FIVE");
  EXPECT_EQ(Read(L"5."), "FIVE");
  EXPECT_EQ(Read(L"."), "");
  EXPECT_EQ(Read(L"1..5"), "ONE DOT DOT FIVE");
  EXPECT_EQ(Read(L"3.14."), "THREE DOT FOURTEEN DOT");
  EXPECT_EQ(Read(L"1.2.33,500"), "ONE DOT TWO DOT THIRTY THREE THOUSAND AND FIVE HUNDRED");
  EXPECT_EQ(Read(L","), "");
  EXPECT_EQ(Read(L""), "");
}

}  // namespace
}  // namespace veral3
