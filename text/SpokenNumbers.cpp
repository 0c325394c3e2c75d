#include "text/SpokenNumbers.h"

namespace veral3 {
namespace {

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

bool IsDigitAt(std::wstring_view text, std::size_t index) {
  return index < text.size() && IsDigit(text[index]);
}

// A comma that parts thousands: three digits behind it, and no more.
bool IsThousandsComma(std::wstring_view text, std::size_t index) {
  return text[index] == L',' && IsDigitAt(text, index + 1) && IsDigitAt(text, index + 2) &&
         IsDigitAt(text, index + 3) && !IsDigitAt(text, index + 4);
}

// A minus that negates, not one that parts ("2-3", "A-1").
bool IsSign(std::wstring_view text, std::size_t index) {
  return text[index] == L'-' && IsDigitAt(text, index + 1) &&
         (index == 0 || text[index - 1] == L' ');
}

}  // namespace

WrittenNumber NumberAt(std::wstring_view text, std::size_t start) {
  WrittenNumber number;
  std::size_t i = start;
  if (text[i] == L'-') {
    number.negative = true;
    ++i;
  }
  while (i < text.size() && (IsDigit(text[i]) || IsThousandsComma(text, i))) {
    if (IsDigit(text[i])) number.whole += text[i];
    ++i;
  }
  if (i < text.size() && text[i] == L'.' && IsDigitAt(text, i + 1)) {
    ++i;
    while (IsDigitAt(text, i)) number.fraction += text[i++];
  }
  if (i < text.size() && text[i] == L'%') {
    number.percent = true;
    ++i;
  }
  number.next = i;
  return number;
}

TracedText SpellNumbers(const TracedText& traced, LanguageType language) {
  if (language != kLanguageChinese && language != kLanguageJapanese) return traced;
  const std::wstring_view text = traced.Text();
  TracedText spelled;
  bool inline_segment = false;  // between its first and its second bar
  bool inline_word = false;     // behind the second, up to the next blank
  for (std::size_t i = 0; i < text.size();) {
    const wchar_t c = text[i];
    if (c == L'|') {
      inline_word = inline_segment;
      inline_segment = !inline_segment;
    } else if (c == L' ') {
      inline_word = false;
    }
    if (inline_segment || inline_word || !(IsDigit(c) || IsSign(text, i))) {
      spelled.Append(traced, i, 1);
      ++i;
      continue;
    }
    const std::size_t begin = i;
    const WrittenNumber number = NumberAt(text, i);
    const std::wstring_view following = text.substr(number.next);
    i = number.next;
    // A time of day: "3:30" is three hours thirty minutes.
    const bool is_time = following.size() > 1 && following[0] == L':' && IsDigit(following[1]) &&
                         number.whole.size() <= 2;
    const WrittenNumber minutes = is_time ? NumberAt(text, i + 1) : WrittenNumber();
    std::wstring words;
    if (language == kLanguageChinese) {
      words = SpellChineseNumber(number, following);
      if (is_time) words += L"點" + SpellChineseNumber(minutes, L"分") + L"分";
    } else {
      const SpelledNumber said = SpellJapaneseNumber(number, is_time ? L"時" : following);
      words = L' ' + said.text + L' ';
      if (is_time) {
        words += SpellJapaneseNumber(minutes, L"分").text + L' ';
      } else {
        i += said.consumed;
      }
    }
    if (is_time) i = minutes.next;
    TextOrigin origin = traced.OriginOf(begin, i - begin);
    origin.source = TextSource::kNumber;
    spelled.Append(words, origin);
  }
  return spelled;
}

std::wstring SpellNumbers(std::wstring_view text, LanguageType language) {
  return std::wstring(SpellNumbers(TracedText(std::wstring(text)), language).Text());
}

}  // namespace veral3
