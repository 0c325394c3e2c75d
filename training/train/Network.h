#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "training/common/Random.h"

namespace veral3::training {

// A fully connected network as the trainer holds it: relu between the layers, softmax after the
// last. Inputs are scaled to mean 0 and deviation 1 first.
struct DenseLayer {
  int inputs = 0;
  int outputs = 0;
  std::vector<float> weights;  // inputs x outputs: the weights from input 0, from input 1, ...
  std::vector<float> bias;     // outputs
};

struct Network {
  std::vector<float> input_mean;
  std::vector<float> input_deviation;  // all above 0
  std::vector<DenseLayer> layers;

  int NumInputs() const { return layers.empty() ? 0 : layers.front().inputs; }
  int NumOutputs() const { return layers.empty() ? 0 : layers.back().outputs; }
};

// Random weights of deviation sqrt(2 / inputs) (He, Zhang, Ren and Sun 2015), no bias.
DenseLayer RandomLayer(int inputs, int outputs, Random& random);

// The same function with the scaling moved into the first layer: mean 0, deviation 1.
Network FoldScaling(const Network& network);

// The network with what its softmax is given divided by `temperature` (above 0): above 1 it is less
// sure of itself, below 1 surer, and what it takes for likeliest stays (Guo et al. 2017).
Network WithTemperature(const Network& network, double temperature);

// Writes the engine's binary model file, scaling folded in. `version` must be positive. Throws
// std::runtime_error when the file cannot be written.
void ExportModel(const Network& network, std::int32_t version, const std::filesystem::path& path);

// The network of the engine's binary model file, for training it further: fully connected layers
// with relu between them and softmax last, as ExportModel writes them; its scaling is folded.
// Throws std::runtime_error for a file that holds anything else.
Network ImportModel(const std::filesystem::path& path);

// A network between two rounds of training, scaling apart. Both throw std::runtime_error.
void SaveCheckpoint(const Network& network, const std::filesystem::path& path);
Network LoadCheckpoint(const std::filesystem::path& path);

}  // namespace veral3::training
