#include "recognition/LineTokens.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace veral3 {
namespace {

std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  for (std::size_t position = 0; position < text.size();) {
    lines.emplace_back(NextLine(text, position));
  }
  return lines;
}

std::vector<std::string> Fields(std::string_view line) {
  std::vector<std::string> fields;
  for (std::size_t position = 0;;) {
    const std::string_view field = NextField(line, position);
    if (field.empty()) return fields;
    fields.emplace_back(field);
  }
}

using Strings = std::vector<std::string>;

TEST(LineTokens, LinesEndAtLineFeedsAndAtTheEndOfTheText) {
  EXPECT_EQ(Lines("a\nb\n"), (Strings{"a", "b"}));
  EXPECT_EQ(Lines("a\nb"), (Strings{"a", "b"}));
  EXPECT_EQ(Lines("\n\nb"), (Strings{"", "", "b"}));
  EXPECT_EQ(Lines(""), Strings{});
}

TEST(LineTokens, ALineIsCutAt255Characters) {
  const std::string ascii(300, 'x');
  EXPECT_EQ(Lines(ascii + "\nnext"), (Strings{std::string(255, 'x'), "next"}));
  EXPECT_EQ(Lines(std::string(255, 'x')), Strings{std::string(255, 'x')});

  std::string wide;
  for (int i = 0; i < 300; ++i) wide += "\xE4\xBD\xA0";
  EXPECT_EQ(Lines(wide)[0].size(), 255U * 3);
  EXPECT_EQ(FirstCharacters(wide, 1), "\xE4\xBD\xA0");
  EXPECT_EQ(FirstCharacters(wide, 0), "");
  EXPECT_EQ(FirstCharacters("a\xC3\xA9z", 2), "a\xC3\xA9");
}

TEST(LineTokens, FieldsAreRunsWithoutAsciiWhiteSpace) {
  EXPECT_EQ(Fields(" \ta  b\tc\r\v\f d"), (Strings{"a", "b", "c", "d"}));
  EXPECT_EQ(Fields("a\xE3\x80\x80"
                   "b \xC2\xA0"),
            (Strings{"a\xE3\x80\x80"
                     "b",
                     "\xC2\xA0"}));
  EXPECT_EQ(Fields(" \r"), Strings{});
}

TEST(LineTokens, DecimalValueReadsTheLeadingNumber) {
  EXPECT_EQ(DecimalValue("12"), 12);
  EXPECT_EQ(DecimalValue("+12"), 12);
  EXPECT_EQ(DecimalValue("-12x3"), -12);
  EXPECT_EQ(DecimalValue("1.9"), 1);
  EXPECT_EQ(DecimalValue(""), 0);
  EXPECT_EQ(DecimalValue("-"), 0);
  EXPECT_EQ(DecimalValue("--1"), 0);
  EXPECT_EQ(DecimalValue("x1"), 0);
  EXPECT_EQ(DecimalValue("2147483647"), 2147483647);
  EXPECT_EQ(DecimalValue("2147483648"), 2147483647);
  EXPECT_EQ(DecimalValue("-2147483648"), -2147483647 - 1);
  EXPECT_EQ(DecimalValue("-99999999999999999999999"), -2147483647 - 1);
  EXPECT_EQ(DecimalValue("99999999999999999999999"), 2147483647);
}

}  // namespace
}  // namespace veral3
