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

  // Writes "veral3: " and one message, printable and on one line whatever file names and other
  // foreign text stand in it. Nothing for an empty one.
  void Error(std::string_view message);

  // The same for each line of a text whose line ends are our own; a missing last one is added. Who
  // makes such a text puts foreign text into it through PrintableText.
  void Lines(std::string_view text);

  // Shows how far a list of `total` files has come. Only on a terminal, and from three files on.
  void Progress(std::size_t done, std::size_t total, std::string_view file);

 private:
  void Line(std::string_view line);
  void ClearProgress();

  bool m_is_terminal;
  bool m_has_progress = false;
};

// Writes out what is left of standard output. The sentence is on why not all of it could be
// written, as on a full disk; "" when all is well.
std::string FinishStandardOutput();

}  // namespace veral3::tools
