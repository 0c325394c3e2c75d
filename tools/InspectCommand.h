#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace veral3::tools {

// What `veral3 inspect` was asked for.
struct InspectOptions {
  std::vector<std::string> files;
  std::string format = "table";
};

// Adds the subcommand to `app`; parsing fills `options`, which must live as long.
CLI::App* AddInspectCommand(CLI::App& app, InspectOptions& options);

// Says on standard output what each file is. Gives the exit status.
int RunInspect(const InspectOptions& options);

}  // namespace veral3::tools
