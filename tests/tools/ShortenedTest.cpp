#include "tools/Shortened.h"

#include <gtest/gtest.h>

namespace veral3::tools {
namespace {

TEST(Shortened, SixtyCharactersStay) {
  EXPECT_EQ(Shortened(""), "");
  EXPECT_EQ(Shortened(std::string(60, 'x')), std::string(60, 'x'));
  EXPECT_EQ(Shortened(std::string(61, 'x')), std::string(60, 'x') + "\u2026");
}

TEST(Shortened, CutsBetweenCharacters) {
  std::string text;
  for (int i = 0; i < 60; ++i) text += "林";
  EXPECT_EQ(Shortened(text), text);
  EXPECT_EQ(Shortened(text + "木"), text + "\u2026");
}

TEST(QuotedList, TenItemsAndHowManyMore) {
  EXPECT_EQ(QuotedList({}), "");
  EXPECT_EQ(QuotedList({"a"}), "\"a\"");
  EXPECT_EQ(QuotedList({"a", std::string(99, 'b')}),
            "\"a\", \"" + std::string(60, 'b') + "\u2026\"");
  EXPECT_EQ(QuotedList(std::vector<std::string>(10, "x")).find("more"), std::string::npos);
  EXPECT_TRUE(QuotedList(std::vector<std::string>(13, "x")).ends_with("\"x\" and 3 more"));
}

}  // namespace
}  // namespace veral3::tools
