#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

// What a model file holds, without its numbers: read layer by layer, each number looked at and
// dropped, so that any file can be looked into before it is loaded.
namespace keras {

// Beyond these a file is refused. They leave room for networks a hundred times the size of those
// that the engine uses; what they keep out would take gigabytes and minutes to load or to evaluate.
inline constexpr std::int32_t kMaxLayers = 100;
inline constexpr std::int32_t kMaxLayerSize = 65536;  // inputs, outputs, groups
inline constexpr std::uint64_t kMaxNumbers = std::uint64_t{1}
                                             << 26;  // of a file; values of a plane

struct LayerOutline {
  char kind = 0;              // type code of Layer.h
  char activation = 0;        // code of Activation.h; 0 where the kind has none
  std::int32_t rows = 0;      // of the input, 1 for a dense layer; 0 for a dropout layer
  std::int32_t cols = 0;      // of the input; a dense layer's inputs
  std::int32_t channels = 0;  // of the input, 1 for a dense layer
  std::int32_t outputs = 0;   // neurons, kernels; 0 for the other kinds
  std::uint64_t numbers = 0;  // weights and biases

  // Dense layers: no sum of a neuron is larger than `gain` times the largest input + `offset`.
  double gain = 0.0;
  double offset = 0.0;
};

struct ModelOutline {
  std::int32_t version = -1;
  std::vector<LayerOutline> layers;
};

// Why a model must not be used; without a fault both are empty.
struct ModelFault {
  std::string fault;   // a clause: "it has no layers"
  std::string remedy;  // what to do about it, as a command: "train it again"

  explicit operator bool() const { return !fault.empty(); }
};

// Reads the outline of a binary model file (docs/formats/model.md) from a stream that can tell how
// much of it is left. Faults: what KerasModel refuses to load; activation codes that a layer does
// not have; no layers, and layers without inputs or outputs; numbers that are infinite or none; and
// what passes the limits above. `outline` then has what was read so far. Writes no message. What
// follows the last layer is not read. Takes under 2 MB of memory.
ModelFault ReadModelOutline(std::istream& file, ModelOutline& outline);

}  // namespace keras
