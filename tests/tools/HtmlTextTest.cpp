#include "tools/HtmlText.h"

#include <gtest/gtest.h>

namespace veral3::tools {
namespace {

TEST(HtmlText, MarkupIsEscaped) {
  EXPECT_EQ(HtmlText("<a href=\"x\">'b' & c</a>"),
            "&lt;a href=&quot;x&quot;&gt;&#39;b&#39; &amp; c&lt;/a&gt;");
  EXPECT_EQ(HtmlText("&lt;"), "&amp;lt;");
  EXPECT_EQ(HtmlText(""), "");
}

TEST(HtmlText, AlwaysWellFormedUtf8WithoutControlCharacters) {
  EXPECT_EQ(HtmlText("\xE4\xBD\xA0\n\t"), "\xE4\xBD\xA0  ");
  EXPECT_EQ(HtmlText("a\xFF\x80z"), "a\xEF\xBF\xBD\xEF\xBF\xBDz");
  EXPECT_EQ(HtmlText(std::string_view("a\0\x1B\x7F", 4)), "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(HtmlText("\xC2\x9B"
                     "31m\xE2\x80\xAEtxt.exe"),
            "\xEF\xBF\xBD"
            "31m\xEF\xBF\xBDtxt.exe");
}

}  // namespace
}  // namespace veral3::tools
