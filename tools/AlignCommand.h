#pragma once

#include <CLI/App.hpp>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "tools/AlignmentFormats.h"

namespace veral3::tools {

// Exit statuses of the command.
inline constexpr int kAllDone = 0;
inline constexpr int kSomeFailed = 1;
inline constexpr int kWrongUsage = 2;

// What `veral3 align` was asked for.
struct AlignOptions {
  std::string language = "en";
  std::vector<std::string> texts;
  std::optional<std::string> text_file;
  std::optional<std::string> list;
  std::vector<std::string> files;
  std::string format = "table";
  std::optional<std::string> tier;
  std::string output;
  std::optional<std::string> resources;
  int jobs = 1;
  bool skip_unknown = false;
  bool verbose = false;
};

// Adds the subcommand to `app`; parsing fills `options`, which must live as long.
CLI::App* AddAlignCommand(CLI::App& app, AlignOptions& options);

// Aligns, writes the results and says on standard error what went wrong. Gives the exit status.
int RunAlign(const AlignOptions& options);

}  // namespace veral3::tools
