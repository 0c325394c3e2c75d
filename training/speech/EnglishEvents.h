#pragma once

#include <string_view>

#include "training/speech/PhonemeEvents.h"

namespace veral3::training {

enum class EnglishAccent { kAmerican, kBritish };

// espeak-ng's phoneme events of an English voice in the symbols of the English set.
const EventTable& EnglishEventTable(EnglishAccent accent);

// Phonemes whose closure espeak-ng leaves with the phoneme before.
inline constexpr std::string_view kEnglishStops = "pbtdkgCJ";

}  // namespace veral3::training
