#include "common/CString.h"

#include <gtest/gtest.h>

namespace {

TEST(CString, HoldsOneCodePointACharacter) {
  const CString s("a\xC3\xA9\xE4\xBD\xA0");
  ASSERT_EQ(s.GetLength(), 3);
  EXPECT_EQ(s[0], L'a');
  EXPECT_EQ(s[1], L'\u00E9');
  EXPECT_EQ(s[2], L'\u4F60');
  EXPECT_EQ(s.Utf8(), "a\xC3\xA9\xE4\xBD\xA0");
}

TEST(CString, NullReadsAsEmpty) {
  EXPECT_TRUE(CString(static_cast<const char*>(nullptr)).IsEmpty());
  EXPECT_TRUE(CString(static_cast<const wchar_t*>(nullptr)).IsEmpty());
}

TEST(CString, PositionsOutsideAreNoError) {
  const CString s(L"abc");
  EXPECT_EQ(s[-1], L'\0');
  EXPECT_EQ(s[3], L'\0');
  EXPECT_EQ(s.Left(-2), L"");
  EXPECT_EQ(s.Left(9), L"abc");
  EXPECT_EQ(s.Right(2), L"bc");
  EXPECT_EQ(s.Mid(1), L"bc");
  EXPECT_EQ(s.Mid(7), L"");
  EXPECT_EQ(s.Mid(-1, 2), L"ab");
  EXPECT_EQ(s.Mid(2, 5), L"c");
}

TEST(CString, Finds) {
  const CString s(L"a|b|c");
  EXPECT_EQ(s.Find(L'|'), 1);
  EXPECT_EQ(s.Find(L'|', 2), 3);
  EXPECT_EQ(s.Find(L'x'), -1);
  EXPECT_EQ(s.Find(L"|c"), 3);
  EXPECT_EQ(s.Find(L'a', 99), -1);
}

TEST(CString, ComparesByCharacterCode) {
  EXPECT_LT(CString(L"B").Compare(L"a"), 0);
  EXPECT_EQ(CString(L"a").Compare(L"a"), 0);
  EXPECT_GT(CString(L"ab").Compare(L"a"), 0);
  EXPECT_TRUE(CString(L"a") < CString(L"b"));
}

TEST(CString, UpperCaseIsOneToOne) {
  CString s(L"stra\u00DFe \u00E9\u03B1");
  EXPECT_EQ(s.MakeUpper(), L"STRA\u00DFE \u00C9\u0391");
}

}  // namespace
