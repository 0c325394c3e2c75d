#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "tools/Interruption.h"

namespace veral3::tools {

// A file that is either written whole or not at all: the text goes to a temporary file beside it,
// which takes its name at the end.
//
//   OutputFile file(path);
//   file.Write(text);
//   if (std::string error = file.Finish(); !error.empty()) ...   // one sentence
//
// An object destroyed before Finish leaves what was at `path` as it was, and so does a signal that
// ends the command (tools/Interruption.h).
class OutputFile {
 public:
  explicit OutputFile(std::filesystem::path path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // What went wrong so far, "" while nothing has; at first, that the place cannot be written.
  const std::string& Error() const { return m_error; }

  // Errors show in Error and Finish.
  void Write(std::string_view text);
  std::string Finish();

 private:
  void Fail(const std::string& what);
  void MakeTemporary();

  std::filesystem::path m_path;
  std::string m_temporary;
  std::optional<FileAtRisk> m_at_risk;  // the temporary file
  int m_file = -1;
  std::string m_error;
};

}  // namespace veral3::tools
