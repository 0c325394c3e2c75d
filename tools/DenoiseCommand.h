#pragma once

#include <CLI/App.hpp>
#include <string>

#include "tools/ExitStatus.h"

namespace veral3::tools {

// What `veral3 denoise` was asked for.
struct DenoiseOptions {
  std::string input;
  std::string output;
  int policy = 1;
};

// Adds the subcommand to `app`; parsing fills `options`, which must live as long.
CLI::App* AddDenoiseCommand(CLI::App& app, DenoiseOptions& options);

// Writes the recording with less noise. Gives the exit status.
int RunDenoise(const DenoiseOptions& options);

}  // namespace veral3::tools
