#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Texts of any length as messages quote them: a message is a sentence, not a book.
namespace veral3::tools {

inline constexpr std::size_t kMostQuotedCharacters = 60;
inline constexpr std::size_t kMostQuotedItems = 10;

// The text as people read it (tools/PrintableText.h), or its first 60 characters and an ellipsis.
std::string Shortened(std::string_view quoted);

// The items in quotation marks, each shortened, with commas between them; behind the tenth only how
// many there are more.
std::string QuotedList(const std::vector<std::string>& items);

}  // namespace veral3::tools
