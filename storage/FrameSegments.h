#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "recognition/CPhonemeSet.h"

// From frame scores to stretches of one phoneme, without any sentence.
//
//   std::string labels;
//   AppendFrameLabels(set, scores, labels);      // block after block
//   for (const FrameSegment& segment : SegmentsOf(labels, num_samples)) ...
namespace veral3 {

inline constexpr std::size_t kMaxFrameSegments = 4096;

// What stands for the frames before the first one.
inline constexpr char kNoFrameLabel = '*';

// Appends the most likely phoneme of each frame: that with the largest sum of its three state
// scores, of equals the first of the set. Where no sum is above 0 the frame before decides.
// `scores`: rows of 3 x set size values in state order.
void AppendFrameLabels(const CPhonemeSet& set, std::span<const double> scores, std::string& labels);

struct FrameSegment {
  char phoneme = kNoFrameLabel;
  int start = 0;  // [samples]
  int end = 0;    // [samples] the start of the next one, or the recording's end
};

// The segments of a recording with these frame labels, at most kMaxFrameSegments; the last one
// lasts to the end. A phoneme opens a segment with its second frame in a row, unless it was heard
// two frames before the first of them: one odd frame does not part a phoneme in two.
std::vector<FrameSegment> SegmentsOf(std::string_view labels, int num_samples);

}  // namespace veral3
