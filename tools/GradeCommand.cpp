#include "tools/GradeCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

#include "tools/GradeFormats.h"
#include "tools/GradeJobs.h"
#include "tools/GradePage.h"
#include "tools/Languages.h"
#include "tools/OutputFile.h"
#include "tools/RunReports.h"
#include "tools/Tutor.h"
#include "tools/TutorFile.h"

namespace veral3::tools {
namespace {

constexpr const char* kExamples = R"(Examples:
  veral3 grade --lang en --tutor tutor.wav learner1.wav learner2.wav
  veral3 grade --lang en --tutor plain.wav --text "Good morning" --report page.html learner.wav
  veral3 grade --lang en --pronunciation-only --text "Good morning" learner.wav

Exit status: 0 all done, 1 the tutor or some learner failed, 2 wrong usage (nothing is read then).)";

std::string TextOf(const GradeReport& report, Format format) {
  if (format == Format::kJson) return JsonText(GradeJson(report));
  return format == Format::kCsv ? GradeCsv(report) : GradeTable(report);
}

// What is wrong with the page's place, "" when nothing is.
std::string CheckPage(const GradeOptions& options, const std::vector<std::string>& files) {
  if (options.report.empty()) return "";
  std::error_code error;
  if (std::filesystem::is_directory(options.report, error)) {
    return options.report + " is a folder; name a file";
  }
  std::vector<std::string> sources = files;
  if (options.tutor) sources.push_back(*options.tutor);
  for (const std::string& file : sources) {
    if (std::filesystem::equivalent(options.report, file, error)) {
      return "the report would overwrite the recording " + file;
    }
  }
  if (!options.output.empty() && std::filesystem::weakly_canonical(options.report, error) ==
                                     std::filesystem::weakly_canonical(options.output, error)) {
    return "--report and --output name the same file";
  }
  return "";
}

// The way to the tutor: first what its file says, later, with resources, the tutor itself.
struct TutorPlan {
  std::optional<TutorFile> stored;
  std::string error;  // the tutor's own: learners get it as theirs
};

TutorPlan PlanTutor(const GradeOptions& options) {
  TutorPlan plan;
  if (!options.tutor || !IsTutorFile(*options.tutor)) return plan;
  const LanguageType language = LanguageOf(options.language);
  Result<TutorFile> file = LoadTutor(*options.tutor);
  if (!file) {
    plan.error = file.Error();
  } else if (file->language != language) {
    plan.error = "speaks " + std::string(LanguageName(file->language)) + ", not " +
                 std::string(LanguageName(language));
  } else {
    plan.stored = std::move(*file);
  }
  return plan;
}

// Lets each job read the tutor's sentence; a job whose candidates lack it gets an error.
std::vector<std::string> KeepSentence(std::vector<AlignJob>& jobs, const std::string& sentence,
                                      const std::string& prepared) {
  std::vector<std::string> errors(jobs.size());
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    if (std::ranges::find(jobs[i].prepared, prepared) == jobs[i].prepared.end()) {
      errors[i] = "reads another sentence than the tutor, who reads \"" + sentence + "\"";
    }
    jobs[i].sentences = {sentence};
    jobs[i].prepared = {prepared};
  }
  return errors;
}

RecordingReport FailedRecording(const AlignJob& job, const std::string& error, Format format) {
  GradeReport report;
  report.analysis.alignment = FailedReport(job, error);
  return {"", error, TextOf(report, format)};
}

// Writes the page of all learners. What went wrong, or "".
std::string WritePage(const GradeOptions& options, const std::vector<GradeReport>& reports,
                      const Tutor* tutor) {
  OutputFile page(options.report);
  page.Write(GradePage(reports, tutor != nullptr ? &tutor->drawn : nullptr));
  const std::string error = page.Finish();
  return error.empty() ? "" : options.report + " " + error;
}

// The candidate sentences where the user gave none: the tutor's.
Result<std::vector<AlignJob>> JobsOfLearners(GradeOptions& options, const TutorPlan& plan) {
  using Failure = Result<std::vector<AlignJob>>;
  const bool has_sentence = !options.texts.empty() || options.text_file || options.list;
  if (!has_sentence && plan.stored) {
    options.texts = {plan.stored->sentence};
  } else if (!has_sentence && options.tutor && !plan.error.empty()) {
    return Failure::Failure(*options.tutor + " " + plan.error);
  } else if (!has_sentence && options.tutor) {
    return Failure::Failure(
        "no sentence; a tutor that is no tutor file goes with --text, --text-file "
        "or --list");
  }
  return JobsOf(options);
}

}  // namespace

CLI::App* AddGradeCommand(CLI::App& app, GradeOptions& options) {
  CLI::App* grade =
      app.add_subcommand("grade", "Grades learners against a tutor's reading of the same sentence");
  AddReadingOptions(*grade, options, {"table", "json", "csv"}, "graded");
  grade
      ->add_option("--tutor", options.tutor,
                   "The tutor: a file that `veral3 tutor` made, or any recording together with its "
                   "sentence")
      ->type_name("FILE");
  grade->add_flag("--pronunciation-only", options.pronunciation_only,
                  "Grade the pronunciation alone, without a tutor");
  grade
      ->add_option("--report", options.report,
                   "HTML page to write: one file with everything, to open in a browser")
      ->type_name("HTML");
  grade->footer(kExamples);
  return grade;
}

int RunGrade(GradeOptions options) {
  Console console;
  const auto fail = [&](const std::string& error) {
    console.Error(error);
    return kWrongUsage;
  };
  if (options.tutor && options.pronunciation_only) {
    return fail("--pronunciation-only takes no tutor");
  }
  if (!options.tutor && !options.pronunciation_only) {
    return fail("no tutor; give --tutor, or --pronunciation-only");
  }
  TutorPlan plan = PlanTutor(options);
  Result<std::vector<AlignJob>> jobs = JobsOfLearners(options, plan);
  if (!jobs) return plan.error.empty() ? fail(jobs.Error()) : (fail(jobs.Error()), kSomeFailed);
  const Format format = FormatOf(options.format).value_or(Format::kTable);
  const std::vector<std::string> files = FilesOf(*jobs);
  ReportTarget target = TargetOf(format, options.output);
  if (format == Format::kCsv) target.header = GradeCsvHeader();
  if (std::string error = CheckTarget(target, files); !error.empty()) return fail(error);
  if (std::string error = CheckPage(options, files); !error.empty()) return fail(error);
  if (!LoadFor(options, ResourceUse::kGrade, console)) return kWrongUsage;
  if (!PlanFor(options, *jobs, console)) return kWrongUsage;

  const LanguageType language = LanguageOf(options.language);
  std::optional<Tutor> tutor;
  std::vector<std::string> errors(jobs->size());
  if (options.tutor) {
    std::string messages;
    // A sentence of the tutor's own, prepared as the learners' are.
    AlignJob job{*options.tutor, jobs->front().sentences, jobs->front().prepared};
    if (plan.stored) {
      std::vector<AlignJob> read = {{*options.tutor, {plan.stored->sentence}, {}}};
      if (!PlanFor(options, read, console)) return kWrongUsage;
      job = read.front();
    }
    Result<Tutor> made = !plan.error.empty() ? Result<Tutor>::Failure(plan.error)
                         : plan.stored
                             ? StoredTutor(*options.tutor, std::move(*plan.stored), language)
                             : AnalyzedTutor(job, language, messages);
    if (made) {
      tutor = std::move(*made);
      const auto read = std::ranges::find(job.sentences, tutor->sentence) - job.sentences.begin();
      errors = KeepSentence(*jobs, tutor->sentence, job.prepared[static_cast<std::size_t>(read)]);
    } else {
      plan.error = made.Error();
      console.Error(*options.tutor + ": " + plan.error);
      std::ranges::fill(errors, "not graded: the tutor " + *options.tutor + " " + plan.error);
    }
  }

  std::vector<GradeReport> reports(jobs->size());
  int status = RunReports(
      target, files, options.jobs,
      [&](std::size_t i) {
        const AlignJob& job = (*jobs)[i];
        if (!errors[i].empty()) {
          reports[i].analysis.alignment = FailedReport(job, errors[i]);
          return FailedRecording(job, errors[i], format);
        }
        GradeOutcome outcome = RunGradeJob(job, language, tutor ? &*tutor : nullptr);
        RecordingReport text = {outcome.messages, outcome.report.analysis.alignment.error,
                                TextOf(outcome.report, format)};
        if (!options.report.empty()) reports[i] = std::move(outcome.report);
        return text;
      },
      console);
  if (options.report.empty() || status == kWrongUsage) return status;
  if (std::string error = WritePage(options, reports, tutor ? &*tutor : nullptr); !error.empty()) {
    console.Error(error);
    status = kSomeFailed;
  }
  return status;
}

}  // namespace veral3::tools
