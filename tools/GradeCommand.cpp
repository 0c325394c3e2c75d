#include "tools/GradeCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>
#include <vector>

#include "recognition/Languages.h"
#include "tools/GradeFormats.h"
#include "tools/GradeJobs.h"
#include "tools/GradePage.h"
#include "tools/OutputFile.h"
#include "tools/RunReports.h"
#include "tools/Shortened.h"
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

// What is wrong with the places of the results, "" when nothing is.
std::string CheckPlaces(const GradeOptions& options, const ReportTarget& target,
                        const std::vector<std::string>& files) {
  std::vector<RunFile> read = TextFilesOf(options);
  if (options.tutor) read.push_back({"the tutor", *options.tutor});
  std::vector<RunFile> written;
  if (!options.report.empty()) {
    std::error_code error;
    if (std::filesystem::is_directory(options.report, error)) {
      return options.report + " is a folder; name a file";
    }
    written.push_back({"the page", options.report});
  }
  return CheckTarget(target, files, std::move(read), std::move(written));
}

// What the tutor's file says before any resources are there.
struct TutorPlan {
  std::optional<InputFile> input;  // a plain recording, not read yet
  std::optional<TutorFile> stored;
  std::string error;  // why there is no tutor
};

TutorPlan PlanTutor(const GradeOptions& options) {
  TutorPlan plan;
  if (!options.tutor) return plan;
  Result<InputFile> input = InputFile::Open(*options.tutor);
  if (!input) {
    plan.error = input.Error();
    return plan;
  }
  if (!IsTutorFile(*input)) {
    plan.input = std::move(*input);
    return plan;
  }
  const LanguageType language = options.language;
  Result<TutorFile> file = LoadTutor(*input);
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

// A prepared sentence without what reading it makes nothing of: case, and the signs that part
// words.
std::wstring SpokenPart(const std::string& prepared) {
  CString upper(prepared);
  upper.MakeUpper();
  const std::wstring text(std::wstring_view{upper});
  if (text.find(L'|') != std::wstring::npos) return text;  // inline segments mean what they say
  std::wstring words;
  for (const wchar_t c : text) {
    const bool parts =
        c == L' ' || (c < 0x80 && std::ispunct(static_cast<int>(c)) != 0 && c != L'\'');
    if (!parts) {
      words += c;
    } else if (!words.empty() && words.back() != L' ') {
      words += L' ';
    }
  }
  while (words.ends_with(L' ')) words.pop_back();
  return words;
}

// Lets each job read the tutor's sentence. Why one cannot, "" where it can.
std::vector<std::string> KeepSentence(std::vector<AlignJob>& jobs, const std::string& sentence,
                                      const std::string& prepared) {
  std::vector<std::string> errors(jobs.size());
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    const bool reads_it = std::ranges::any_of(jobs[i].prepared, [&](const std::string& candidate) {
      return SpokenPart(candidate) == SpokenPart(prepared);
    });
    if (!reads_it) {
      errors[i] =
          "reads another sentence than the tutor, who reads \"" + Shortened(sentence) + "\"";
    }
    jobs[i].sentences = {sentence};
    jobs[i].prepared = {prepared};
  }
  return errors;
}

// The tutor, if there is one, and for each job why it cannot be graded, "" where it can.
struct TutorOfJobs {
  bool usable = true;  // false: wrong usage, which was told of
  std::optional<Tutor> tutor;
  std::vector<std::string> errors;
};

TutorOfJobs TakeTutor(const GradeOptions& options, TutorPlan plan, std::vector<AlignJob>& jobs,
                      Console& console) {
  TutorOfJobs taken;
  taken.errors.resize(jobs.size());
  if (!options.tutor) return taken;
  const LanguageType language = options.language;
  AlignJob job{*options.tutor, jobs.front().sentences, jobs.front().prepared};
  if (plan.stored) {
    // A sentence of the tutor's own, prepared as the learners' are.
    std::vector<AlignJob> read = {{*options.tutor, {plan.stored->sentence}, {}}};
    taken.usable = PlanFor(options, read, console);
    if (!taken.usable) return taken;
    job = read.front();
  }
  std::string messages;
  Result<Tutor> tutor = !plan.error.empty() ? Result<Tutor>::Failure(plan.error)
                        : plan.stored ? StoredTutor(job.file, std::move(*plan.stored), language)
                                      : AnalyzedTutor(job, *plan.input, language, messages);
  PrintMessages(console, job.file, messages);
  if (!tutor) {
    console.Error(job.file + ": " + tutor.Error());
    std::ranges::fill(taken.errors, "not graded: the tutor " + job.file + " " + tutor.Error());
    return taken;
  }
  const auto read = std::ranges::find(job.sentences, tutor->sentence) - job.sentences.begin();
  taken.errors = KeepSentence(jobs, tutor->sentence, job.prepared[static_cast<std::size_t>(read)]);
  taken.tutor = std::move(*tutor);
  return taken;
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
  if (!jobs) {
    console.Error(jobs.Error());
    return plan.error.empty() ? kWrongUsage : kSomeFailed;
  }
  const Format format = FormatOf(options.format).value_or(Format::kTable);
  const std::vector<std::string> files = FilesOf(*jobs);
  ReportTarget target = TargetOf(format, options.output);
  if (format == Format::kCsv) target.header = GradeCsvHeader();
  if (std::string error = CheckPlaces(options, target, files); !error.empty()) return fail(error);
  if (!LoadFor(options, ResourceUse::kGrade, console)) return kWrongUsage;
  if (!PlanFor(options, *jobs, console)) return kWrongUsage;

  const TutorOfJobs taken = TakeTutor(options, std::move(plan), *jobs, console);
  if (!taken.usable) return kWrongUsage;
  const Tutor* const tutor = taken.tutor ? &*taken.tutor : nullptr;
  const LanguageType language = options.language;
  std::vector<GradeReport> reports(jobs->size());
  int status = RunReports(
      target, files, options.jobs,
      [&](std::size_t i) {
        const AlignJob& job = (*jobs)[i];
        if (const std::string& error = taken.errors[i]; !error.empty()) {
          reports[i].analysis.alignment = FailedReport(job, error);
          return RecordingReport{"", error, TextOf(reports[i], format)};
        }
        GradeOutcome outcome = RunGradeJob(job, language, tutor);
        RecordingReport text = {outcome.messages, outcome.report.analysis.alignment.error,
                                TextOf(outcome.report, format)};
        if (!options.report.empty()) reports[i] = std::move(outcome.report);
        return text;
      },
      console);
  if (options.report.empty() || status == kWrongUsage) return status;
  if (std::string error = WritePage(options, reports, tutor); !error.empty()) {
    console.Error(error);
    status = kSomeFailed;
  }
  return status;
}

}  // namespace veral3::tools
