#pragma once

#include <cstddef>
#include <iosfwd>
#include <vector>

namespace keras {

// What is said when the bracket before or after a group of numbers is another character; the
// character and a line end follow.
struct TextBrackets {
  const char* open;
  const char* close;
};

// Reads "[ n1 n2 ... ]" with `count` numbers and appends them to `numbers`. A wrong bracket is
// reported and passed over. Returns false when the text ends, or stops being numbers, before
// `count` of them were read.
bool ReadTextGroup(std::istream& text, std::size_t count, const TextBrackets& brackets,
                   std::vector<double>& numbers);

// Reports a text form that ended early; returns -1.
int ReportShortText(const char* layer);

}  // namespace keras
