#include "tools/LanguageOption.h"

#include <CLI/Validators.hpp>

#include "tools/Languages.h"

namespace veral3::tools {
namespace {

// Puts the code of a language in place of what stands for it; what is wrong, or "".
std::string ToCode(std::string& text) {
  const std::string wanted = CLI::detail::to_lower(text);
  for (const LanguageType language : {kLanguageEnglish, kLanguageChinese, kLanguageJapanese}) {
    const std::string code(LanguageCode(language));
    if (wanted == code || wanted == CLI::detail::to_lower(std::string(LanguageName(language)))) {
      text = code;
      return "";
    }
  }
  return "\"" + text + "\" is none of en, zh, ja";
}

}  // namespace

void AddLanguageOption(CLI::App& command, std::string& language, const std::string& description) {
  command.add_option("--lang", language, description)
      ->transform(CLI::Validator(ToCode, ""))
      ->required()
      ->type_name("en|zh|ja");
}

}  // namespace veral3::tools
