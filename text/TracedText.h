#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Text on its way to the engine, every character of which knows where it came from.
namespace veral3 {

enum class TextSource { kWritten, kNumber, kGuessed };

// A piece of the original text [code points], and how what stands for it came about.
struct TextOrigin {
  std::size_t begin = 0;
  std::size_t end = 0;
  TextSource source = TextSource::kWritten;
};

class TracedText {
 public:
  TracedText() = default;
  explicit TracedText(std::wstring original);  // every character its own place

  std::wstring_view Text() const { return m_text; }
  std::size_t Size() const { return m_text.size(); }
  wchar_t operator[](std::size_t at) const { return m_text[at]; }

  // What `length` characters from `at` on came from, all together; an empty place behind the last
  // character before `at` where there are none.
  TextOrigin OriginOf(std::size_t at, std::size_t length) const;

  void Append(std::wstring_view text, TextOrigin origin);
  void Append(wchar_t c, TextOrigin origin) { Append(std::wstring_view(&c, 1), origin); }
  void Append(const TracedText& other);
  void Append(const TracedText& other, std::size_t at, std::size_t length);

 private:
  std::wstring m_text;
  std::vector<TextOrigin> m_origins;  // of each character
};

}  // namespace veral3
