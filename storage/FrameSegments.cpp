#include "storage/FrameSegments.h"

#include "signal/CWaveFrameDef.h"

namespace veral3 {

void AppendFrameLabels(const CPhonemeSet& set, std::span<const double> scores,
                       std::string& labels) {
  const auto size = static_cast<std::size_t>(set.GetSize());
  char label = labels.empty() ? kNoFrameLabel : labels.back();
  for (std::size_t row = 0; row + 3 * size <= scores.size(); row += 3 * size) {
    double best = 0.0;
    for (std::size_t p = 0; p < size; ++p) {
      const double* const states = &scores[row + 3 * p];
      const double sum = states[0] + states[1] + states[2];
      if (sum > best) {
        best = sum;
        label = set.GetFullSet()[p];
      }
    }
    labels += label;
  }
}

std::vector<FrameSegment> SegmentsOf(std::string_view labels, int num_samples) {
  std::vector<FrameSegment> segments;
  char c1 = kNoFrameLabel;  // the label one frame back, then two, then three
  char c2 = kNoFrameLabel;
  char c3 = kNoFrameLabel;
  for (std::size_t frame = 0; frame < labels.size(); ++frame) {
    const char c0 = labels[frame];
    if (c1 == c0 && c1 != c2 && c1 != c3 && segments.size() < kMaxFrameSegments) {
      const int start = (static_cast<int>(frame) - 1) * kFrameShift;
      if (!segments.empty()) segments.back().end = start;
      segments.push_back({c1, start, start});
    }
    c3 = c2;
    c2 = c1;
    c1 = c0;
  }
  if (!segments.empty()) segments.back().end = num_samples;
  return segments;
}

}  // namespace veral3
