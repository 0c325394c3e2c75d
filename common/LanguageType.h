#pragma once

#include <cstdint>

// The language of an exercise. Any other value makes an object that refuses every operation.
enum LanguageType : std::int32_t {
  kLanguageEnglish = 1,   // American English, with word stress
  kLanguageChinese = 2,   // Mandarin as spoken in Taiwan, with tones
  kLanguageJapanese = 3,  // Tokyo Japanese
};
