#pragma once

#include "recognition/keras/Layer.h"

namespace keras {

// Passes its input on unchanged; dropping out is a matter of training.
class LayerDropout final : public Layer {
 public:
  LayerDropout() : Layer(kDropout) {}
  int load_weights(std::istream&, bool) override { return 0; }
  int load_binary_weights(std::istream&, bool) override { return 0; }
  int save_binary_weights(std::ostream&) const override { return 0; }
  std::int32_t get_input_rows() const override { return 0; }
  std::int32_t get_input_cols() const override { return 0; }
  std::int32_t get_output_units() const override { return 0; }
  void print_weights() const override;
  int evaluate(Tensor&, LayerBuffer&) const override { return 0; }
};

}  // namespace keras
