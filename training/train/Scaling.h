#pragma once

#include <vector>

#include "training/common/Random.h"
#include "training/train/Network.h"
#include "training/train/Trainer.h"

namespace veral3::training {

// What brings each input to mean 0 and deviation 1.
struct Scaling {
  std::vector<float> mean;
  std::vector<float> deviation;  // all above 0
};

// Measured on examples of the source drawn at random, up to 200,000.
Scaling MeasureScaling(const ExampleSource& source, Random& random);

// The same function as `network`, whose own scaling is folded into its first layer (as the engine's
// model files have it), with this scaling taken out again: training needs inputs of one size.
Network Unfold(const Network& network, const Scaling& scaling);

}  // namespace veral3::training
