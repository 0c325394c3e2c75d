#include "tools/AnalyzeCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <utility>
#include <vector>

#include "tools/AnalysisFormats.h"
#include "tools/AnalyzeJobs.h"
#include "tools/Console.h"
#include "tools/ReportWriter.h"
#include "tools/RunReports.h"

namespace veral3::tools {
namespace {

constexpr const char* kExamples = R"(Examples:
  veral3 analyze --lang en --text "The weather is nice today" recording.wav
  veral3 analyze --lang en --list sentences.tsv --format json --output measures/

Exit status: 0 all done, 1 some recording failed, 2 wrong usage (nothing is read then).)";

std::string TextOf(const AnalysisReport& report, Format format) {
  if (format == Format::kJson) return JsonText(AnalysisJson(report));
  return format == Format::kCsv ? AnalysisCsv(report) : AnalysisTable(report);
}

}  // namespace

CLI::App* AddAnalyzeCommand(CLI::App& app, ReadingOptions& options) {
  CLI::App* analyze = app.add_subcommand(
      "analyze", "Measures how a sentence was said: pitch, loudness, length and likely phonemes");
  AddReadingOptions(*analyze, options, {"table", "json", "csv"}, "analysed");
  analyze->footer(kExamples);
  return analyze;
}

int RunAnalyze(const ReadingOptions& options) {
  Console console;
  const auto fail = [&](const std::string& error) {
    console.Error(error);
    return kWrongUsage;
  };
  Result<std::vector<AlignJob>> jobs = JobsOf(options);
  if (!jobs) return fail(jobs.Error());
  const Format format = FormatOf(options.format).value_or(Format::kTable);
  const std::vector<std::string> files = FilesOf(*jobs);
  ReportTarget target = TargetOf(format, options.output);
  if (format == Format::kCsv) target.header = AnalysisCsvHeader();
  const std::string problem = CheckTarget(target, files, TextFilesOf(options));
  if (!problem.empty()) return fail(problem);
  if (!LoadFor(options, ResourceUse::kMeasure, console)) return kWrongUsage;
  if (!PlanFor(options, *jobs, console)) return kWrongUsage;
  const LanguageType language = options.language;
  return RunReports(
      target, files, options.jobs,
      [&](std::size_t i) {
        const AnalyzeOutcome outcome = RunAnalyzeJob((*jobs)[i], language);
        return RecordingReport{outcome.messages, outcome.report.alignment.error,
                               TextOf(outcome.report, format)};
      },
      console);
}

}  // namespace veral3::tools
