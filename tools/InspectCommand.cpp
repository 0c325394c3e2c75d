#include "tools/InspectCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <cstdio>

#include "tools/AlignJobs.h"
#include "tools/Console.h"
#include "tools/ExitStatus.h"
#include "tools/Inspection.h"

namespace veral3::tools {
namespace {

constexpr const char* kExamples = R"(Examples:
  veral3 inspect weather-tutor.wav
  veral3 inspect --format json resources/EnglishFrame.model resources/KEN-UTF8Order.txt

Exit status: 0 all known, 1 some file is none of the engine's or damaged, 2 wrong usage.)";

}  // namespace

CLI::App* AddInspectCommand(CLI::App& app, InspectOptions& options) {
  CLI::App* inspect = app.add_subcommand(
      "inspect", "Says what a file of the engine's is and holds: tutor file, dictionary, model");
  inspect->add_option("FILE", options.files, "Files")->type_name("")->required();
  inspect->add_option("--format", options.format, "Form of the result (default table)")
      ->check(CLI::IsMember({"table", "json"}))
      ->type_name("FORMAT");
  inspect->footer(kExamples);
  return inspect;
}

int RunInspect(const InspectOptions& options) {
  Console console;
  int status = kAllDone;
  OrderedJson all = OrderedJson::array();
  std::string tables;
  for (const std::string& file : options.files) {
    const std::string error = ErrorOf([&]() -> std::string {
      const Result<OrderedJson> inspection = Inspect(file);
      if (!inspection) return inspection.Error();
      all.push_back(*inspection);
      tables += (tables.empty() ? "" : "\n") + InspectionTable(*inspection);
      return "";
    });
    if (error.empty()) continue;
    console.Error(file + ": " + error);
    all.push_back({{"file", file}, {"error", error}});
    status = kSomeFailed;
  }
  if (options.format == "json") tables = JsonText(all.size() == 1 ? all.front() : all) + "\n";
  std::fputs(tables.c_str(), stdout);
  if (const std::string error = FinishStandardOutput(); !error.empty()) {
    console.Error(error);
    status = kSomeFailed;
  }
  return status;
}

}  // namespace veral3::tools
