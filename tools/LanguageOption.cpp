#include "tools/LanguageOption.h"

#include <CLI/Validators.hpp>

#include "recognition/Languages.h"

namespace veral3::tools {
namespace {

// What is wrong with a language's name, or "".
std::string Problem(const std::string& text) {
  return FindLanguage(text) != nullptr ? "" : "\"" + text + "\" is none of " + LanguageCodes(", ");
}

}  // namespace

void AddLanguageOption(CLI::App& command, LanguageType& language, const std::string& description) {
  command
      .add_option_function<std::string>(
          "--lang",
          [&language](const std::string& text) { language = FindLanguage(text)->language; },
          description)
      ->check(CLI::Validator(Problem, ""))
      ->required()
      ->type_name(LanguageCodes("|"));
}

}  // namespace veral3::tools
