#pragma once

#include <cstdint>
#include <span>

#include "core/FrameSpan.h"

// The pitch of a syllable from the pitch of its frames ([Hz], 0 unvoiced).
namespace veral3 {

// The highest pitch of the span; its first frame is read even when the span is empty.
std::int32_t HighestPitch(std::span<const std::int32_t> pitch, FrameSpan span);

// The first and the last voiced pitch of the span, 0 when there is none.
std::int32_t FirstVoicedPitch(std::span<const std::int32_t> pitch, FrameSpan span);
std::int32_t LastVoicedPitch(std::span<const std::int32_t> pitch, FrameSpan span);

// Mean of the syllables' pitches towards 0, the unvoiced syllables included; 0 for no syllables.
int AveragePitch(std::span<const std::int32_t> syllable_pitch);

// Mean length of the spans [frames] towards 0; 0 for no spans.
int AverageLength(std::span<const FrameSpan> spans);

}  // namespace veral3
