#include "tools/TutorCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <vector>

#include "recognition/Languages.h"
#include "storage/SavedAlignedAudio.h"
#include "tools/Console.h"
#include "tools/ExitStatus.h"
#include "tools/LanguageOption.h"
#include "tools/MakeTutor.h"
#include "tools/Numbers.h"
#include "tools/PrintableText.h"
#include "tools/Resources.h"
#include "tools/RunFiles.h"
#include "tools/RunReports.h"
#include "tools/SentencePlan.h"
#include "tools/Shortened.h"
#include "tools/TextFiles.h"

namespace veral3::tools {
namespace {

constexpr const char* kExamples = R"(Examples:
  veral3 tutor --lang en --text "The weather is nice today" --teacher "A. Smith" \
    weather.flac -o weather-tutor.wav
  veral3 inspect weather-tutor.wav

Exit status: 0 written, 1 the recording cannot be a tutor's, 2 wrong usage (nothing is read then).)";

std::uint32_t Today() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return static_cast<std::uint32_t>((local.tm_year + 1900) * 10000 + (local.tm_mon + 1) * 100 +
                                    local.tm_mday);
}

// YYYY-MM-DD as a number; nothing when the calendar has no such day.
std::optional<std::uint32_t> DateOf(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const auto number = [&](std::size_t begin, std::size_t length) {
    unsigned value = 10000;  // no month, no day
    const char* const first = text.data() + begin;
    const auto [end, error] = std::from_chars(first, first + length, value);
    return error == std::errc() && end == first + length ? value : 10000;
  };
  const unsigned year = number(0, 4);
  const unsigned month = number(5, 2);
  const unsigned day = number(8, 2);
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(year)),
                                         std::chrono::month(month), std::chrono::day(day)};
  if (year >= 10000 || !date.ok()) return std::nullopt;
  return year * 10000 + month * 100 + day;
}

std::string TooLong(const std::string& what, std::size_t bytes, std::size_t most) {
  return what + " is too long: " + std::to_string(bytes) +
         " bytes, of which a tutor file holds at most " + std::to_string(most);
}

std::string UsageError(const TutorOptions& options) {
  if (!IsUtf8(options.text)) return "the text of --text is not UTF-8";
  if (!IsUtf8(options.teacher)) return "the name of --teacher is not UTF-8";
  if (options.text.size() > kMaxSentenceBytes)
    return TooLong("the text of --text", options.text.size(), kMaxSentenceBytes);
  if (options.teacher.size() > kMaxTeacherBytes)
    return TooLong("the name of --teacher", options.teacher.size(), kMaxTeacherBytes);
  if (!options.date.empty() && !DateOf(options.date)) {
    return "\"" + Shortened(options.date) + "\" is no date; write it as 2026-11-21";
  }
  return RunFilesProblem({{"the recording", options.file}}, {{"the tutor file", options.output}});
}

// False after a message.
bool Load(const TutorOptions& options, LanguageType language, Console& console) {
  const auto folder = FindResources(options.resources, language);
  if (!folder) {
    console.Error(folder.Error());
    return false;
  }
  const Result<LoadedResources> loaded = LoadResources(*folder, language, ResourceUse::kMeasure);
  if (!loaded) {
    console.Lines(loaded.Error());
    return false;
  }
  if (options.verbose) {
    console.Error("resources: " + folder->string());
    console.Lines(loaded->messages);
  }
  // What else may be missing leaves nothing out of a tutor file.
  if (HasTones(language) && !LoadedModels(language).tone) {
    console.Lines(loaded->missing + "a " + std::string(LanguageName(language)) +
                  " tutor file holds the tones: it needs that model");
    return false;
  }
  return true;
}

void PrintSummary(const std::string& path, TutorFile& tutor) {
  const HLYFile file = AsHLYFile(tutor);
  SavedAlignedAudio audio(tutor.language);
  HLYFile copy(file);
  if (audio.LoadFromHLY(&copy) != 0) return;
  const std::string line = PrintableText(path) + ": " + std::to_string(audio.GetNumOfWords()) +
                           " words, " + std::to_string(audio.GetNumOfSyllables()) + " syllables, " +
                           std::to_string(audio.GetNumOfPhonemes()) + " phonemes, " +
                           Fixed(Seconds(audio.GetNumOfSamples()), 3) + " s\n";
  std::fputs(line.c_str(), stdout);
}

}  // namespace

CLI::App* AddTutorCommand(CLI::App& app, TutorOptions& options) {
  CLI::App* tutor = app.add_subcommand(
      "tutor", "Makes a tutor file of a recording: learners are graded against it");
  tutor
      ->add_option("FILE", options.file,
                   "The recording: WAV, FLAC, OGG, MP3, AIFF and what else libsndfile or, where it "
                   "is there, ffmpeg reads, up to 5.4 minutes; - is standard input")
      ->type_name("")
      ->required();
  AddLanguageOption(*tutor, options.language, "Language of the sentence");
  tutor->add_option("--text", options.text, "The sentence that was read")
      ->type_name("SENTENCE")
      ->required();
  tutor->add_option("--teacher", options.teacher, "Who read it")->type_name("NAME");
  tutor->add_option("--date", options.date, "Day of the recording (default today)")
      ->type_name("YYYY-MM-DD");
  tutor->add_option("-o,--output", options.output, "The tutor file to write: a WAV file")
      ->type_name("PATH")
      ->required();
  tutor
      ->add_option("--resources", options.resources,
                   "Folder of dictionaries and models (default: share/veral3 of the installation)")
      ->type_name("FOLDER");
  tutor->add_flag("--skip-unknown", options.skip_unknown,
                  "Pass over words that the dictionary lacks instead of stopping");
  tutor->add_flag("--verbose", options.verbose, "Tell what was loaded");
  tutor->footer(kExamples);
  return tutor;
}

int RunTutor(const TutorOptions& options) {
  Console console;
  if (const std::string error = UsageError(options); !error.empty()) {
    console.Error(error);
    return kWrongUsage;
  }
  const LanguageType language = options.language;
  if (!Load(options, language, console)) return kWrongUsage;
  std::vector<AlignJob> jobs = {{options.file, {options.text}, {}}};
  const SentencePlan plan = PlanSentences(jobs, language, options.skip_unknown);
  console.Lines(plan.messages);
  if (!plan.usable) return kWrongUsage;

  std::string messages;
  std::string error = ErrorOf([&]() -> std::string {
    Result<TutorFile> tutor = MakeTutor(jobs.front(), language, messages);
    if (!tutor) return options.file + ": " + tutor.Error();
    tutor->teacher = options.teacher;
    tutor->date = DateOf(options.date).value_or(Today());
    const std::string problem = WriteTutor(options.output, *tutor);
    if (!problem.empty()) return options.output + ": " + problem;
    PrintSummary(options.output, *tutor);
    return FinishStandardOutput();
  });
  PrintMessages(console, options.file, messages);
  console.Error(error);
  return error.empty() ? kAllDone : kSomeFailed;
}

}  // namespace veral3::tools
