#include "common/CString.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "common/Unicode.h"

template <typename Make>
void CString::Hold(Make make) noexcept {
  try {
    m_str = std::make_shared<const std::wstring>(make());
  } catch (const std::exception&) {
    m_str = nullptr;
    m_lost = true;
  }
}

CString::CString(const wchar_t* text) noexcept : CString(std::wstring_view(text ? text : L"")) {}

CString::CString(const char* utf8) noexcept : CString(std::string_view(utf8 ? utf8 : "")) {}

CString::CString(std::wstring_view text) noexcept {
  if (!text.empty()) Hold([&] { return std::wstring(text); });
}

CString::CString(std::string_view utf8) noexcept {
  if (!utf8.empty()) Hold([&] { return veral3::WideFromUtf8(utf8); });
}

wchar_t CString::GetAt(int index) const {
  return index >= 0 && index < GetLength() ? Text()[static_cast<std::size_t>(index)] : L'\0';
}

std::string CString::Utf8() const { return veral3::Utf8FromWide(Text()); }

int CString::Compare(std::wstring_view other) const { return Text().compare(other); }

int CString::Find(wchar_t c, int start) const { return Find(std::wstring_view(&c, 1), start); }

int CString::Find(std::wstring_view part, int start) const {
  const auto place = Text().find(part, static_cast<std::size_t>(std::max(start, 0)));
  return place == std::wstring_view::npos ? -1 : static_cast<int>(place);
}

CString CString::Left(int count) const { return Mid(0, count); }

CString CString::Right(int count) const {
  count = std::clamp(count, 0, GetLength());
  return Mid(GetLength() - count, count);
}

CString CString::Mid(int first) const { return Mid(first, GetLength()); }

CString CString::Mid(int first, int count) const {
  if (m_lost) return *this;
  first = std::clamp(first, 0, GetLength());
  count = std::clamp(count, 0, GetLength() - first);
  return CString(Text().substr(static_cast<std::size_t>(first), static_cast<std::size_t>(count)));
}

CString& CString::MakeUpper() {
  if (IsEmpty()) return *this;
  Hold([&] {
    std::wstring upper(Text());
    std::transform(upper.begin(), upper.end(), upper.begin(), veral3::UpperCase);
    return upper;
  });
  return *this;
}

CString& CString::operator+=(std::wstring_view text) {
  if (m_lost || text.empty()) return *this;
  Hold([&] {
    std::wstring longer;
    longer.reserve(Text().size() + text.size());
    longer.append(Text()).append(text);
    return longer;
  });
  return *this;
}

CString& CString::operator+=(wchar_t c) { return *this += std::wstring_view(&c, 1); }
