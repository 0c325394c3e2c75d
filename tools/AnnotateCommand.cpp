#include "tools/AnnotateCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <string>
#include <vector>

#include "tools/Annotation.h"
#include "tools/Console.h"
#include "tools/ReportWriter.h"
#include "tools/RunReports.h"

namespace veral3::tools {
namespace {

constexpr const char* kExamples = R"(Examples:
  veral3 annotate --lang en recording.wav
  veral3 annotate --lang ja --format audacity --output labels/ a.flac b.ogg

Exit status: 0 all done, 1 some recording failed, 2 wrong usage (nothing is read then).)";

}  // namespace

CLI::App* AddAnnotateCommand(CLI::App& app, RecordingOptions& options) {
  CLI::App* annotate = app.add_subcommand(
      "annotate", "Guesses the phonemes of a recording whose sentence is not known");
  AddRecordingOptions(*annotate, options, {"table", "json", "textgrid", "csv", "audacity"},
                      "annotated");
  annotate->footer(kExamples);
  return annotate;
}

int RunAnnotate(const RecordingOptions& options) {
  Console console;
  const auto fail = [&](const std::string& error) {
    console.Error(error);
    return kWrongUsage;
  };
  const std::vector<std::string>& files = options.files;
  if (files.empty()) return fail("no recording; name one or more files");
  const Format format = FormatOf(options.format).value_or(Format::kTable);
  ReportTarget target = TargetOf(format, options.output);
  if (format == Format::kCsv) target.header = CsvHeader();
  if (const std::string error = CheckTarget(target, files); !error.empty()) return fail(error);
  if (!LoadFor(options, ResourceUse::kAnnotate, console)) return kWrongUsage;
  const LanguageType language = options.language;
  return RunReports(
      target, files, options.jobs,
      [&](std::size_t i) {
        const AnnotateOutcome outcome = RunAnnotateJob(files[i], language);
        return RecordingReport{outcome.messages, outcome.report.error,
                               AnnotationText(outcome.report, format)};
      },
      console);
}

}  // namespace veral3::tools
