#include "training/features/FrameLabels.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "signal/CWaveFrameDef.h"

namespace veral3::training {

std::vector<FrameSegment> SegmentsOf(std::span<const PhonemeLabel> labels, int num_frames,
                                     const CPhonemeSet& set) {
  std::vector<FrameSegment> segments;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const bool unused = labels[i].symbol == kUnused;
    const int phoneme = unused ? kUnusedPhoneme : set.GetPhonemeIndex(labels[i].symbol);
    if (phoneme < 0 && !unused) {
      throw std::runtime_error(std::string("the phoneme set has no [") + labels[i].symbol + "]");
    }
    // The first t with 220 t + 110 >= start.
    const int first = (std::max(labels[i].start, 110) - 110 + kFrameShift - 1) / kFrameShift;
    if (first >= num_frames) break;
    if (!segments.empty() && segments.back().first_frame == first) segments.pop_back();
    segments.push_back({phoneme, first});
  }
  if (!segments.empty()) segments.front().first_frame = 0;
  return segments;
}

int StateOf(int place, int length, bool pause) {
  if (!pause) return 3 * place / length;
  constexpr int kEdge = 3;
  if (length < 3 * kEdge) return 3 * place / length;
  if (place < kEdge) return 0;
  return place >= length - kEdge ? 2 : 1;
}

void StateLabels(std::span<const FrameSegment> segments, int num_frames, int pause_phoneme,
                 std::span<const int> shifts, std::span<std::uint8_t> labels) {
  int first = 0;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    int end = num_frames;
    if (i + 1 < segments.size()) {
      end = segments[i + 1].first_frame;
      const bool by_unused =
          segments[i].phoneme == kUnusedPhoneme || segments[i + 1].phoneme == kUnusedPhoneme;
      if (!shifts.empty() && !by_unused) {
        const int after = i + 2 < segments.size() ? segments[i + 2].first_frame : num_frames;
        end = std::clamp(end + shifts[i + 1], first + 1, std::max(after - 1, first + 1));
      }
    }
    if (segments[i].phoneme == kUnusedPhoneme) {
      std::fill(labels.begin() + first, labels.begin() + end, kUnusedState);
      first = end;
      continue;
    }
    const bool pause = segments[i].phoneme == pause_phoneme;
    for (int frame = first; frame < end; ++frame) {
      labels[static_cast<std::size_t>(frame)] = static_cast<std::uint8_t>(
          segments[i].phoneme * 3 + StateOf(frame - first, end - first, pause));
    }
    first = end;
  }
}

}  // namespace veral3::training
