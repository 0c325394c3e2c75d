#pragma once

#include <string_view>

#include "common/LanguageType.h"

// The three languages as the command names them.
namespace veral3::tools {

// "en", "zh" or "ja"; "English", "Chinese" or "Japanese".
std::string_view LanguageCode(LanguageType language);
std::string_view LanguageName(LanguageType language);

// The language of a code; English for any other text.
LanguageType LanguageOf(std::string_view code);

}  // namespace veral3::tools
