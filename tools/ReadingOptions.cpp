#include "tools/ReadingOptions.h"

#include <CLI/Validators.hpp>
#include <filesystem>
#include <utility>

#include "recognition/Languages.h"
#include "tools/LanguageOption.h"
#include "tools/SentencePlan.h"
#include "tools/TextFiles.h"

namespace veral3::tools {

void AddRecordingOptions(CLI::App& command, RecordingOptions& options,
                         const std::vector<std::string>& formats, const std::string& done) {
  command
      .add_option("FILE", options.files,
                  "Recordings: WAV, FLAC, OGG, MP3, AIFF and what else libsndfile or, where it is "
                  "there, ffmpeg reads, of any rate and number of channels, up to 15 minutes each; "
                  "- is standard input")
      ->type_name("");
  AddLanguageOption(command, options.language, "Language that is spoken");
  command.add_option("--format", options.format, "Form of the result (default table)")
      ->check(CLI::IsMember(formats))
      ->type_name("FORMAT");
  command
      .add_option("-o,--output", options.output,
                  "File for the result, or folder (ending in / if it is new) for one file a "
                  "recording; without it standard output")
      ->type_name("PATH");
  command
      .add_option("--resources", options.resources,
                  "Folder of dictionaries and models (default: share/veral3 of the installation)")
      ->type_name("FOLDER");
  command
      .add_option("--jobs", options.jobs, "Recordings " + done + " at the same time (default 1)")
      ->check(CLI::Range(1, 256))
      ->type_name("N");
  command.add_flag("--verbose", options.verbose, "Tell what was loaded");
}

void AddReadingOptions(CLI::App& command, ReadingOptions& options,
                       const std::vector<std::string>& formats, const std::string& done) {
  AddRecordingOptions(command, options, formats, done);
  command
      .add_option("--text", options.texts,
                  "The sentence that was read; with several (up to 8), the one that fits best is "
                  "found")
      ->allow_extra_args(false)
      ->type_name("SENTENCE");
  command
      .add_option("--text-file", options.text_file,
                  "UTF-8 file with candidate sentences, one a line")
      ->type_name("TXT");
  command
      .add_option("--list", options.list,
                  "UTF-8 file with a recording a line: path (from the list's folder), tab, "
                  "sentence; further candidates behind further tabs")
      ->type_name("TSV");
  command.add_flag("--skip-unknown", options.skip_unknown,
                   "Pass over words that the dictionary lacks instead of stopping");
}

Result<std::vector<AlignJob>> JobsOf(const ReadingOptions& options) {
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

std::vector<RunFile> TextFilesOf(const ReadingOptions& options) {
  std::vector<RunFile> files;
  if (options.list) files.push_back({"the list", *options.list});
  if (options.text_file) files.push_back({"the text file", *options.text_file});
  return files;
}

std::vector<std::string> FilesOf(const std::vector<AlignJob>& jobs) {
  std::vector<std::string> files;
  for (const AlignJob& job : jobs) files.push_back(job.file);
  return files;
}

bool LoadFor(const RecordingOptions& options, ResourceUse use, Console& console) {
  const LanguageType language = options.language;
  const auto folder = FindResources(options.resources, language);
  if (!folder) {
    console.Error(folder.Error());
    return false;
  }
  const Result<LoadedResources> loaded = LoadResources(*folder, language, use);
  if (!loaded) {
    console.Lines(loaded.Error());
    return false;
  }
  if (options.verbose) {
    console.Error("resources: " + folder->string());
    console.Lines(loaded->messages);
  }
  console.Lines(loaded->missing);
  return true;
}

bool PlanFor(const ReadingOptions& options, std::vector<AlignJob>& jobs, Console& console) {
  const SentencePlan plan = PlanSentences(jobs, options.language, options.skip_unknown);
  console.Lines(plan.messages);
  return plan.usable;
}

}  // namespace veral3::tools
