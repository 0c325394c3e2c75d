#include "core/SyllablePitch.h"

#include <algorithm>

namespace veral3 {
namespace {

std::int32_t FirstVoiced(auto begin, auto end) {
  const auto voiced = std::find_if(begin, end, [](std::int32_t pitch) { return pitch > 0; });
  return voiced == end ? 0 : *voiced;
}

int Mean(std::int64_t sum, std::size_t count) {
  return count == 0 ? 0 : ToInt(sum / static_cast<std::int64_t>(count));
}

}  // namespace

std::int32_t HighestPitch(std::span<const std::int32_t> pitch, FrameSpan span) {
  std::int32_t highest = ReadOr(pitch, span.begin);
  for (const std::int32_t frame : Slice(pitch, span)) highest = std::max(highest, frame);
  return highest;
}

std::int32_t FirstVoicedPitch(std::span<const std::int32_t> pitch, FrameSpan span) {
  const auto frames = Slice(pitch, span);
  return FirstVoiced(frames.begin(), frames.end());
}

std::int32_t LastVoicedPitch(std::span<const std::int32_t> pitch, FrameSpan span) {
  const auto frames = Slice(pitch, span);
  return FirstVoiced(frames.rbegin(), frames.rend());
}

int AveragePitch(std::span<const std::int32_t> syllable_pitch) {
  std::int64_t sum = 0;
  for (const std::int32_t pitch : syllable_pitch) sum += pitch;
  return Mean(sum, syllable_pitch.size());
}

int AverageLength(std::span<const FrameSpan> spans) {
  std::int64_t sum = 0;
  for (const FrameSpan span : spans) sum += span.Length();
  return Mean(sum, spans.size());
}

}  // namespace veral3
