#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "recognition/AlignmentResult.h"

// Sound where there should be silence: in the gaps between syllables and at both ends. A frame is
// loud when its intensity exceeds half of `mean_speech`, the mean intensity of the speech.
namespace veral3 {

// Counts the loud voiced frames of each gap, one more than there are syllables: before the first
// syllable, before each other one, after the last.
std::vector<std::int32_t> CountLoudGaps(const AlignmentResult& alignment,
                                        std::span<const std::int32_t> pitch,
                                        std::span<const double> intensity, double mean_speech);

// Counts the loud frames, voiced or not, for a check of the pronunciation alone. Gap s between two
// syllables here is the one before phoneme number s, not the one before syllable s: that is how
// this check counts, and it stays so.
std::vector<std::int32_t> CountLoudGapsPronunOnly(const AlignmentResult& alignment,
                                                  std::span<const double> intensity,
                                                  double mean_speech);

}  // namespace veral3
