// The `veral3` command: docs/command.md is its manual.

#include <fcntl.h>
#include <unistd.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>
#include <exception>
#include <sstream>
#include <string>
#include <vector>

#include "tools/AlignCommand.h"
#include "tools/AnalyzeCommand.h"
#include "tools/AnnotateCommand.h"
#include "tools/CheckTextCommand.h"
#include "tools/Console.h"
#include "tools/DenoiseCommand.h"
#include "tools/GradeCommand.h"
#include "tools/InspectCommand.h"
#include "tools/Interruption.h"
#include "tools/TutorCommand.h"

namespace {

// What is wrong with the arguments, for people.
std::string UsageError(const CLI::App& app, const CLI::Error& error) {
  const std::vector<std::string> rest = app.remaining();
  if (!app.get_subcommands().empty() || rest.empty()) return error.what();
  if (rest.front().starts_with("-")) return "no option \"" + rest.front() + "\" before a command";
  std::string commands;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    commands += (commands.empty() ? "" : ", ") + command->get_name();
  }
  return "no command \"" + rest.front() + "\"; there are " + commands;
}

// Says what CLI11 stopped at: help and version on standard output, wrong usage on standard error.
int Tell(const CLI::App& app, const CLI::ParseError& error) {
  veral3::tools::Console console;
  if (error.get_exit_code() != 0) {
    console.Error(UsageError(app, error));
    console.Error("veral3 --help and veral3 COMMAND --help tell more");
    return veral3::tools::kWrongUsage;
  }
  std::ostringstream text;
  app.exit(error, text, text);
  std::fputs(text.str().c_str(), stdout);
  const std::string problem = veral3::tools::FinishStandardOutput();
  console.Error(problem);
  return problem.empty() ? veral3::tools::kAllDone : veral3::tools::kSomeFailed;
}

int Run(int argc, char** argv) {
  using veral3::tools::kWrongUsage;
  CLI::App app("Veral3: how a sentence was spoken, word by word and sound by sound");
  app.name("veral3");
  app.set_version_flag("--version", "veral3 " VERAL3_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Example:\n  veral3 align --lang en --text \"Good morning\" recording.wav\n\n"
      "veral3 COMMAND --help tells more.");
  veral3::tools::AlignOptions align;
  const CLI::App* align_command = veral3::tools::AddAlignCommand(app, align);
  veral3::tools::ReadingOptions analyze;
  const CLI::App* analyze_command = veral3::tools::AddAnalyzeCommand(app, analyze);
  veral3::tools::RecordingOptions annotate;
  const CLI::App* annotate_command = veral3::tools::AddAnnotateCommand(app, annotate);
  veral3::tools::DenoiseOptions denoise;
  const CLI::App* denoise_command = veral3::tools::AddDenoiseCommand(app, denoise);
  veral3::tools::GradeOptions grade;
  const CLI::App* grade_command = veral3::tools::AddGradeCommand(app, grade);
  veral3::tools::CheckTextOptions check_text;
  const CLI::App* check_text_command = veral3::tools::AddCheckTextCommand(app, check_text);
  veral3::tools::TutorOptions tutor;
  const CLI::App* tutor_command = veral3::tools::AddTutorCommand(app, tutor);
  veral3::tools::InspectOptions inspect;
  const CLI::App* inspect_command = veral3::tools::AddInspectCommand(app, inspect);

  if (argc < 2) {
    std::fputs(app.help().c_str(), stderr);
    return kWrongUsage;
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return Tell(app, error);
  }
  if (align_command->parsed()) return veral3::tools::RunAlign(align);
  if (analyze_command->parsed()) return veral3::tools::RunAnalyze(analyze);
  if (annotate_command->parsed()) return veral3::tools::RunAnnotate(annotate);
  if (denoise_command->parsed()) return veral3::tools::RunDenoise(denoise);
  if (grade_command->parsed()) return veral3::tools::RunGrade(grade);
  if (check_text_command->parsed()) return veral3::tools::RunCheckText(check_text);
  if (tutor_command->parsed()) return veral3::tools::RunTutor(tutor);
  if (inspect_command->parsed()) return veral3::tools::RunInspect(inspect);
  return kWrongUsage;
}

// A standard stream that the caller has closed stays closed in effect: a file that is opened later
// must not become it, and take messages into a result.
void HoldStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) == -1)
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

}  // namespace

int main(int argc, char** argv) {
  HoldStandardStreams();
  veral3::tools::CleanUpOnSignals();
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    veral3::tools::Console().Error(error.what());
    return veral3::tools::kSomeFailed;
  }
}
