#pragma once

#include <span>
#include <string_view>

#include "core/AlignedAudio.h"

namespace veral3 {

// Prints an alignment for inspection on standard output, as one message: first the syllables whose
// goodness (`good_syllable`, one a syllable, 0 where missing) is below 1, then what `audio`
// answers.
void PrintAlignment(AlignedAudio& audio, std::string_view sounds_like,
                    std::span<const double> good_syllable);

}  // namespace veral3
