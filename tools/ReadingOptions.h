#pragma once

#include <CLI/App.hpp>
#include <optional>
#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "tools/AlignJobs.h"
#include "tools/AlignmentFormats.h"
#include "tools/Console.h"
#include "tools/ReportWriter.h"
#include "tools/Resources.h"
#include "tools/Result.h"

// What the subcommands have in common that take recordings of sentences: their options, and the way
// from these to jobs.
//
//   const auto jobs = JobsOf(options);                                     // wrong usage
//   const ReportTarget target = TargetOf(FormatOf(options.format), options.output);
//   if (error = CheckTarget(target, FilesOf(*jobs), TextFilesOf(options)); ...
//   if (!LoadFor(options, ResourceUse::kMeasure, console)) return kWrongUsage;
//   if (!PlanFor(options, *jobs, console)) return kWrongUsage;
namespace veral3::tools {

// Recordings of any content.
struct RecordingOptions {
  LanguageType language{};
  std::vector<std::string> files;
  std::string format = "table";
  std::string output;
  std::optional<std::string> resources;
  int jobs = 1;
  bool verbose = false;
};

// Recordings of sentences.
struct ReadingOptions : RecordingOptions {
  std::vector<std::string> texts;
  std::optional<std::string> text_file;
  std::optional<std::string> list;
  bool skip_unknown = false;
};

// Add the options to `command`; parsing fills `options`, which must live as long. `formats`: what
// --format takes. `done`: what becomes of recordings ("aligned").
void AddRecordingOptions(CLI::App& command, RecordingOptions& options,
                         const std::vector<std::string>& formats, const std::string& done);
void AddReadingOptions(CLI::App& command, ReadingOptions& options,
                       const std::vector<std::string>& formats, const std::string& done);

// The jobs that the options ask for, without prepared sentences.
Result<std::vector<AlignJob>> JobsOf(const ReadingOptions& options);

std::vector<std::string> FilesOf(const std::vector<AlignJob>& jobs);

// The files that the options bring sentences from.
std::vector<RunFile> TextFilesOf(const ReadingOptions& options);

// Loads the resources. What is missing of those that `use` could do without is told of. False after
// a message when that is not enough.
bool LoadFor(const RecordingOptions& options, ResourceUse use, Console& console);

// Prepares the sentences of the jobs. False after messages when one cannot be used.
bool PlanFor(const ReadingOptions& options, std::vector<AlignJob>& jobs, Console& console);

}  // namespace veral3::tools
