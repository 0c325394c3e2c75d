#include "tools/Languages.h"

namespace veral3::tools {

std::string_view LanguageCode(LanguageType language) {
  switch (language) {
    case kLanguageChinese:
      return "zh";
    case kLanguageJapanese:
      return "ja";
    case kLanguageEnglish:
      break;
  }
  return "en";
}

std::string_view LanguageName(LanguageType language) {
  switch (language) {
    case kLanguageChinese:
      return "Chinese";
    case kLanguageJapanese:
      return "Japanese";
    case kLanguageEnglish:
      break;
  }
  return "English";
}

LanguageType LanguageOf(std::string_view code) {
  for (const LanguageType language : {kLanguageChinese, kLanguageJapanese}) {
    if (LanguageCode(language) == code) return language;
  }
  return kLanguageEnglish;
}

}  // namespace veral3::tools
