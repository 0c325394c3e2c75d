#pragma once

#include <CLI/App.hpp>
#include <optional>
#include <string>

#include "tools/ExitStatus.h"
#include "tools/ReadingOptions.h"

namespace veral3::tools {

// What `veral3 align` was asked for.
struct AlignOptions : ReadingOptions {
  std::optional<std::string> tier;
};

// Adds the subcommand to `app`; parsing fills `options`, which must live as long.
CLI::App* AddAlignCommand(CLI::App& app, AlignOptions& options);

// Aligns, writes the results and says on standard error what went wrong. Gives the exit status.
int RunAlign(const AlignOptions& options);

}  // namespace veral3::tools
