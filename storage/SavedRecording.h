#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/AlignInfo.h"
#include "core/WordSpans.h"

namespace veral3 {

// What a SavedAlignedAudio has loaded: the record, and what follows from it.
struct SavedRecording {
  AlignInfo info;
  std::string phonemes;                      // the whole field, so up to its first zero byte
  WordSpans words;                           // which syllables a word has
  std::vector<std::int32_t> syllable_pitch;  // [Hz]
};

// `info`: one with sound counts.
std::shared_ptr<const SavedRecording> MakeSavedRecording(const AlignInfo& info);

// Writes what `audio` answers and what its record `info` holds to standard error.
void DumpRecording(AlignedAudio& audio, const AlignInfo& info);

}  // namespace veral3
