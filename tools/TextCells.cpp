#include "tools/TextCells.h"

#include <utf8proc.h>

#include <algorithm>

#include "common/Unicode.h"
#include "tools/PrintableText.h"

namespace veral3::tools {
namespace {

std::string Blanks(const std::string& text, int width) {
  const int left = width - DisplayWidth(text);
  return left > 0 ? std::string(static_cast<std::size_t>(left), ' ') : "";
}

bool IsBlank(wchar_t c) {
  return IsWideSpace(c) || c == 0x00A0 || c == 0x2007 || c == 0x202F || c == 0x200B || c == 0xFEFF;
}

// Whether a spreadsheet takes the text for a formula. Some take the fullwidth signs too.
bool IsFormula(std::string_view text) {
  constexpr std::wstring_view kSigns = L"=+-@\uFF1D\uFF0B\uFF0D\uFF20";
  const std::wstring wide = WideFromUtf8(text);
  const auto first = std::ranges::find_if_not(wide, IsBlank);
  return first != wide.end() && kSigns.find(*first) != std::wstring_view::npos;
}

}  // namespace

int DisplayWidth(const std::string& text) {
  int width = 0;
  for (const wchar_t c : WideFromUtf8(text)) {
    width += utf8proc_charwidth(static_cast<utf8proc_int32_t>(c));
  }
  return width;
}

std::string PadRight(const std::string& text, int width) { return text + Blanks(text, width); }

std::string PadLeft(const std::string& text, int width) { return Blanks(text, width) + text; }

std::string QuotedForCsv(const std::string& field) {
  if (field.find_first_of(",\"\r\n") == std::string::npos) return field;
  std::string result = "\"";
  for (const char c : field) {
    result += c;
    if (c == '"') result += c;
  }
  return result + "\"";
}

std::string CsvText(std::string_view text) {
  const std::string printable = PrintableText(text);
  return QuotedForCsv(IsFormula(printable) ? "'" + printable : printable);
}

}  // namespace veral3::tools
