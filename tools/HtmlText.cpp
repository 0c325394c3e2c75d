#include "tools/HtmlText.h"

#include "common/Unicode.h"

namespace veral3::tools {

std::string HtmlText(std::string_view text) {
  std::string result;
  // Through code points and back, so that bad bytes become U+FFFD.
  for (const char c : Utf8FromWide(WideFromUtf8(text))) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      case '\'':
        result += "&#39;";
        break;
      default: {
        const auto code = static_cast<unsigned char>(c);
        const bool is_control = (code < 0x20 && c != '\n' && c != '\t') || code == 0x7F;
        result += is_control ? "\xEF\xBF\xBD" : std::string(1, c);
      }
    }
  }
  return result;
}

}  // namespace veral3::tools
