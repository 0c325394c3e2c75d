#include "tools/AlignCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <vector>

#include "tools/AlignJobs.h"
#include "tools/Console.h"
#include "tools/ReportWriter.h"
#include "tools/RunReports.h"

namespace veral3::tools {
namespace {

constexpr const char* kExamples = R"(Examples:
  veral3 align --lang en --text "The weather is nice today" recording.wav
  veral3 align --lang en --text "Good morning" --text "Good evening" a.flac b.ogg
  veral3 align --lang en --list sentences.tsv --format textgrid --output grids/

Exit status: 0 all done, 1 some recording failed, 2 wrong usage (nothing is read then).)";

bool TakesTier(Format format) {
  return format == Format::kCtm || format == Format::kCsv || format == Format::kAudacity;
}

std::string TextOf(const AlignmentReport& report, Format format, std::optional<Tier> tier,
                   const std::string& recording) {
  switch (format) {
    case Format::kTable:
      break;
    case Format::kJson:
      return Json(report);
    case Format::kTextGrid:
      return TextGrid(report);
    case Format::kCtm:
      return Ctm(report, recording, tier.value_or(Tier::kWords));
    case Format::kCsv:
      return Csv(report, tier);
    case Format::kAudacity:
      return AudacityLabels(report, tier.value_or(Tier::kWords));
  }
  return Table(report);
}

}  // namespace

CLI::App* AddAlignCommand(CLI::App& app, AlignOptions& options) {
  CLI::App* align = app.add_subcommand(
      "align",
      "Finds where in a recording each word, syllable and phoneme of a sentence is spoken");
  AddReadingOptions(*align, options, {"table", "json", "textgrid", "ctm", "csv", "audacity"},
                    "aligned");
  align
      ->add_option("--tier", options.tier,
                   "What ctm and audacity hold (default words), and csv (default all)")
      ->check(CLI::IsMember({"words", "syllables", "phonemes"}))
      ->type_name("TIER");
  align->footer(kExamples);
  return align;
}

int RunAlign(const AlignOptions& options) {
  Console console;
  const auto fail = [&](const std::string& error) {
    console.Error(error);
    return kWrongUsage;
  };
  Result<std::vector<AlignJob>> jobs = JobsOf(options);
  if (!jobs) return fail(jobs.Error());
  const Format format = FormatOf(options.format).value_or(Format::kTable);
  std::optional<Tier> tier;
  if (options.tier) tier = TierOf(*options.tier);
  if (tier && !TakesTier(format)) {
    return fail("--tier goes with the formats ctm, csv and audacity only");
  }
  const std::vector<std::string> files = FilesOf(*jobs);
  ReportTarget target = TargetOf(format, options.output);
  if (format == Format::kCsv) target.header = CsvHeader();
  const std::string problem = CheckTarget(target, files, TextFilesOf(options));
  if (!problem.empty()) return fail(problem);
  if (!LoadFor(options, ResourceUse::kAlign, console)) return kWrongUsage;
  if (!PlanFor(options, *jobs, console)) return kWrongUsage;
  const LanguageType language = options.language;
  const std::vector<std::string> recordings = RecordingNames(files);
  return RunReports(
      target, files, options.jobs,
      [&](std::size_t i) {
        const AlignOutcome outcome = RunAlignJob((*jobs)[i], language);
        return RecordingReport{outcome.messages, outcome.report.error,
                               TextOf(outcome.report, format, tier, recordings[i])};
      },
      console);
}

}  // namespace veral3::tools
