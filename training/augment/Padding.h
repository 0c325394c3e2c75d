#pragma once

#include <cstddef>

#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

namespace veral3::training {

// What is before the first phoneme and after the last.
struct Edges {
  std::size_t before;  // samples
  std::size_t after;
  double noise_rms = 0.0;  // of what fills up; 0 is digital silence
};

// The recording with exactly so much before and after its speech: its own edges are cut, or filled
// up at their outer ends. Where the labels have no phoneme all of it is speech.
Utterance WithEdges(const Utterance& utterance, const Edges& edges, Random& random);

}  // namespace veral3::training
