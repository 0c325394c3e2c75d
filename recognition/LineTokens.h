#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// Reading a dictionary's text: lines, the tokens of a line, decimal numbers. Text is well-formed
// UTF-8; a character is a code point.
namespace veral3 {

// The longest line a dictionary has, in characters; the rest of a longer one does not count.
inline constexpr std::size_t kMaxLineCharacters = 255;

// The first `count` characters of `text`, all of it when it is shorter.
std::string_view FirstCharacters(std::string_view text, std::size_t count);

// Next line of `text` from byte `position`, without its line feed and cut at kMaxLineCharacters;
// `position` moves behind the line feed. At the text's end every line is empty.
std::string_view NextLine(std::string_view text, std::size_t& position);

// Next run of characters that are no ASCII white space, from byte `position`, which moves to the
// run's end; empty at the end of the line.
std::string_view NextField(std::string_view line, std::size_t& position);

bool IsAscii(std::string_view text);

// The number that `text` begins with, sign included: 0 when it begins with none, the nearest limit
// when 32 bits do not hold it.
std::int32_t DecimalValue(std::string_view text);

}  // namespace veral3
