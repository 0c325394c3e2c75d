#pragma once

#include <CLI/App.hpp>
#include <optional>
#include <string>

#include "tools/ExitStatus.h"
#include "tools/ReadingOptions.h"

namespace veral3::tools {

// What `veral3 grade` was asked for.
struct GradeOptions : ReadingOptions {
  std::optional<std::string> tutor;
  bool pronunciation_only = false;
  std::string report;  // "" for none
};

// Adds the subcommand to `app`; parsing fills `options`, which must live as long.
CLI::App* AddGradeCommand(CLI::App& app, GradeOptions& options);

// Grades, writes the results and says on standard error what went wrong. Gives the exit status.
int RunGrade(GradeOptions options);

}  // namespace veral3::tools
