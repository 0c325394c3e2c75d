#include "core/PitchSegments.h"

#include <algorithm>

#include "common/MessageWriter.h"

namespace veral3 {

PitchSegmentCounts CountPitchSegments(LanguageType language, std::span<const std::int32_t> pitch) {
  enum class State { kRunStart, kInRun, kOneUnvoiced, kInGap };
  const int min_gap = language == kLanguageEnglish ? 4 : 2;
  const int min_run = language == kLanguageEnglish ? 3 : 2;
  PitchSegmentCounts counts;
  State state = State::kRunStart;
  int run = 0;
  int gap = min_gap;  // so that the first run counts at once
  const auto first_voiced =
      std::find_if(pitch.begin(), pitch.end(), [](std::int32_t p) { return p != 0; });
  for (auto frame = first_voiced; frame != pitch.end(); ++frame) {
    const bool voiced = *frame > 0;
    if (voiced) ++counts.voiced_frames;
    switch (state) {
      case State::kRunStart:
        run = voiced ? 2 : 0;
        state = voiced ? State::kInRun : State::kOneUnvoiced;
        break;
      case State::kInRun:
        if (!voiced) {
          state = State::kOneUnvoiced;
          break;
        }
        if (run == min_run && gap >= min_gap) {
          ++counts.segments;
          gap = 0;
        }
        ++run;
        break;
      case State::kOneUnvoiced:
        if (voiced) {
          state = State::kRunStart;
        } else {
          gap = 2;
          state = State::kInGap;
        }
        break;
      case State::kInGap:
        if (voiced) {
          counts.gap_total += gap;
          state = State::kRunStart;
        } else if (counts.segments > 0) {
          ++gap;
        }
        break;
    }
  }
  return counts;
}

int CountUtterancePitchSegments(std::span<const std::int32_t> pitch,
                                std::span<const double> intensity, double background) {
  const std::size_t num_frames = std::min(pitch.size(), intensity.size());
  const auto qualifies = [&](std::size_t frame) {
    return frame < num_frames && pitch[frame] > 0 && intensity[frame] > 2.0 * background;
  };
  int count = 0;
  for (std::size_t frame = 0; frame < num_frames;) {
    if (!qualifies(frame) || !qualifies(frame + 1)) {
      ++frame;
      continue;
    }
    ++count;
    while (qualifies(frame) || qualifies(frame + 1)) ++frame;
  }
  if (count == 0) Message(MessageStream::kError) << "Error! nNumPitchSegments==0\n";
  return count;
}

}  // namespace veral3
