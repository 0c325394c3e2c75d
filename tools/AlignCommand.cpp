#include "tools/AlignCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <utility>

#include "tools/AlignJobs.h"
#include "tools/AudioFile.h"
#include "tools/Console.h"
#include "tools/Languages.h"
#include "tools/ReportWriter.h"
#include "tools/Resources.h"
#include "tools/SentencePlan.h"
#include "tools/TextFiles.h"

namespace veral3::tools {
namespace {

constexpr const char* kExamples = R"(Examples:
  veral3 align --lang en --text "The weather is nice today" recording.wav
  veral3 align --lang en --text "Good morning" --text "Good evening" a.flac b.ogg
  veral3 align --lang en --list sentences.tsv --format textgrid --output grids/

Exit status: 0 all done, 1 some recording failed, 2 wrong usage (nothing is read then).)";

// The jobs that the options ask for, without prepared sentences.
Result<std::vector<AlignJob>> JobsOf(const AlignOptions& options) {
  using Failure = Result<std::vector<AlignJob>>;
  std::vector<AlignJob> jobs;
  if (options.list) {
    if (!options.files.empty() || !options.texts.empty() || options.text_file) {
      return Failure::Failure("--list brings recordings and sentences; it takes no others");
    }
    Result<std::vector<ListEntry>> entries = ReadList(*options.list);
    if (!entries) return Failure::Failure("the list " + *options.list + " " + entries.Error());
    for (ListEntry& entry : *entries) {
      jobs.push_back({std::move(entry.audio), std::move(entry.sentences), {}});
    }
    return jobs;
  }

  std::vector<std::string> sentences = options.texts;
  for (const std::string& text : options.texts) {
    if (!IsUtf8(text)) return Failure::Failure("the text of --text is not UTF-8");
  }
  if (options.text_file) {
    Result<std::vector<std::string>> more = ReadSentences(*options.text_file);
    if (!more) return Failure::Failure("the text file " + *options.text_file + " " + more.Error());
    sentences.insert(sentences.end(), more->begin(), more->end());
  }
  if (sentences.empty()) {
    return Failure::Failure("no sentence; give --text, --text-file or --list");
  }
  if (sentences.size() > kMaxCandidates) {
    return Failure::Failure(std::to_string(sentences.size()) +
                            " sentences; a recording is compared with at most " +
                            std::to_string(kMaxCandidates));
  }
  if (options.files.empty()) return Failure::Failure("no recording; name one or more files");
  for (const std::string& file : options.files) jobs.push_back({file, sentences, {}});
  return jobs;
}

ReportTarget TargetOf(const AlignOptions& options) {
  ReportTarget target;
  target.format = FormatOf(options.format).value_or(Format::kTable);
  if (options.tier) target.tier = TierOf(*options.tier);
  target.output = options.output;
  std::error_code error;
  target.is_folder =
      options.output.ends_with('/') || std::filesystem::is_directory(target.output, error);
  return target;
}

void PrintMessages(Console& console, const std::string& file, const std::string& messages) {
  std::string_view left = messages;
  while (!left.empty()) {
    const std::size_t end = left.find('\n');
    console.Error(file + ": " + std::string(left.substr(0, end)));
    left = end == std::string_view::npos ? std::string_view() : left.substr(end + 1);
  }
}

}  // namespace

CLI::App* AddAlignCommand(CLI::App& app, AlignOptions& options) {
  CLI::App* align = app.add_subcommand(
      "align",
      "Finds where in a recording each word, syllable and phoneme of a sentence is spoken");
  align
      ->add_option("FILE", options.files,
                   "Recordings: WAV, FLAC, OGG, MP3, AIFF and what else libsndfile reads, of any "
                   "rate and number of channels, up to 15 minutes each")
      ->type_name("");
  align->add_option("--lang", options.language, "Language of the sentence")
      ->check(CLI::IsMember({"en", "zh", "ja"}))
      ->type_name("CODE")
      ->required();
  align
      ->add_option("--text", options.texts,
                   "The sentence that was read; with several (up to 8), the one that fits best is "
                   "found")
      ->allow_extra_args(false)
      ->type_name("SENTENCE");
  align
      ->add_option("--text-file", options.text_file,
                   "UTF-8 file with candidate sentences, one a line")
      ->type_name("TXT");
  align
      ->add_option("--list", options.list,
                   "UTF-8 file with a recording a line: path (from the list's folder), tab, "
                   "sentence; further candidates behind further tabs")
      ->type_name("TSV");
  align->add_option("--format", options.format, "Form of the result (default table)")
      ->check(CLI::IsMember({"table", "json", "textgrid", "ctm", "csv", "audacity"}))
      ->type_name("FORMAT");
  align
      ->add_option("--tier", options.tier,
                   "What ctm and audacity hold (default words), and csv (default all)")
      ->check(CLI::IsMember({"words", "syllables", "phonemes"}))
      ->type_name("TIER");
  align
      ->add_option("--output", options.output,
                   "File for the result, or folder (ending in / if it is new) for one file a "
                   "recording; without it standard output")
      ->type_name("PATH");
  align
      ->add_option("--resources", options.resources,
                   "Folder of dictionaries and models (default: share/veral3 of the installation)")
      ->type_name("FOLDER");
  align->add_option("--jobs", options.jobs, "Recordings aligned at the same time (default 1)")
      ->check(CLI::Range(1, 256))
      ->type_name("N");
  align->add_flag("--skip-unknown", options.skip_unknown,
                  "Pass over words that the dictionary lacks instead of stopping");
  align->add_flag("--verbose", options.verbose, "Tell what was loaded");
  align->footer(kExamples);
  return align;
}

int RunAlign(const AlignOptions& options) {
  Console console;
  const LanguageType language = LanguageOf(options.language);
  Result<std::vector<AlignJob>> jobs = JobsOf(options);
  if (!jobs) {
    console.Error(jobs.Error());
    return kWrongUsage;
  }
  std::vector<std::string> files;
  for (const AlignJob& job : *jobs) files.push_back(job.file);
  const ReportTarget target = TargetOf(options);
  if (const std::string error = CheckTarget(target, files); !error.empty()) {
    console.Error(error);
    return kWrongUsage;
  }

  const auto folder = FindResources(options.resources, language);
  if (!folder) {
    console.Error(folder.Error());
    return kWrongUsage;
  }
  const Result<std::string> loaded = LoadResources(*folder, language);
  if (!loaded) {
    console.Error(loaded.Error());
    return kWrongUsage;
  }
  if (options.verbose) console.Error("resources: " + folder->string() + "\n" + *loaded);

  const SentencePlan plan = PlanSentences(*jobs, language, options.skip_unknown);
  console.Error(plan.messages);
  if (!plan.usable) return kWrongUsage;

  ReportWriter writer(target, files);
  if (!writer.Error().empty()) {
    console.Error(writer.Error());
    return kWrongUsage;
  }
  int status = kAllDone;
  std::size_t done = 0;
  console.Progress(0, files.size(), files.front());
  RunAlignJobs(*jobs, language, options.jobs, [&](const AlignOutcome& outcome) {
    PrintMessages(console, outcome.report.file, outcome.messages);
    if (!outcome.report.error.empty()) {
      console.Error(outcome.report.file + ": " + outcome.report.error);
      status = kSomeFailed;
    }
    writer.Write(outcome.report);
    ++done;
    if (done < files.size()) console.Progress(done, files.size(), files[done]);
  });
  if (const std::string error = writer.Finish(); !error.empty()) {
    console.Error(error);
    status = kSomeFailed;
  }
  return status;
}

}  // namespace veral3::tools
