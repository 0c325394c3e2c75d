#include "tools/CheckTextCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <cstdio>
#include <string_view>

#include "common/Unicode.h"
#include "recognition/Languages.h"
#include "text/Kana.h"
#include "text/Pinyin.h"
#include "tools/Console.h"
#include "tools/ExitStatus.h"
#include "tools/LanguageOption.h"
#include "tools/PrintableText.h"
#include "tools/Resources.h"
#include "tools/Shortened.h"
#include "tools/TextFiles.h"
#include "tools/TextReport.h"

namespace veral3::tools {
namespace {

constexpr const char* kExamples = R"(Examples:
  veral3 check-text --lang zh "研究生命的起源"
  veral3 check-text --lang ja --text-file sentences.txt --format json
  veral3 check-text --lang zh --reading "le4 se4" 垃圾

Exit status: 0 every word is known, 1 the dictionary lacks some, 2 wrong usage.)";

bool IsHan(wchar_t c) {
  return (c >= 0x3400 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF) || c >= 0x20000 ||
         c == 0x3007;
}

// Why a word does not go with a reading, as the rest of a sentence about it; "" when it does.
std::string Misfit(std::wstring_view word, const Reading& reading, ReadingScript script) {
  if (word.empty() ||
      std::ranges::any_of(word, [](wchar_t c) { return c == L'|' || IsWideSpace(c); })) {
    return "is no word: one without blanks and bars is given its pronunciation";
  }
  // A Chinese character is a syllable. How many a word with other letters has nobody can tell.
  const auto characters = static_cast<std::size_t>(std::ranges::count_if(word, IsHan));
  const std::size_t syllables = reading.starts.size();
  const bool fits = characters == word.size() ? syllables == characters : syllables > characters;
  if (script != ReadingScript::kPinyin || characters == 0 || fits) return "";
  const auto counted = [](std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
  };
  return "has " + counted(characters, "character") + ", the reading " +
         counted(syllables, "syllable");
}

// "pinyin (--lang zh) or kana (--lang ja)".
std::string ScriptsOfReadings() {
  std::string scripts;
  for (const LanguageRow& row : Languages()) {
    if (row.reading == ReadingScript::kSounds) continue;
    scripts += (scripts.empty() ? "" : " or ") + std::string(ReadingName(row.reading)) +
               " (--lang " + row.code + ")";
  }
  return scripts;
}

// Prints each word with the inline pronunciation of the reading.
int PrintInline(const CheckTextOptions& options, LanguageType language, Console& console) {
  const ReadingScript script = FindLanguage(language)->reading;
  if (script == ReadingScript::kSounds) {
    console.Error("--reading takes " + ScriptsOfReadings());
    return kWrongUsage;
  }
  const bool pinyin = script == ReadingScript::kPinyin;
  const auto reading =
      pinyin ? ReadPinyin(*options.reading) : ReadKana(WideFromUtf8(*options.reading));
  if (!reading) {
    console.Error("cannot read \"" + Shortened(*options.reading) + "\": " +
                  (pinyin ? "write pinyin syllables with tone digits, parted by blanks"
                          : "write hiragana or katakana"));
    return kWrongUsage;
  }
  std::string lines;
  for (const std::string& text : options.texts) {
    const std::wstring word = WideFromUtf8(PrintableText(text));
    if (const std::string misfit = Misfit(word, *reading, script); !misfit.empty()) {
      console.Error("\"" + text + "\" " + misfit);
      return kWrongUsage;
    }
    lines += Utf8FromWide(InlinePronunciation(*reading, word)) + "\n";
  }
  std::fputs(lines.c_str(), stdout);
  return kAllDone;
}

}  // namespace

CLI::App* AddCheckTextCommand(CLI::App& app, CheckTextOptions& options) {
  CLI::App* check = app.add_subcommand(
      "check-text", "Show the words and pronunciations that a text will be aligned with");
  AddLanguageOption(*check, options.language, "Language of the text");
  check->add_option("TEXT,--text", options.texts, "Texts to look at")->type_name("");
  check->add_option("--text-file", options.text_file, "UTF-8 file with a text a line")
      ->type_name("TXT");
  check
      ->add_option("--reading", options.reading,
                   "Instead: print TEXT, a word, as an inline pronunciation with this reading "
                   "(pinyin with tone digits, or kana)")
      ->type_name("READING");
  check->add_option("--format", options.format, "Form of the result (default table)")
      ->check(CLI::IsMember({"table", "json"}))
      ->type_name("FORMAT");
  check
      ->add_option("--resources", options.resources,
                   "Folder of dictionaries (default: share/veral3 of the installation)")
      ->type_name("FOLDER");
  check->footer(kExamples);
  return check;
}

namespace {

int Check(const CheckTextOptions& options, Console& console) {
  const LanguageType language = options.language;
  std::vector<std::string> texts = options.texts;
  if (options.text_file) {
    const auto lines = ReadLines(*options.text_file);
    if (!lines) {
      console.Error(*options.text_file + ": " + lines.Error());
      return kWrongUsage;
    }
    texts.insert(texts.end(), lines->begin(), lines->end());
  }
  if (texts.empty()) {
    console.Error("no text");
    return kWrongUsage;
  }
  for (const std::string& text : texts) {
    if (!IsUtf8(text)) {
      console.Error("the text is not UTF-8");
      return kWrongUsage;
    }
  }
  if (options.reading) return PrintInline(options, language, console);

  const auto folder = FindDictionary(options.resources, language);
  if (!folder) {
    console.Error(folder.Error());
    return kWrongUsage;
  }
  if (const auto loaded = LoadDictionary(*folder, language); !loaded) {
    console.Lines(loaded.Error());
    return kWrongUsage;
  }
  const Lexicon lexicon = LexiconOf(language);
  std::vector<TextReport> reports;
  int status = kAllDone;
  for (const std::string& text : texts) {
    reports.push_back(ReportText(text, language, lexicon));
    const TextReport& report = reports.back();
    if (!report.missing.empty() || report.words.empty()) status = kSomeFailed;
  }
  if (options.format == "json") {
    std::fputs(TextJson(reports, language).c_str(), stdout);
    return status;
  }
  std::string missing;
  for (const TextReport& report : reports) {
    if (reports.size() > 1)
      std::printf("%s%s\n", &report == &reports.front() ? "" : "\n",
                  PrintableText(report.text).c_str());
    std::fputs(TextTable(report, language).c_str(), stdout);
    if (missing.empty() && !report.missing.empty()) missing = report.missing.front();
    for (const std::string& symbol : report.unread_symbols) {
      console.Error("not read, write in words what is spoken: " + symbol);
    }
    if (report.words.empty()) console.Error("\"" + Shortened(report.text) + "\" has no words");
  }
  if (!missing.empty()) {
    missing = Shortened(missing);
    console.Lines("the dictionary lacks \"" + missing +
                  "\": " + InlinePronunciationHelp(missing, language));
  }
  return status;
}

}  // namespace

int RunCheckText(const CheckTextOptions& options) {
  Console console;
  const int status = Check(options, console);
  const std::string error = FinishStandardOutput();
  console.Error(error);
  return error.empty() || status == kWrongUsage ? status : kSomeFailed;
}

}  // namespace veral3::tools
