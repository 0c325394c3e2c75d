#include "common/CString.h"

#include <algorithm>

#include "common/Unicode.h"

CString::CString(const wchar_t* text) : m_str(text ? text : L"") {}
CString::CString(const char* utf8) : m_str(veral3::WideFromUtf8(utf8 ? utf8 : "")) {}
CString::CString(std::wstring_view text) : m_str(text) {}
CString::CString(std::string_view utf8) : m_str(veral3::WideFromUtf8(utf8)) {}

wchar_t CString::GetAt(int index) const {
  return index >= 0 && index < GetLength() ? m_str[static_cast<std::size_t>(index)] : L'\0';
}

std::string CString::Utf8() const { return veral3::Utf8FromWide(m_str); }

int CString::Compare(std::wstring_view other) const { return m_str.compare(other); }

int CString::Find(wchar_t c, int start) const { return Find(std::wstring_view(&c, 1), start); }

int CString::Find(std::wstring_view part, int start) const {
  const auto place = m_str.find(part, static_cast<std::size_t>(std::max(start, 0)));
  return place == std::wstring::npos ? -1 : static_cast<int>(place);
}

CString CString::Left(int count) const { return Mid(0, count); }

CString CString::Right(int count) const {
  count = std::clamp(count, 0, GetLength());
  return Mid(GetLength() - count, count);
}

CString CString::Mid(int first) const { return Mid(first, GetLength()); }

CString CString::Mid(int first, int count) const {
  first = std::clamp(first, 0, GetLength());
  count = std::clamp(count, 0, GetLength() - first);
  return CString(std::wstring_view(m_str).substr(static_cast<std::size_t>(first),
                                                 static_cast<std::size_t>(count)));
}

CString& CString::MakeUpper() {
  for (wchar_t& c : m_str) c = veral3::UpperCase(c);
  return *this;
}

CString& CString::operator+=(std::wstring_view text) {
  m_str += text;
  return *this;
}

CString& CString::operator+=(wchar_t c) {
  m_str += c;
  return *this;
}
