#include "common/Unicode.h"

#include <utf8proc.h>

namespace veral3 {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsCodePoint(wchar_t c) { return utf8proc_codepoint_valid(static_cast<utf8proc_int32_t>(c)); }

}  // namespace

std::wstring WideFromUtf8(std::string_view utf8) {
  std::wstring wide;
  wide.reserve(utf8.size());
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(utf8.data());
  for (std::size_t i = 0; i < utf8.size();) {
    if (bytes[i] < 0x80) {
      wide.push_back(static_cast<wchar_t>(bytes[i++]));
      continue;
    }
    utf8proc_int32_t code_point = -1;
    const auto used =
        utf8proc_iterate(bytes + i, static_cast<utf8proc_ssize_t>(utf8.size() - i), &code_point);
    if (used <= 0 || code_point < 0) {
      wide.push_back(static_cast<wchar_t>(kReplacement));
      ++i;
    } else {
      wide.push_back(static_cast<wchar_t>(code_point));
      i += static_cast<std::size_t>(used);
    }
  }
  return wide;
}

std::string Utf8FromWide(std::wstring_view wide) {
  std::string utf8;
  utf8.reserve(wide.size());
  for (const wchar_t c : wide) utf8 += Utf8Character(c).View();
  return utf8;
}

Utf8Character::Utf8Character(wchar_t c) {
  const auto code_point = IsCodePoint(c) ? static_cast<utf8proc_int32_t>(c)
                                         : static_cast<utf8proc_int32_t>(kReplacement);
  m_length = static_cast<std::size_t>(
      utf8proc_encode_char(code_point, reinterpret_cast<utf8proc_uint8_t*>(m_bytes)));
}

wchar_t UpperCase(wchar_t c) {
  // The library gives U+1E9E for the sharp s, whose simple upper case is itself.
  if (!IsCodePoint(c) || c == 0xDF) return c;
  return static_cast<wchar_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(c)));
}

bool IsWideSpace(wchar_t c) {
  if (c == L' ' || (c >= L'\t' && c <= L'\r') || c == 0x85) return true;
  if (c < 0x80 || !IsCodePoint(c)) return false;
  if (c == 0xA0 || c == 0x2007 || c == 0x202F) return false;
  switch (utf8proc_category(static_cast<utf8proc_int32_t>(c))) {
    case UTF8PROC_CATEGORY_ZS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    default:
      return false;
  }
}

bool IsWidePunctuation(wchar_t c) {
  if (!IsCodePoint(c)) return false;
  switch (utf8proc_category(static_cast<utf8proc_int32_t>(c))) {
    case UTF8PROC_CATEGORY_PC:
    case UTF8PROC_CATEGORY_PD:
    case UTF8PROC_CATEGORY_PS:
    case UTF8PROC_CATEGORY_PE:
    case UTF8PROC_CATEGORY_PI:
    case UTF8PROC_CATEGORY_PF:
    case UTF8PROC_CATEGORY_PO:
    case UTF8PROC_CATEGORY_SM:
    case UTF8PROC_CATEGORY_SC:
    case UTF8PROC_CATEGORY_SK:
    case UTF8PROC_CATEGORY_SO:
      return true;
    default:
      return false;
  }
}

}  // namespace veral3
