#pragma once

#include <CLI/App.hpp>
#include <exception>
#include <string>

#include "training/common/LanguageName.h"

namespace veral3::training {

// Adds --language to a program: en, zh or ja, or the number of one. Parsing leaves the language in
// `language`, which must live as long.
inline CLI::Option* AddLanguageOption(CLI::App& app, LanguageType& language) {
  const auto problem = [](const std::string& text) -> std::string {
    try {
      LanguageNamed(text);
      return "";
    } catch (const std::exception& error) {
      return error.what();
    }
  };
  return app
      .add_option_function<std::string>(
          "--language",
          [&language](const std::string& text) { language = LanguageNamed(text).language; },
          "The language: " + LanguageCodes(", "))
      ->check(CLI::Validator(problem, ""))
      ->type_name(LanguageCodes("|"));
}

}  // namespace veral3::training
