#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace veral3::tools {

// A file that is either written whole or not at all: the text goes to a temporary file beside it,
// which takes its name at the end.
//
//   OutputFile file(path);
//   file.Write(text);
//   if (std::string error = file.Finish(); !error.empty()) ...   // one sentence
//
// An object destroyed before Finish leaves what was at `path` as it was.
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

  std::filesystem::path m_path;
  std::filesystem::path m_temporary;
  int m_file = -1;
  std::string m_error;
};

}  // namespace veral3::tools
