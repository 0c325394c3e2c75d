#pragma once

#include <cstdint>

<<<<<<< HEAD
// The model that a file holds, for AnalyzedAudio::LoadModelFile. 5, 6 and 7 are not used.
enum ModelFileType : std::int32_t {
  kFrameModelEnglish = 0,  // phoneme states of a frame: the aligner's scores
  kFrameModelChinese = 1,
  kFrameModelJapanese = 2,
  kToneModelChinese = 3,     // tone of a Chinese syllable
  kUttGoodnessModel = 4,     // whether a recording is a reading of its sentence at all
  kPhonemeModelEnglish = 8,  // which phoneme a segment sounds like
  kPhonemeModelChinese = 9,
  kPhonemeModelJapanese = 10,
=======
// Which model a file holds. LoadModelFile hands any other value back unchanged and loads nothing.
enum ModelFileType : std::int32_t {
  kFrameModelEnglish = 0,      // 195 inputs, 111 phoneme states
  kFrameModelChinese = 1,      // 195 inputs, 99 phoneme states
  kFrameModelJapanese = 2,     // 195 inputs, 78 phoneme states
  kToneModelChinese = 3,       // 68 inputs, 5 tone classes
  kGoodnessModel = 4,          // 16 inputs, 2 outputs, all languages
  kPhonemeModelEnglish = 8,    // 624 inputs, 37 phonemes
  kPhonemeModelChinese = 9,    // 624 inputs, 33 phonemes
  kPhonemeModelJapanese = 10,  // 624 inputs, 26 phonemes
>>>>>>> keras
};
