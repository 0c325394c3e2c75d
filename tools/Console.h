#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace veral3::tools {

// Standard error of the command: messages and, on a terminal, a line of progress that gives way to
// them. One thread writes.
class Console {
 public:
  Console();
  ~Console() { ClearProgress(); }
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  // Writes "veral3: " and the text, one line at a time; a missing last line end is added.
  void Error(std::string_view text);

  // Shows how far a list of `total` files has come. Only on a terminal, and from three files on.
  void Progress(std::size_t done, std::size_t total, std::string_view file);

 private:
  void ClearProgress();

  bool m_is_terminal;
  bool m_has_progress = false;
};

// Writes out what is left of standard output. The sentence is on why not all of it could be
// written, as on a full disk; "" when all is well.
std::string FinishStandardOutput();

}  // namespace veral3::tools
