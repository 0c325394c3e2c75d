#include "tools/Numbers.h"

#include <array>
#include <charconv>

namespace veral3::tools {

std::string Fixed(double value, int decimals) {
  std::array<char, 400> buffer;  // the largest double has 309 digits before the point
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::fixed, decimals);
  std::string text(buffer.data(), end.ptr);
  if (text.starts_with('-') && text.find_first_not_of("-0.") == std::string::npos) text.erase(0, 1);
  return text;
}

std::string Right(const std::string& text, int width) {
  const auto wanted = static_cast<std::size_t>(width);
  return text.size() >= wanted ? text : std::string(wanted - text.size(), ' ') + text;
}

}  // namespace veral3::tools
