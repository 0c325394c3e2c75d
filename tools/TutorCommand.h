#pragma once

#include <CLI/App.hpp>
#include <optional>
#include <string>

#include "common/LanguageType.h"

namespace veral3::tools {

// What `veral3 tutor` was asked for.
struct TutorOptions {
  LanguageType language{};
  std::string text;
  std::string teacher;
  std::string date;  // YYYY-MM-DD; empty: today
  std::string file;
  std::string output;
  std::optional<std::string> resources;
  bool skip_unknown = false;
  bool verbose = false;
};

// Adds the subcommand to `app`; parsing fills `options`, which must live as long.
CLI::App* AddTutorCommand(CLI::App& app, TutorOptions& options);

// Analyses the recording and writes the tutor file. Gives the exit status.
int RunTutor(const TutorOptions& options);

}  // namespace veral3::tools
