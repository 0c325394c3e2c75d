#include "recognition/LineTokens.h"

#include <algorithm>
#include <limits>

namespace veral3 {
namespace {

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

}  // namespace

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
  if (text.size() <= count) return text;
  std::size_t end = 0;
  for (std::size_t characters = 0; end < text.size(); ++end) {
    if (ContinuesCharacter(text[end])) continue;
    if (characters == count) break;
    ++characters;
  }
  return text.substr(0, end);
}

std::string_view NextLine(std::string_view text, std::size_t& position) {
  const std::size_t begin = position;
  const std::size_t end = std::min(text.find('\n', begin), text.size());
  position = std::min(end + 1, text.size());
  return FirstCharacters(text.substr(begin, end - begin), kMaxLineCharacters);
}

std::string_view NextField(std::string_view line, std::size_t& position) {
  while (position < line.size() && IsBlank(line[position])) ++position;
  const std::size_t begin = position;
  while (position < line.size() && !IsBlank(line[position])) ++position;
  return line.substr(begin, position - begin);
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

std::int32_t DecimalValue(std::string_view text) {
  bool negative = false;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    negative = text[0] == '-';
    text.remove_prefix(1);
  }
  constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
  std::int64_t value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    value = std::min(value * 10 + (c - '0'), kLimit);
  }
  return static_cast<std::int32_t>(negative ? -value : std::min(value, kLimit - 1));
}

}  // namespace veral3
