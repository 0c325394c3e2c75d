#pragma once

#include <span>

#include "recognition/keras/Layer.h"
#include "recognition/keras/PackedDense.h"

namespace keras {

// Fully connected: 1-D input of at least `inputs` values to `neurons` values.
class LayerDense final : public Layer {
 public:
  LayerDense() : Layer(kDense) {}

  // A layer from weights at hand, for writing model files. `weights`: neuron-major, the weight from
  // input i to neuron j at j * inputs + i; `bias`: one a neuron; inputs = weights.size() /
  // bias.size(). `activation`: a code of Activation.h.
  LayerDense(std::span<const double> weights, std::span<const double> bias, char activation);

  int load_weights(std::istream& text, bool verbose) override;
  int load_binary_weights(std::istream& file, bool verbose) override;
  int save_binary_weights(std::ostream& file) const override;
  std::int32_t get_input_rows() const override { return 1; }
  std::int32_t get_input_cols() const override { return m_inputs; }
  std::int32_t get_output_units() const override { return m_neurons; }
  void print_weights() const override;
  int evaluate(Tensor& tensor, LayerBuffer& buffer) const override;

  char activation() const { return m_activation; }
  bool complete() const { return m_complete; }            // all weights were read
  const PackedDense& packed() const { return m_packed; }  // empty unless complete
  std::span<const double> weights() const { return m_weights; }
  std::span<const double> bias() const { return m_bias; }

 private:
  void clear();
  void finish();

  std::int32_t m_inputs = 0;
  std::int32_t m_neurons = 0;
  char m_activation = 0;
  bool m_complete = false;
  std::vector<double> m_weights;  // neuron-major
  std::vector<double> m_bias;
  PackedDense m_packed;
};

}  // namespace keras
