#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/AlignmentFormats.h"
#include "tools/OutputFile.h"
#include "tools/RunFiles.h"

namespace veral3::tools {

// Where the texts of a run go, and how several of them make one file.
struct ReportTarget {
  Format format = Format::kTable;  // JSON objects become an array, tables are parted by blank lines
  std::string header;              // the first line of every file
  std::filesystem::path output;    // empty: standard output
  bool is_folder = false;          // `output` takes a file for each recording
};

// `output` is a folder when it is one or ends in a slash.
ReportTarget TargetOf(Format format, const std::string& output);

// Writes the texts of `files` in their order. An empty text (of a recording that failed) leaves no
// trace; a target file for which there is no text at all stays as it was.
//
//   if (error = CheckTarget(target, files)) ...      // wrong usage
//   ReportWriter writer(target, files);
//   for (...) writer.Write(file, text);
//   error = writer.Finish();
class ReportWriter {
 public:
  ReportWriter(ReportTarget target, const std::vector<std::string>& files);

  // That the target cannot be written, before anything is; "" when it can.
  const std::string& Error() const { return m_error; }

  void Write(const std::string& recording, std::string_view result);

  // The first thing that could not be written, as a sentence; "" when all is well.
  std::string Finish();

 private:
  void Put(std::string_view text);

  ReportTarget m_target;
  std::size_t m_expected;
  std::size_t m_written = 0;  // texts so far
  bool m_has_text = false;
  std::unique_ptr<OutputFile> m_file;
  std::string m_error;
};

// What is wrong with writing the texts of `files` to `target`, "" when nothing is: a format that
// holds one recording for several, two results of one name, a result in the place of a file that is
// read. `read`: what is read besides `files`; `written`: what is written besides the texts.
std::string CheckTarget(const ReportTarget& target, const std::vector<std::string>& files,
                        std::vector<RunFile> read = {}, std::vector<RunFile> written = {});

// Each recording's file name without its ending, "stdin" for standard input; with its folders where
// two share the name.
std::vector<std::string> RecordingNames(const std::vector<std::string>& files);

}  // namespace veral3::tools
