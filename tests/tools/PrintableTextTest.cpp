#include "tools/PrintableText.h"

#include <gtest/gtest.h>

#include "common/Unicode.h"

namespace veral3::tools {
namespace {

// The character between two letters.
std::string Of(wchar_t c) {
  const wchar_t text[] = {L'a', c, L'b'};
  return PrintableText(Utf8FromWide(std::wstring_view(text, 3)));
}

TEST(PrintableText, TextOfEveryLanguageStays) {
  const std::string text =
      Utf8FromWide(L"It's 50 %, \u4F60\u597D \u30E9\u30FC \u00E9e\u0301 \u0645 \U0001F600 \u00A0~");
  EXPECT_EQ(PrintableText(text), text);
  EXPECT_EQ(PrintableText(""), "");
}

TEST(PrintableText, WhatPartsLinesAndFieldsIsABlank) {
  for (const wchar_t c : {0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x85, 0x2028, 0x2029}) {
    EXPECT_EQ(Of(c), "a b") << std::hex << static_cast<int>(c);
  }
}

TEST(PrintableText, WhatATerminalObeysIsReplaced) {
  const std::string replaced =
      "a\xEF\xBF\xBD"
      "b";
  for (int c = 0; c < 0xA0; ++c) {
    if ((c >= 0x20 && c < 0x7F) || (c >= 0x09 && c <= 0x0D) || c == 0x85) continue;
    EXPECT_EQ(Of(static_cast<wchar_t>(c)), replaced) << std::hex << c;
  }
  for (const wchar_t c : {0x202A, 0x202B, 0x202C, 0x202D, 0x202E, 0x2066, 0x2067, 0x2068, 0x2069}) {
    EXPECT_EQ(Of(c), replaced) << std::hex << static_cast<int>(c);
  }
  EXPECT_EQ(PrintableText("\x1B]0;title\x07"
                          "A"),
            "\xEF\xBF\xBD]0;title\xEF\xBF\xBD"
            "A");
}

TEST(PrintableText, BytesThatAreNoUtf8AreReplaced) {
  EXPECT_EQ(PrintableText("a\xFF\x9B z"), "a\xEF\xBF\xBD\xEF\xBF\xBD z");
  EXPECT_EQ(PrintableText("\xE4\xBD"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(PrintableText, TwiceIsOnce) {
  const std::string once = PrintableText("a\x1B\n\xFF\t\xE2\x80\xAE");
  EXPECT_EQ(PrintableText(once), once);
}

TEST(PrintableLines, KeepLineEndsAndNothingElse) {
  EXPECT_EQ(PrintableLines("a\nb\r\n\x1B\n"), "a\nb \n\xEF\xBF\xBD\n");
}

}  // namespace
}  // namespace veral3::tools
