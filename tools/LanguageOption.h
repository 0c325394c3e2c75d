#pragma once

#include <CLI/App.hpp>
#include <string>

namespace veral3::tools {

// Adds the required option --lang to `command`. It takes a code or a name of a language in capital
// or small letters ("en", "EN", "English"); parsing leaves the code in `language`, which must live
// as long.
void AddLanguageOption(CLI::App& command, std::string& language, const std::string& description);

}  // namespace veral3::tools
