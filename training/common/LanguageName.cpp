#include "training/common/LanguageName.h"

#include <stdexcept>
#include <string>

namespace veral3::training {

const LanguageRow& LanguageNamed(std::string_view text) {
  if (const LanguageRow* const row = FindLanguage(text)) return *row;
  for (const LanguageRow& row : Languages()) {
    if (text == std::to_string(static_cast<int>(row.language))) return row;
  }
  throw std::runtime_error("no language is called \"" + std::string(text) + "\"; there are " +
                           LanguageCodes(", "));
}

const LanguageRow& RowOf(LanguageType language) {
  if (const LanguageRow* const row = FindLanguage(language)) return *row;
  throw std::runtime_error("no such language");
}

}  // namespace veral3::training
