#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/corpus/Utterance.h"

// From phoneme times to what each frame of the engine's grid is.
namespace veral3::training {

// The phoneme of a segment of which nothing is learnt.
inline constexpr std::int32_t kUnusedPhoneme = -1;
// The state label of its frames.
inline constexpr std::uint8_t kUnusedState = 255;

// A phoneme's frames: from `first_frame` to the first of the next segment.
struct FrameSegment {
  std::int32_t phoneme;      // index in the set, or kUnusedPhoneme
  std::int32_t first_frame;  // counted from the utterance's first
};

// Frame t takes the phoneme spoken at sample 220 t + 110: half a frame shift in, so that an aligned
// boundary, which lies at the start of a frame, falls evenly on both sides of the true one.
// Phonemes too short for any frame vanish. Throws std::runtime_error for a symbol that the set
// lacks, unless it is kUnused.
std::vector<FrameSegment> SegmentsOf(std::span<const PhonemeLabel> labels, int num_frames,
                                     const CPhonemeSet& set);

// The state (0, 1, 2) of frame `place` of a segment of `length` frames: a phoneme's frames in
// thirds; of a pause the first and last three frames are states 0 and 2, the rest 1.
int StateOf(int place, int length, bool pause);

// State indices (phoneme x 3 + state) of all frames. `shifts`, when not empty, moves the start of
// every segment by so many frames, as far as at least one frame is left of either side; where an
// unused segment begins or ends nothing is moved.
void StateLabels(std::span<const FrameSegment> segments, int num_frames, int pause_phoneme,
                 std::span<const int> shifts, std::span<std::uint8_t> labels);

}  // namespace veral3::training
