#include "tools/HtmlText.h"

#include "tools/PrintableText.h"

namespace veral3::tools {

std::string HtmlText(std::string_view text) {
  std::string result;
  for (const char c : PrintableText(text)) {
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
      default:
        result += c;
    }
  }
  return result;
}

}  // namespace veral3::tools
