#pragma once

#include <CLI/App.hpp>

#include "tools/ExitStatus.h"
#include "tools/ReadingOptions.h"

namespace veral3::tools {

// Adds `veral3 analyze` to `app`; parsing fills `options`, which must live as long.
CLI::App* AddAnalyzeCommand(CLI::App& app, ReadingOptions& options);

// Aligns and measures, writes the results and says on standard error what went wrong. Gives the
// exit status.
int RunAnalyze(const ReadingOptions& options);

}  // namespace veral3::tools
