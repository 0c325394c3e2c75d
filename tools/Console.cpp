#include "tools/Console.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <sstream>
#include <string>
#include <system_error>

#include "common/Unicode.h"
#include "tools/PrintableText.h"

namespace veral3::tools {
namespace {

constexpr std::size_t kProgressFrom = 3;    // files
constexpr std::size_t kProgressWidth = 60;  // characters of the file's name

void WriteError(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

}  // namespace

Console::Console() : m_is_terminal(isatty(STDERR_FILENO) == 1) {}

void Console::Error(std::string_view message) {
  if (!message.empty()) Line(message);
}

void Console::Lines(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    Line(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
}

void Console::Line(std::string_view line) {
  ClearProgress();
  WriteError("veral3: " + PrintableText(line) + "\n");
  std::fflush(stderr);
}

void Console::Progress(std::size_t done, std::size_t total, std::string_view file) {
  if (!m_is_terminal || total < kProgressFrom) return;
  ClearProgress();
  std::wstring name = WideFromUtf8(PrintableText(file));
  if (name.size() > kProgressWidth) name.replace(0, name.size() - kProgressWidth + 3, L"...");
  std::ostringstream line;
  line << "[" << done << "/" << total << "] " << Utf8FromWide(name);
  WriteError(line.view());
  std::fflush(stderr);
  m_has_progress = true;
}

void Console::ClearProgress() {
  if (!m_has_progress) return;
  WriteError("\r\x1B[K");
  m_has_progress = false;
}

std::string FinishStandardOutput() {
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return "";
  // An earlier write may have failed, whose reason is gone.
  return "standard output cannot be written" +
         (errno != 0 ? ": " + std::generic_category().message(errno) : "");
}

}  // namespace veral3::tools
