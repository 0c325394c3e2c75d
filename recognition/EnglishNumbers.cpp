#include "recognition/EnglishNumbers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace veral3 {
namespace {

using Words = std::vector<std::wstring_view>;

constexpr std::size_t kMaxDigits = 15;
constexpr std::array<std::wstring_view, 10> kDigits = {
    L"ZERO", L"ONE", L"TWO", L"THREE", L"FOUR", L"FIVE", L"SIX", L"SEVEN", L"EIGHT", L"NINE"};
constexpr std::array<std::wstring_view, 10> kTeens = {
    L"TEN",     L"ELEVEN",  L"TWELVE",    L"THIRTEEN", L"FOURTEEN",
    L"FIFTEEN", L"SIXTEEN", L"SEVENTEEN", L"EIGHTEEN", L"NINETEEN"};
constexpr std::array<std::wstring_view, 10> kTens = {
    L"", L"", L"TWENTY", L"THIRTY", L"FORTY", L"FIFTY", L"SIXTY", L"SEVENTY", L"EIGHTY", L"NINETY"};
constexpr std::array<std::wstring_view, 5> kScales = {L"", L"THOUSAND", L"MILLION", L"BILLION",
                                                      L"TRILLION"};

std::size_t Value(wchar_t digit) { return static_cast<std::size_t>(digit - L'0'); }

// Place of the digit that AND is said before; npos for none.
std::size_t AndPlace(std::wstring_view digits) {
  constexpr std::size_t kNone = std::wstring_view::npos;
  if (digits.size() < 3) return kNone;
  const std::size_t last = digits.find_last_not_of(L'0');
  if (last == 0 || last == kNone) return kNone;
  const bool tens_and_units = last + 1 == digits.size() && digits[last - 1] != L'0';
  return tens_and_units ? last - 1 : last;
}

void Append(Words& words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
}

}  // namespace

Words EnglishIntegerWords(std::wstring_view digits) {
  Words words;
  if (digits.size() > kMaxDigits) return words;
  if (digits == L"0") return {kDigits[0]};
  const std::size_t and_place = AndPlace(digits);
  std::size_t group_begin = 0;  // count of words before the current group of three
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const std::size_t remaining = digits.size() - i;
    const std::size_t digit = Value(digits[i]);
    if (digit != 0 && i == and_place) words.push_back(L"AND");
    switch (remaining % 3) {
      case 0:  // hundreds
        if (digit != 0) {
          words.push_back(kDigits[digit]);
          words.push_back(L"HUNDRED");
        }
        break;
      case 2:  // tens, together with their units
        if (digit != 0) {
          const std::size_t units = Value(digits[++i]);
          if (digit == 1) {
            words.push_back(kTeens[units]);
          } else {
            words.push_back(kTens[digit]);
            if (units != 0) words.push_back(kDigits[units]);
          }
        }
        break;
      default:
        if (digit != 0) words.push_back(kDigits[digit]);
        break;
    }
    const std::size_t to_come = digits.size() - i - 1;
    if (to_come % 3 == 0) {
      if (to_come > 0 && words.size() > group_begin) words.push_back(kScales[to_come / 3]);
      group_begin = words.size();
    }
  }
  return words;
}

Words EnglishNumberWords(std::wstring_view number) {
  std::wstring text(number);
  std::erase(text, L',');
  const std::wstring_view rest = text;
  const std::size_t point = rest.find(L'.');
  if (point == std::wstring_view::npos) return EnglishIntegerWords(rest);

  Words words;
  if (rest.find(L'.', point + 1) == std::wstring_view::npos) {
    words = EnglishIntegerWords(rest.substr(0, point));
    const std::wstring_view fraction = rest.substr(point + 1);
    if (!fraction.empty()) words.push_back(L"POINT");
    for (const wchar_t digit : fraction) words.push_back(kDigits[Value(digit)]);
    return words;
  }
  std::size_t begin = 0;
  for (std::size_t dot = point; dot != std::wstring_view::npos; dot = rest.find(L'.', begin)) {
    Append(words, EnglishIntegerWords(rest.substr(begin, dot - begin)));
    words.push_back(L"DOT");
    begin = dot + 1;
  }
  Append(words, EnglishIntegerWords(rest.substr(begin)));
  return words;
}

}  // namespace veral3
