#pragma once

#include <CLI/App.hpp>

#include "tools/ExitStatus.h"
#include "tools/ReadingOptions.h"

namespace veral3::tools {

// Adds `veral3 annotate` to `app`; parsing fills `options`, which must live as long.
CLI::App* AddAnnotateCommand(CLI::App& app, RecordingOptions& options);

// Annotates, writes the results and says on standard error what went wrong. Gives the exit status.
int RunAnnotate(const RecordingOptions& options);

}  // namespace veral3::tools
