#pragma once

#include <string_view>

#include "recognition/Languages.h"

namespace veral3::training {

// The row of a language as the programs' options name it: its code, its name, or its number ("ja",
// "Japanese", "3"). Throws std::runtime_error, which names the codes, for any other text.
const LanguageRow& LanguageNamed(std::string_view text);

// The row of a language. Throws std::runtime_error for a value that names none.
const LanguageRow& RowOf(LanguageType language);

}  // namespace veral3::training
