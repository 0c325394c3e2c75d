#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "common/LanguageType.h"
#include "text/TracedText.h"

// Numbers in digits as they are read aloud in Chinese and Japanese, whose dictionaries know no
// digits. English numbers are the engine's own business.
namespace veral3 {

// A number in a text: "-3,500.25%".
struct WrittenNumber {
  bool negative = false;
  std::wstring whole;     // digits without the commas; at least one
  std::wstring fraction;  // digits behind the point; may be empty
  bool percent = false;
  std::size_t next = 0;  // first character behind it
};

// The number that begins at `start`, which holds a digit, or a minus before one.
WrittenNumber NumberAt(std::wstring_view text, std::size_t start);

// The text with every number in words; inline segments ("|1 ...|") stay as they are, other
// languages too. Chinese in characters: years of four digits and numbers that begin with 0 digit by
// digit, 2 before what is counted as "liang". Japanese as inline segments with their pronunciation,
// since it changes with what is counted (3 hon is "sambon"); the usual counters are known.
TracedText SpellNumbers(const TracedText& text, LanguageType language);
std::wstring SpellNumbers(std::wstring_view text, LanguageType language);

// One number with what follows it in the text.
std::wstring SpellChineseNumber(const WrittenNumber& number, std::wstring_view following);

struct SpelledNumber {
  std::wstring text;         // inline segments, parted by blanks
  std::size_t consumed = 0;  // characters of `following` that were read with the number
};
SpelledNumber SpellJapaneseNumber(const WrittenNumber& number, std::wstring_view following);

}  // namespace veral3
