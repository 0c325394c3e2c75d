#include "tools/PrintableText.h"

#include "common/Unicode.h"

namespace veral3::tools {
namespace {

constexpr wchar_t kReplacement = 0xFFFD;

// What only parts words or lines.
bool IsBreak(wchar_t c) {
  return (c >= L'\t' && c <= L'\r') || c == 0x85 || c == 0x2028 || c == 0x2029;
}

std::string Printable(std::string_view text, bool keep_line_ends) {
  std::wstring wide = WideFromUtf8(text);
  for (wchar_t& c : wide) {
    if (!IsUnprintable(c) || (keep_line_ends && c == L'\n')) continue;
    c = IsBreak(c) ? L' ' : kReplacement;
  }
  return Utf8FromWide(wide);
}

}  // namespace

bool IsUnprintable(wchar_t c) {
  const bool is_control = c < 0x20 || (c >= 0x7F && c <= 0x9F);
  const bool turns_direction = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
  return is_control || turns_direction || IsBreak(c);
}

std::string PrintableText(std::string_view text) { return Printable(text, false); }

std::string PrintableLines(std::string_view text) { return Printable(text, true); }

}  // namespace veral3::tools
