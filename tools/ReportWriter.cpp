#include "tools/ReportWriter.h"

#include <cerrno>
#include <cstdio>
#include <map>
#include <system_error>
#include <utility>

#include "tools/PrintableText.h"

namespace veral3::tools {
namespace {

std::filesystem::path ResultPath(const ReportTarget& target, const std::string& file) {
  if (!target.is_folder) return target.output;
  std::filesystem::path name = std::filesystem::path(file).stem();
  name += ExtensionOf(target.format);
  return target.output / name;
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
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    return "standard output cannot be written: " + std::generic_category().message(errno);
  }
  return "";
}

void ReportWriter::Put(std::string_view text) {
  if (m_file) {
    m_file->Write(text);
  } else {
    std::fwrite(text.data(), 1, text.size(), stdout);
  }
}

std::string CheckTarget(const ReportTarget& target, const std::vector<std::string>& files) {
  if (files.size() > 1 && !HoldsSeveralFiles(target.format) && !target.is_folder) {
    return "this format holds one recording; for several name a folder (--output FOLDER/)";
  }
  if (target.output.empty()) return "";
  std::error_code error;
  std::map<std::filesystem::path, std::string> sources;
  for (const std::string& file : files) {
    const std::filesystem::path result = ResultPath(target, file);
    if (std::filesystem::equivalent(result, file, error)) {
      return "the result would overwrite the recording " + file;
    }
    const auto [found, is_new] = sources.emplace(result, file);
    if (!is_new && target.is_folder) {
      return "the results of " + found->second + " and " + file + " would both be " +
             result.string();
    }
  }
  return "";
}

std::vector<std::string> RecordingNames(const std::vector<std::string>& files) {
  std::map<std::string, int> uses;
  for (const std::string& file : files) ++uses[std::filesystem::path(file).stem().string()];
  std::vector<std::string> names;
  for (const std::string& file : files) {
    const std::filesystem::path path(file);
    const std::string stem = path.stem().string();
    names.push_back(uses[stem] == 1 ? stem : (path.parent_path() / stem).string());
  }
  return names;
}

}  // namespace veral3::tools
