#include "tools/ReportWriter.h"

#include <cerrno>
#include <cstdio>
#include <map>
#include <system_error>
#include <utility>

namespace veral3::tools {
namespace {

std::filesystem::path ResultPath(const ReportTarget& target, const std::string& file) {
  if (!target.is_folder) return target.output;
  std::filesystem::path name = std::filesystem::path(file).stem();
  name += ExtensionOf(target.format);
  return target.output / name;
}

// A recording's file name without its ending, as NIST has it; with its folders where two recordings
// share the name.
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

}  // namespace

ReportWriter::ReportWriter(ReportTarget target, const std::vector<std::string>& files)
    : m_target(std::move(target)), m_recordings(RecordingNames(files)) {
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
  if (m_target.format == Format::kCsv) Put(CsvHeader());
}

void ReportWriter::Write(const AlignmentReport& report) {
  const std::string text = Text(report);
  const bool last = ++m_written == m_recordings.size();
  if (m_target.is_folder) {
    if (text.empty()) return;
    const std::filesystem::path path = ResultPath(m_target, report.file);
    OutputFile file(path);
    if (m_target.format == Format::kCsv) file.Write(CsvHeader());
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
    Put(m_recordings.size() == 1 ? "\n" : last ? "\n]\n" : ",\n");
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

std::string ReportWriter::Text(const AlignmentReport& report) const {
  switch (m_target.format) {
    case Format::kTable:
      break;
    case Format::kJson:
      return Json(report);
    case Format::kTextGrid:
      return TextGrid(report);
    case Format::kCtm:
      return Ctm(report, m_recordings[m_written], m_target.tier.value_or(Tier::kWords));
    case Format::kCsv:
      return Csv(report, m_target.tier);
    case Format::kAudacity:
      return AudacityLabels(report, m_target.tier.value_or(Tier::kWords));
  }
  return Table(report);
}

std::string CheckTarget(const ReportTarget& target, const std::vector<std::string>& files) {
  const bool takes_tier = target.format == Format::kCtm || target.format == Format::kCsv ||
                          target.format == Format::kAudacity;
  if (target.tier && !takes_tier) return "--tier goes with the formats ctm, csv and audacity only";
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

}  // namespace veral3::tools
