#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "recognition/keras/AlignedVector.h"
#include "recognition/keras/DenseKernels.h"
#include "recognition/keras/Layer.h"
#include "recognition/keras/Tensor.h"

// The feed-forward network engine: loads a stack of layers from a binary model file
// (docs/formats/model.md) and evaluates it in double precision.
//
//   keras::KerasModel model;
//   if (model.load_binary_weights(path, false) != 0) return;   // a message was written
//
//   keras::Tensor tensor;                 // one input; one thread at a time a model
//   tensor.view1(input, n);
//   model.compute_output(tensor, false);  // tensor now views the last layer's output
//
//   keras::Workspace workspace;           // any number of threads, a workspace each
//   model.evaluate(tensor, workspace);
//   model.compute_batch(inputs, count, n, outputs, m, workspace);
//
// All three ways give the same bits.
namespace keras {

// What an evaluation works with. It may be used again, for any model, by one thread at a time.
struct Workspace {
  std::vector<LayerBuffer> layers;

  // The vector kernel of compute_batch: the best that this machine runs. Null evaluates one input
  // after the other with the plain loop, for comparisons.
  const DenseKernel* kernel = RunnableDenseKernels().front();
  AlignedVector<double> rows[2];
  DenseScratch scratch;
};

class KerasModel {
 public:
  KerasModel() = default;

  // A model from layers at hand, for writing model files. An empty pointer is an empty slot.
  KerasModel(std::int32_t version, std::vector<std::unique_ptr<Layer>> layers)
      : m_version(version), m_layers(std::move(layers)) {}

  // Reads a model file; what the model held before is gone. Returns 0, or -1 after a message; then
  // the layers that could be read are there. `verbose` prints each layer to standard output.
  int load_binary_weights(const std::string& path, bool verbose);

  // The same from a stream that can tell how much of it is left.
  int load_binary_weights(std::istream& file, bool verbose);

  // Writes what load_binary_weights reads. Returns 0, or -1 after a message when the file can't be
  // written or a layer lacks its weights.
  int save_binary_weights(const std::string& path) const;
  int save_binary_weights(std::ostream& file) const;

  // Evaluates every layer in order on the tensor, which then views the last layer's output. A layer
  // that refuses its input is reported and passed over. Always returns 0. The result lives in the
  // model until it is evaluated again.
  int compute_output(Tensor& tensor, bool verbose);

  // As compute_output, with the results in `workspace`.
  int evaluate(Tensor& tensor, Workspace& workspace) const;

  // Evaluates `count` 1-D inputs, many times as fast as one at a time when all layers are dense or
  // dropout and their sizes fit: `inputs` has `count` rows of `input_size` values, `outputs` gets
  // as many rows of `output_size` values. The results are those of one evaluate an input, bit for
  // bit, and so are the messages. Returns 0, or -1 when an input's result is not 1-D of
  // `output_size` values: its row gets what there is of it, then zeros.
  int compute_batch(const double* inputs, std::size_t count, std::int32_t input_size,
                    double* outputs, std::int32_t output_size, Workspace& workspace) const;

  // Those of the first layer; 0 when there is none.
  std::int32_t get_input_rows() const;
  std::int32_t get_input_cols() const;
  std::int32_t get_output_units() const;

  std::int32_t version() const { return m_version; }  // -1 until a file was read
  std::size_t layer_count() const { return m_layers.size(); }
  const Layer* layer(std::size_t i) const { return m_layers[i].get(); }

  // Whether every layer is dense or dropout, and inputs of `input_size` values pass through all of
  // them to `output_size` values without a message.
  bool is_dense_chain(std::int32_t input_size, std::int32_t output_size) const;

 private:
  const Layer* first_layer() const;
  void run_dense_chain(const double* inputs, std::size_t count, std::size_t input_size,
                       double* outputs, std::size_t output_size, Workspace& workspace) const;

  std::int32_t m_version = -1;
  std::vector<std::unique_ptr<Layer>> m_layers;
};

}  // namespace keras
