#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/AlignmentFormats.h"
#include "tools/OutputFile.h"

namespace veral3::tools {

// Where the reports of a run go, and in which form.
struct ReportTarget {
  Format format = Format::kTable;
  std::optional<Tier> tier;  // where the format takes one; words, and all of them in CSV, without
  std::filesystem::path output;  // empty: standard output
  bool is_folder = false;        // `output` takes a file for each recording
};

// Writes the reports of `files` in their order. Reports with an error appear in JSON only; a target
// file for which there is no text at all stays as it was.
//
//   if (error = CheckTarget(target, files)) ...      // wrong usage
//   ReportWriter writer(target, files);
//   for (...) writer.Write(report);
//   error = writer.Finish();
class ReportWriter {
 public:
  ReportWriter(ReportTarget target, const std::vector<std::string>& files);

  // That the target cannot be written, before anything is; "" when it can.
  const std::string& Error() const { return m_error; }

  void Write(const AlignmentReport& report);

  // The first thing that could not be written, as a sentence; "" when all is well.
  std::string Finish();

 private:
  void Put(std::string_view text);
  std::string Text(const AlignmentReport& report) const;

  ReportTarget m_target;
  std::vector<std::string> m_recordings;  // names in a CTM file
  std::size_t m_written = 0;              // reports so far
  bool m_has_text = false;
  std::unique_ptr<OutputFile> m_file;
  std::string m_error;
};

// What is wrong with writing the reports of `files` to `target`, "" when nothing is: a format that
// holds one recording for several, two results of one name, a result in a recording's place.
std::string CheckTarget(const ReportTarget& target, const std::vector<std::string>& files);

}  // namespace veral3::tools
