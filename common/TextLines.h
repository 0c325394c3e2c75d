#pragma once

#include <locale>
#include <ostream>
#include <sstream>
#include <string_view>

namespace veral3 {

// Lines of figures for a stream that a caller opened. Numbers read as a fresh stream writes them
// (classic locale, default precision), whatever the caller's stream is set to:
//
//   TextLines lines(out);
//   lines << i << "," << probability;
//   lines.End();
//
// A line reaches the stream when it ends, line end (one character 10) included, and whole: where
// memory runs out for it, std::bad_alloc comes out.
class TextLines {
 public:
  explicit TextLines(std::ostream& out) : m_out(out) {
    m_line.imbue(std::locale::classic());
    m_line.exceptions(std::ios::badbit);
  }
  TextLines(const TextLines&) = delete;
  TextLines& operator=(const TextLines&) = delete;

  template <typename T>
  TextLines& operator<<(const T& value) {
    m_line << value;
    return *this;
  }

  void End() {
    m_line << '\n';
    const std::string_view line = m_line.view();
    m_out.write(line.data(), static_cast<std::streamsize>(line.size()));
    m_line.str({});
  }

 private:
  std::ostream& m_out;
  std::ostringstream m_line;
};

}  // namespace veral3
