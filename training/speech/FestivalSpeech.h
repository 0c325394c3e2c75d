#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "training/speech/EspeakSpeech.h"

namespace veral3::training {

struct FestivalText {
  std::string text;
  double stretch = 1.0;  // of the durations
};

// Speaks texts with festival's voice `voice` (ked_diphone), brought to 22050 Hz, with the phone
// times of its own segment relation in the names of ArpabetEvents.h. Festival runs as a program of
// its own, once for all texts; its files pass through `folder`, which is made and removed. Throws
// std::runtime_error where festival is missing or fails.
std::vector<SpokenText> SpeakWithFestival(const std::string& voice,
                                          std::span<const FestivalText> texts,
                                          const std::filesystem::path& folder);

}  // namespace veral3::training
