#include "tools/TextCells.h"

#include <utf8proc.h>

#include "common/Unicode.h"

namespace veral3::tools {
namespace {

std::string Blanks(const std::string& text, int width) {
  const int left = width - DisplayWidth(text);
  return left > 0 ? std::string(static_cast<std::size_t>(left), ' ') : "";
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

}  // namespace veral3::tools
