#include <algorithm>

#include "text/SpokenNumbers.h"

namespace veral3 {
namespace {

constexpr std::wstring_view kDigits = L"零一二三四五六七八九";
constexpr wchar_t kPlaces[] = {0, L'十', L'百', L'千'};
constexpr wchar_t kGroups[] = {0, L'萬', L'億', L'兆'};  // of four digits
constexpr std::size_t kMaxDigits = 16;

// What two of are "liang".
constexpr std::wstring_view kCounted[] = {
    L"個", L"个", L"位",   L"本",   L"隻",   L"只",   L"條",   L"条", L"張", L"张", L"天", L"次",
    L"點", L"点", L"歲",   L"岁",   L"杯",   L"塊",   L"块",   L"件", L"種", L"种", L"家", L"間",
    L"间", L"年", L"小時", L"小时", L"分鐘", L"分钟", L"星期", L"週", L"周", L"公", L"台", L"輛",
    L"辆", L"棵", L"朵",   L"枝",   L"支",   L"雙",   L"双",   L"把", L"口", L"頭", L"头", L"片",
    L"瓶", L"碗", L"斤",   L"倍",   L"遍",   L"句",   L"排",   L"層", L"层", L"座", L"封", L"套",
};

std::wstring DigitByDigit(std::wstring_view digits) {
  std::wstring words;
  for (const wchar_t digit : digits) words += kDigits[static_cast<std::size_t>(digit - L'0')];
  return words;
}

// Up to four digits. A zero is said once between places that are said, and before them where a
// higher group stands (`inner`). Two of a hundred or a thousand are "liang".
std::wstring Group(std::wstring_view digits, bool inner) {
  std::wstring words;
  bool zero = false;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const std::size_t place = digits.size() - 1 - i;
    if (digits[i] == L'0') {
      zero = true;
      continue;
    }
    if (zero && (inner || !words.empty())) words += L'零';
    zero = false;
    const bool plain_ten = place == 1 && digits[i] == L'1' && words.empty() && !inner;
    if (!plain_ten) {
      words += place >= 2 && digits[i] == L'2'
                   ? L'兩'
                   : kDigits[static_cast<std::size_t>(digits[i] - L'0')];
    }
    if (place > 0) words += kPlaces[place];
  }
  return words;
}

std::wstring Whole(std::wstring_view digits) {
  std::wstring words;
  for (std::size_t at = 0; at < digits.size();) {
    const std::size_t left = digits.size() - at;
    const std::size_t size = (left - 1) % 4 + 1;
    const std::size_t group = (left - 1) / 4;
    std::wstring said = Group(digits.substr(at, size), !words.empty());
    if (!said.empty()) {
      if (said == L"二" && group > 0) said = L"兩";
      words += said;
      if (group > 0) words += kGroups[group];
    }
    at += size;
  }
  return words.empty() ? L"零" : words;
}

}  // namespace

std::wstring SpellChineseNumber(const WrittenNumber& number, std::wstring_view following) {
  std::wstring words = number.negative ? L"負" : L"";
  if (number.percent) words += L"百分之";
  const bool year = number.whole.size() == 4 && following.starts_with(L"年");
  const bool code = number.whole.size() > 1 && number.whole.front() == L'0';
  if (year || code || number.whole.size() > kMaxDigits) {
    words += DigitByDigit(number.whole);
  } else if (number.whole == L"2" && number.fraction.empty() && !number.percent &&
             std::ranges::any_of(kCounted, [&](std::wstring_view counted) {
               return following.starts_with(counted);
             })) {
    words += L"兩";
  } else {
    words += Whole(number.whole);
  }
  if (!number.fraction.empty()) words += L"點" + DigitByDigit(number.fraction);
  return words;
}

}  // namespace veral3
