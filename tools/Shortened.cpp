#include "tools/Shortened.h"

#include "tools/PrintableText.h"

namespace veral3::tools {

std::string Shortened(std::string_view quoted) {
  const std::string text = PrintableText(quoted);
  std::size_t characters = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool starts_character = (static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U;
    if (starts_character && ++characters > kMostQuotedCharacters) {
      return text.substr(0, i) + "\u2026";
    }
  }
  return text;
}

std::string QuotedList(const std::vector<std::string>& items) {
  std::string list;
  for (std::size_t i = 0; i < items.size() && i < kMostQuotedItems; ++i) {
    list += list.empty() ? "\"" : ", \"";
    list += Shortened(items[i]);
    list += "\"";
  }
  if (items.size() > kMostQuotedItems) {
    list += " and " + std::to_string(items.size() - kMostQuotedItems) + " more";
  }
  return list;
}

}  // namespace veral3::tools
