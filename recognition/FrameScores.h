#pragma once

#include <cstddef>
#include <functional>
#include <span>

#include "recognition/CPhonemeSet.h"

namespace veral3 {

inline constexpr int kFrameInputSize = 195;  // five MFCC frames

// Scores every frame of an utterance with the frame classifier of the set's language. `mfcc`: rows
// of 39 floats; `scores`: as many rows of 3 x set size doubles, in state order, each at least 1e-6.
// Returns 0, or -1 with a message when that language has no frame model (scores stay as they are).
// Several threads may score at once.
int ComputeFrameScores(const CPhonemeSet& set, std::span<const float> mfcc,
                       std::span<double> scores);

// The same for those who need not hold all scores at once: hands over the rows of `first` and the
// frames behind it, 256 frames at most, one block after another. The bits are the same.
int VisitFrameScores(const CPhonemeSet& set, std::span<const float> mfcc,
                     const std::function<void(std::size_t first, std::span<const double>)>& take);

// The classifier's input for one frame: frames t-2 .. t+2. Before the start frame 0 stands in; past
// the end the centre frame does.
void AssembleFrameInput(std::span<const float> mfcc, int frame,
                        std::span<float, kFrameInputSize> input);

}  // namespace veral3
