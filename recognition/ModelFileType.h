#pragma once

#include <cstdint>

// Which model a file holds. LoadModelFile hands any other value back unchanged and loads nothing;
// CheckModelFile refuses it.
enum ModelFileType : std::int32_t {
  kFrameModelEnglish = 0,      // 195 inputs, 111 phoneme states
  kFrameModelChinese = 1,      // 195 inputs, 99 phoneme states
  kFrameModelJapanese = 2,     // 195 inputs, 78 phoneme states
  kToneModelChinese = 3,       // 68 inputs, 5 tone classes
  kUttGoodnessModel = 4,       // 16 inputs, 2 outputs, all languages
  kPhonemeModelEnglish = 8,    // 624 inputs, 37 phonemes
  kPhonemeModelChinese = 9,    // 624 inputs, 33 phonemes
  kPhonemeModelJapanese = 10,  // 624 inputs, 26 phonemes
};
