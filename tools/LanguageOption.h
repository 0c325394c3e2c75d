#pragma once

#include <CLI/App.hpp>
#include <string>

#include "common/LanguageType.h"

namespace veral3::tools {

// Adds the required option --lang to `command`. It takes a code or a name of a language in capital
// or small letters ("en", "EN", "English"), and refuses any other; parsing leaves the language in
// `language`, which must live as long.
void AddLanguageOption(CLI::App& command, LanguageType& language, const std::string& description);

}  // namespace veral3::tools
