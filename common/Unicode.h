#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Text in the engine is UTF-8 outside (files, paths, command line) and wide inside, one code point
// a wchar_t. Nothing here reads or sets a locale.
namespace veral3 {

// Decodes UTF-8. A byte that starts no well-formed sequence becomes U+FFFD.
std::wstring WideFromUtf8(std::string_view utf8);

// Encodes as UTF-8. A wchar_t that is no code point (a surrogate, beyond U+10FFFF) becomes U+FFFD.
std::string Utf8FromWide(std::wstring_view wide);

// One character of Utf8FromWide; needs no memory.
class Utf8Character {
 public:
  explicit Utf8Character(wchar_t c);
  std::string_view View() const { return {m_bytes, m_length}; }

 private:
  char m_bytes[4];
  std::size_t m_length;
};

// Upper case of one character, one to one: U+00DF stays, since its upper case has two letters.
wchar_t UpperCase(wchar_t c);

// White space: Unicode's separators and control blanks, U+3000 among them, but not the no-break
// spaces U+00A0, U+2007 and U+202F, which join words.
bool IsWideSpace(wchar_t c);

// True for the Unicode categories P* (punctuation) and S* (symbols).
bool IsWidePunctuation(wchar_t c);

}  // namespace veral3
