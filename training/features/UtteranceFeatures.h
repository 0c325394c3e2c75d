#pragma once

#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/corpus/Utterance.h"
#include "training/features/FrameLabels.h"

namespace veral3::training {

struct UtteranceFeatures {
  std::vector<float> mfcc;             // rows of 39
  std::vector<FrameSegment> segments;  // empty for a recording below one frame
};

// What the engine would compute of the recording before it classifies frames: the high-pass filter
// of alignment, then the MFCC rows.
UtteranceFeatures FeaturesOf(const Utterance& utterance, const CPhonemeSet& set);

}  // namespace veral3::training
