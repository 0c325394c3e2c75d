#pragma once

#include <cstdint>
#include <span>

#include "common/LanguageType.h"

// Voiced stretches. Pitch is [Hz] a frame, 0 where unvoiced.
namespace veral3 {

struct PitchSegmentCounts {
  std::int32_t segments = 0;       // voiced runs that count
  std::int32_t gap_total = 0;      // [frames] in the gaps between voiced runs
  std::int32_t voiced_frames = 0;  // all of them, in runs or not
  bool operator==(const PitchSegmentCounts&) const = default;
};

// Segments and gaps of one syllable, whose frames are `pitch`. In English a run of 3 frames that
// comes at least 4 frames after the last one counts as a segment, elsewhere one of 2 after 2. A
// dip of one frame is no gap, but the frame that ends a dip or a gap is not part of the run that
// it begins.
PitchSegmentCounts CountPitchSegments(LanguageType language, std::span<const std::int32_t> pitch);

// Segments of a whole recording: runs of voiced frames louder than twice `background`. A run
// begins with two such frames in a row and goes on over single frames that are not. Where the
// arrays differ in length the shorter one counts. A count of 0 is reported.
int CountUtterancePitchSegments(std::span<const std::int32_t> pitch,
                                std::span<const double> intensity, double background);

}  // namespace veral3
