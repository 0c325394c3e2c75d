#pragma once

#include <cstdint>
#include <vector>

#include "recognition/AlignmentResult.h"

namespace veral3 {

// The duration of every syllable [samples]: the end of its last phoneme less the start of its
// first.
std::vector<std::int32_t> SyllableDurations(const AlignmentResult& alignment);

}  // namespace veral3
