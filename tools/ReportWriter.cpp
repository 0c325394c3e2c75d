#include "tools/ReportWriter.h"

#include <cstdio>
#include <map>
#include <utility>

#include "tools/Console.h"
#include "tools/PrintableText.h"

namespace veral3::tools {
namespace {

// A recording's file name without its ending.
std::string StemOf(const std::string& file) {
  return file == "-" ? "stdin" : std::filesystem::path(file).stem().string();
}

std::filesystem::path ResultPath(const ReportTarget& target, const std::string& file) {
  if (!target.is_folder) return target.output;
  return target.output / (StemOf(file) + std::string(ExtensionOf(target.format)));
}

}  // namespace

ReportTarget TargetOf(Format format, const std::string& output) {
  ReportTarget target;
  target.format = format;
  target.output = output;
  std::error_code error;
  target.is_folder = output.ends_with('/') || std::filesystem::is_directory(target.output, error);
  return target;
}

ReportWriter::ReportWriter(ReportTarget target, const std::vector<std::string>& files)
    : m_target(std::move(target)), m_expected(files.size()) {
  if (m_target.is_folder) {
    std::error_code error;
    std::filesystem::create_directories(m_target.output, error);
    if (error) m_error = m_target.output.string() + " cannot be made: " + error.message();
    return;
  }
  if (!m_target.output.empty()) {
    m_file = std::make_unique<OutputFile>(m_target.output);
    if (!m_file->Error().empty()) m_error = m_target.output.string() + " " + m_file->Error();
  }
  if (m_target.format == Format::kJson && files.size() > 1) Put("[\n");
  Put(m_target.header);
}

void ReportWriter::Write(const std::string& recording, std::string_view result) {
  const std::string table = m_target.format == Format::kTable ? PrintableLines(result) : "";
  const std::string_view text = m_target.format == Format::kTable ? table : result;
  const bool last = ++m_written == m_expected;
  if (m_target.is_folder) {
    if (text.empty()) return;
    const std::filesystem::path path = ResultPath(m_target, recording);
    OutputFile file(path);
    file.Write(m_target.header);
    file.Write(text);
    if (m_target.format == Format::kJson) file.Write("\n");
    const std::string error = file.Finish();
    if (!error.empty() && m_error.empty()) m_error = path.string() + " " + error;
    return;
  }
  const bool had_text = std::exchange(m_has_text, m_has_text || !text.empty());
  if (m_target.format == Format::kTable && !text.empty() && had_text) Put("\n");
  Put(text);
  if (m_target.format == Format::kJson) {
    Put(m_expected == 1 ? "\n" : last ? "\n]\n" : ",\n");
  }
}

std::string ReportWriter::Finish() {
  if (!m_error.empty() || m_target.is_folder) return m_error;
  if (m_file) {
    if (!m_has_text) return "";
    const std::string error = m_file->Finish();
    return error.empty() ? "" : m_target.output.string() + " " + error;
  }
  return FinishStandardOutput();
}

void ReportWriter::Put(std::string_view text) {
  if (m_file) {
    m_file->Write(text);
  } else {
    std::fwrite(text.data(), 1, text.size(), stdout);
  }
}

std::string CheckTarget(const ReportTarget& target, const std::vector<std::string>& files,
                        std::vector<RunFile> read, std::vector<RunFile> written) {
  if (files.size() > 1 && !HoldsSeveralFiles(target.format) && !target.is_folder) {
    return "this format holds one recording; for several name a folder (--output FOLDER/)";
  }
  for (const std::string& file : files) read.push_back({"the recording", file});
  if (target.output.empty()) {
    written.push_back({"the result", "-"});
  } else if (!target.is_folder) {
    written.push_back({"the result", target.output.string()});
  } else {
    std::map<std::filesystem::path, std::string> sources;
    for (const std::string& file : files) {
      const std::filesystem::path result = ResultPath(target, file);
      const auto [found, is_new] = sources.emplace(result, file);
      if (!is_new) {
        return "the results of " + found->second + " and " + file + " would both be " +
               result.string();
      }
      written.push_back({"the result", result.string()});
    }
  }
  return RunFilesProblem(read, written);
}

std::vector<std::string> RecordingNames(const std::vector<std::string>& files) {
  std::map<std::string, int> uses;
  for (const std::string& file : files) ++uses[StemOf(file)];
  std::vector<std::string> names;
  for (const std::string& file : files) {
    const std::string stem = StemOf(file);
    names.push_back(uses[stem] == 1 ? stem
                                    : (std::filesystem::path(file).parent_path() / stem).string());
  }
  return names;
}

}  // namespace veral3::tools
