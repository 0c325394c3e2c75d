#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "training/common/Random.h"
#include "training/train/Deck.h"
#include "training/train/Network.h"

// Training of fully connected classifiers. The only file that knows libtorch is Trainer.cpp.
namespace veral3::training {

// Where examples come from: rows of inputs as the engine would give them, each with a class, or
// with weights of all classes where none is the whole truth.
class ExampleSource {
 public:
  virtual ~ExampleSource() = default;
  virtual std::size_t NumExamples() const = 0;
  virtual int NumInputs() const = 0;
  virtual int NumClasses() const = 0;
  // Before each round through the examples: draw anew what is random about them.
  virtual void BeginEpoch(Random& random) = 0;
  // Inputs (rows) and classes of the given examples.
  virtual void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
                    std::span<std::int64_t> classes) const = 0;
  // Whether FillWeights has more to say than the classes; then the classes only count.
  virtual bool HasWeights() const { return false; }
  // Weights (rows, one a class, 1 together) of the given examples; nothing without HasWeights.
  virtual void FillWeights(std::span<const std::uint32_t> /*examples*/,
                           std::span<float> /*weights*/) const {}
};

// Output columns that compete among themselves: those of one language in a network of several.
struct Head {
  int begin = 0;
  int end = 0;  // first column behind
};

struct TrainOptions {
  std::vector<int> hidden = {256, 256};
  int batch = 1024;
  int epochs = 6;
  double rate = 2e-3;  // highest learning rate of the cycle
  double dropout = 0.1;
  // Of the labels, spread evenly over the columns. What is spread never leaves a class, whatever is
  // heard, and the scores of rare phonemes live on less: 0 for anything that is scored.
  double smoothing = 0.0;
  double sparsity = 0.0;  // weight of the mean magnitude of the hidden activations in the loss
  // What the teachers, on average, make of an example counts this much, its class the rest (Hinton,
  // Vinyals and Dean 2015).
  double teaching = 0.0;
  std::vector<Network> teachers;  // of the same inputs and classes; none with several heads
  // Which examples come how often; none is each once an epoch.
  std::vector<ExampleGroup> groups;
  std::size_t epoch_size = 0;  // examples an epoch where there are groups; 0: as many as there are
  std::vector<Head> heads;     // one after another; none is all columns together
  std::uint64_t seed = 1;
  int threads = 2;
};

// Adam with one cycle of the learning rate over all epochs: up from a tenth in the first fifth,
// then down to a thousandth on a cosine. Starts from `start` where given (its scaling is kept),
// else from random weights and a scaling measured on the source. Prints a line an epoch. The same
// arguments give the same network on the same machine.
Network Train(const TrainOptions& options, ExampleSource& source,
              const std::optional<Network>& start);

// Class probabilities for rows of inputs, in single precision: for measuring while training.
std::vector<float> Classify(const Network& network, std::span<const float> inputs);

}  // namespace veral3::training
