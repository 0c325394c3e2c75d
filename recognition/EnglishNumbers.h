#pragma once

#include <string_view>
#include <vector>

// Reading numbers aloud in English, as upper-case words that the dictionary holds.
namespace veral3 {

// A number of a sentence: digits, "," (ignored) and ".".
//   "3,500.25" THREE THOUSAND AND FIVE HUNDRED POINT TWO FIVE;  "1.2.3" ONE DOT TWO DOT THREE
// An integer of more than 15 digits says nothing.
std::vector<std::wstring_view> EnglishNumberWords(std::wstring_view number);

// A string of digits: 105 ONE HUNDRED AND FIVE, 2500 TWO THOUSAND AND FIVE HUNDRED. Leading zeros
// count as digits: 007 is AND SEVEN, 00 says nothing.
std::vector<std::wstring_view> EnglishIntegerWords(std::wstring_view digits);

}  // namespace veral3
