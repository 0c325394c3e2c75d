#pragma once

#include <string>
#include <string_view>

// Text from outside (names of files and teachers, sentences, words, arguments, what an error quotes
// of a file) in the form in which people read it. All of it goes through here on its way to a
// terminal, a table, a page or a file for other programs: it can neither steer a terminal nor look
// like a line of ours.
namespace veral3::tools {

// `text` as one line of well-formed UTF-8. Tabs, line ends and U+2028, U+2029 become blanks. Other
// control characters (C0, DEL, C1), those that turn the direction of writing (U+202A to U+202E,
// U+2066 to U+2069) and bytes that are no UTF-8 become U+FFFD. What is printable stays, so a second
// time changes nothing.
std::string PrintableText(std::string_view text);

// The same for text whose line ends (LF) are our own: they stay.
std::string PrintableLines(std::string_view text);

// Whether PrintableText replaces this character.
bool IsUnprintable(wchar_t c);

}  // namespace veral3::tools
