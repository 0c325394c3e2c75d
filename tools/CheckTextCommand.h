#pragma once

#include <CLI/App.hpp>
#include <optional>
#include <string>
#include <vector>

#include "common/LanguageType.h"

namespace veral3::tools {

// What `veral3 check-text` was asked for.
struct CheckTextOptions {
  LanguageType language{};
  std::vector<std::string> texts;
  std::optional<std::string> text_file;
  std::optional<std::string> reading;
  std::string format = "table";
  std::optional<std::string> resources;
};

// Adds the subcommand to `app`; parsing fills `options`, which must live as long.
CLI::App* AddCheckTextCommand(CLI::App& app, CheckTextOptions& options);

// Prints what the engine will make of the texts. Gives the exit status: 0 when every word is known,
// 1 when the dictionary lacks some, 2 for wrong usage.
int RunCheckText(const CheckTextOptions& options);

}  // namespace veral3::tools
