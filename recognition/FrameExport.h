#pragma once

#include <iosfwd>
#include <span>

#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"

// Training examples for the frame classifier, out of aligned recordings.
//
// An example is a line in each of two streams. Features: the classifier's 195 inputs for the frame
// (see FrameScores.h), separated by ",". Label: a column for each state of the set, in state order,
// "1" for the frame's state and "0" elsewhere, separated by ",". The last frame of a recording is
// the end node's and never an example.
namespace veral3 {

// What decides whether a frame is a clear example of the state that the best path gives it.
struct FrameExportChoice {
  double threshold = 0.0;             // least path posterior of a frame that is written
  double loud_above = 0.0;            // intensity that parts phonemes from pauses
  std::span<const double> intensity;  // one a frame; what is missing reads 0
};

// Writes the frames whose path posterior is at least the threshold and that are loud where the path
// has a phoneme, not loud where it has a pause. Label: the state of the path.
void ExportFrames(const CPhonemeSet& set, const AlignmentResult& alignment,
                  const FrameExportChoice& choice, std::ostream& features, std::ostream& labels);

// Writes every frame, with states by its place instead of the path's: a phoneme's frames are
// divided evenly over its three states, earlier states taking the remainder; of a pause the first
// three frames are state 0, the last three that are left state 2, those between state 1.
void ExportAdjustedFrames(const CPhonemeSet& set, const AlignmentResult& alignment,
                          std::ostream& features, std::ostream& labels);

}  // namespace veral3
