#include "common/Unicode.h"

#include <gtest/gtest.h>

namespace veral3 {
namespace {

TEST(Unicode, BadBytesBecomeReplacementCharacters) {
  EXPECT_EQ(WideFromUtf8("a\xFF"), L"a\uFFFD");
  EXPECT_EQ(WideFromUtf8("\xE4\xBD"), L"\uFFFD\uFFFD");             // cut short
  EXPECT_EQ(WideFromUtf8("\xED\xA0\x80").substr(0, 1), L"\uFFFD");  // a surrogate
}

TEST(Unicode, RoundTripsBeyondTheBasicPlane) {
  const std::string clef = "\xF0\x9D\x84\x9E";
  ASSERT_EQ(WideFromUtf8(clef).size(), 1u);
  EXPECT_EQ(Utf8FromWide(WideFromUtf8(clef)), clef);
}

TEST(Unicode, WhatIsNoCodePointIsReplaced) {
  EXPECT_EQ(Utf8FromWide(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
  EXPECT_EQ(Utf8FromWide(std::wstring(1, static_cast<wchar_t>(0x110000))), "\xEF\xBF\xBD");
}

TEST(Unicode, IdeographicSpaceIsSpaceAndNoBreakSpaceIsNot) {
  EXPECT_TRUE(IsWideSpace(L' '));
  EXPECT_TRUE(IsWideSpace(L'\t'));
  EXPECT_TRUE(IsWideSpace(0x3000));
  EXPECT_FALSE(IsWideSpace(0x00A0));
  EXPECT_FALSE(IsWideSpace(L'a'));
}

TEST(Unicode, PunctuationIsCategoriesPAndS) {
  for (const wchar_t c : {L'!', L'$', L'+', L'|', L'\u3002', L'\uFF0C', L'\u300C', L'\u20AC'}) {
    EXPECT_TRUE(IsWidePunctuation(c)) << static_cast<int>(c);
  }
  for (const wchar_t c : {L'a', L'1', L' ', L'\u4F60', L'\u30FC'}) {  // the last is a letter
    EXPECT_FALSE(IsWidePunctuation(c)) << static_cast<int>(c);
  }
}

}  // namespace
}  // namespace veral3
