#include "tools/TextCells.h"

#include <gtest/gtest.h>

namespace veral3::tools {
namespace {

TEST(TextCells, WidthCountsTerminalColumns) {
  EXPECT_EQ(DisplayWidth(""), 0);
  EXPECT_EQ(DisplayWidth("abc"), 3);
  EXPECT_EQ(DisplayWidth("\xE4\xBD\xA0\xE5\xA5\xBD"), 4);  // two Chinese characters
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

}  // namespace
}  // namespace veral3::tools
