#pragma once

#include <cstdint>

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
};
