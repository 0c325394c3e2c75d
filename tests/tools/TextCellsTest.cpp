#include "tools/TextCells.h"

#include <gtest/gtest.h>

namespace veral3::tools {
namespace {

TEST(TextCells, WidthCountsTerminalColumns) {
  EXPECT_EQ(DisplayWidth(""), 0);
  EXPECT_EQ(DisplayWidth("abc"), 3);
  EXPECT_EQ(DisplayWidth("\xE4\xBD\xA0\xE5\xA5\xBD"), 4);  // two Chinese characters
  EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1);                 // a letter and its accent
  EXPECT_EQ(DisplayWidth("\xF0\xA0\x80\x80"), 2);          // a character of the second plane
}

TEST(TextCells, PaddingFillsColumnsAndCutsNothing) {
  EXPECT_EQ(PadRight("ab", 4), "ab  ");
  EXPECT_EQ(PadLeft("ab", 4), "  ab");
  EXPECT_EQ(PadRight("\xE4\xBD\xA0", 4), "\xE4\xBD\xA0  ");
  EXPECT_EQ(PadLeft("abcde", 4), "abcde");
}

TEST(TextCells, FieldsOfCommaSeparatedValues) {
  EXPECT_EQ(QuotedForCsv("a b"), "a b");
  EXPECT_EQ(QuotedForCsv("a,b"), "\"a,b\"");
  EXPECT_EQ(QuotedForCsv("say \"a\""), "\"say \"\"a\"\"\"");
  EXPECT_EQ(QuotedForCsv("a\nb"), "\"a\nb\"");
}

TEST(TextCells, WhatASpreadsheetWouldRunHasAnApostropheInFront) {
  EXPECT_EQ(CsvText("=1+1"), "'=1+1");
  EXPECT_EQ(CsvText("+1"), "'+1");
  EXPECT_EQ(CsvText("-1"), "'-1");
  EXPECT_EQ(CsvText("@SUM(A1)"), "'@SUM(A1)");
  EXPECT_EQ(CsvText("=HYPERLINK(\"http://x\",1)"), "\"'=HYPERLINK(\"\"http://x\"\",1)\"");
  EXPECT_EQ(CsvText("\t=1"), "' =1");
  EXPECT_EQ(CsvText("\r=1"), "' =1");
  EXPECT_EQ(CsvText("\n =1"), "'  =1");
  EXPECT_EQ(CsvText("\xEF\xBC\x9D"
                    "1"),
            "'\xEF\xBC\x9D"
            "1");                                           // fullwidth
  EXPECT_EQ(CsvText("\xE3\x80\x80=1"), "'\xE3\x80\x80=1");  // behind an ideographic blank
  EXPECT_EQ(CsvText("\xEF\xBB\xBF=1"), "'\xEF\xBB\xBF=1");  // behind a byte-order mark
  EXPECT_EQ(CsvText("a=b"), "a=b");
  EXPECT_EQ(CsvText("'tis"), "'tis");
  EXPECT_EQ(CsvText(""), "");
}

TEST(TextCells, TextsOfOthersAreOneLineOfUtf8) {
  EXPECT_EQ(CsvText("a\nb\x1B\xFF"), "a b\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(CsvText("\t1"), " 1");
}

}  // namespace
}  // namespace veral3::tools
