#pragma once

#include <compare>
#include <memory>
#include <string>
#include <string_view>

#include "common/Export.h"

// The wide string of the interface: sentences and words. One code point a character.
//
//   CString word("caf\xC3\xA9");              // narrow text is UTF-8
//   word.MakeUpper();                         // one character to one, no locale
//   bool same = word == L"CAF\u00C9";         // true
//   std::string utf8 = word.Utf8();
//
// Positions and counts are in characters. A position outside the text is never an error: the part
// that lies inside it counts.
//
// Copies share their text: copying needs no memory. Where making or changing a text finds none, the
// string reads as empty from then on and IsLost() tells it from an empty text; the engine refuses
// such a sentence. Nothing throws but Utf8(), whose std::string is the caller's.
class VERAL3_API CString {
 public:
  CString() = default;
  CString(const wchar_t* text) noexcept;     // null reads as empty
  CString(const char* utf8) noexcept;        // null reads as empty
  CString(std::wstring_view text) noexcept;  // copied
  CString(std::string_view utf8) noexcept;   // decoded; bad bytes become U+FFFD
  CString(const std::wstring& text) noexcept : CString(std::wstring_view(text)) {}
  CString(const std::string& utf8) noexcept : CString(std::string_view(utf8)) {}

  int GetLength() const { return static_cast<int>(Text().size()); }
  bool IsEmpty() const { return Text().empty(); }
  void Empty() { *this = CString(); }

  // Whether memory ran out for the text.
  bool IsLost() const { return m_lost; }

  // The character at `index`, L'\0' outside the text.
  wchar_t GetAt(int index) const;
  wchar_t operator[](int index) const { return GetAt(index); }

  // Zero-terminated text; valid until the string changes or ends.
  const wchar_t* GetString() const { return m_str ? m_str->c_str() : L""; }
  operator std::wstring_view() const { return Text(); }
  std::string Utf8() const;

  // Negative, zero or positive, by character code (case matters).
  int Compare(std::wstring_view other) const;

  // First place at or after `start`, -1 when there is none.
  int Find(wchar_t c, int start = 0) const;
  int Find(std::wstring_view part, int start = 0) const;

  CString Left(int count) const;
  CString Right(int count) const;
  CString Mid(int first) const;
  CString Mid(int first, int count) const;

  // Upper case in place, one character to one.
  CString& MakeUpper();

  CString& operator+=(std::wstring_view text);
  CString& operator+=(wchar_t c);
  friend CString operator+(CString a, std::wstring_view b) { return a += b; }

  friend bool operator==(const CString& a, const CString& b) { return a.Text() == b.Text(); }
  friend bool operator==(const CString& a, const wchar_t* b) {
    return a.Text() == std::wstring_view(b ? b : L"");
  }
  friend std::strong_ordering operator<=>(const CString& a, const CString& b) {
    return a.Compare(b) <=> 0;
  }

 private:
  std::wstring_view Text() const { return m_str ? std::wstring_view(*m_str) : std::wstring_view(); }

  // Takes over what `make` returns, a std::wstring.
  template <typename Make>
  void Hold(Make make) noexcept;

  std::shared_ptr<const std::wstring> m_str;  // null: empty; never changed, copies have it too
  bool m_lost = false;
};
