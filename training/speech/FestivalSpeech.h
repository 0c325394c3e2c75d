#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "training/speech/EspeakSpeech.h"

namespace veral3::training {

struct FestivalText {
  std::string text;      // UTF-8
  double stretch = 1.0;  // of the durations
};

// Speaks texts with festival's voice `voice` (ked_diphone), which reads `encoding`, brought to
// 22050 Hz, with the phones and times of its own segment relation. Festival runs as a program of
// its own, once for all texts; its files pass through `folder`, which is made and removed. A text
// for which the voice lacks a diphone comes back without samples and events. Throws
// std::runtime_error where festival is missing or fails, or a text cannot be written in `encoding`.
std::vector<SpokenText> SpeakWithFestival(const std::string& voice, const std::string& encoding,
                                          std::span<const FestivalText> texts,
                                          const std::filesystem::path& folder);

}  // namespace veral3::training
