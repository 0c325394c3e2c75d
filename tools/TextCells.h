#pragma once

#include <string>
#include <string_view>

// Text as the cells of tables and of comma-separated files. UTF-8.
namespace veral3::tools {

// Columns that the text takes in a terminal; Chinese and Japanese characters take two.
int DisplayWidth(const std::string& text);

// `text` with blanks behind it (or in front of it) to fill `width` columns.
std::string PadRight(const std::string& text, int width);
std::string PadLeft(const std::string& text, int width);

// A field of RFC 4180, quoted where it must be: numbers, phoneme symbols and other text of our own.
std::string QuotedForCsv(const std::string& field);

// A field with text from outside (tools/PrintableText.h). What a spreadsheet would run as a
// formula, because it begins with =, +, - or @ (fullwidth or not) behind blanks or none, gets an
// apostrophe in front.
std::string CsvText(std::string_view text);

}  // namespace veral3::tools
