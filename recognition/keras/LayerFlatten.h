#pragma once

#include "recognition/keras/Layer.h"

namespace keras {

// 3-D to 1-D: rows outermost, then columns, channels innermost.
class LayerFlatten final : public Layer {
 public:
  LayerFlatten() : Layer(kFlatten) {}
  int load_weights(std::istream& text, bool verbose) override;
  int load_binary_weights(std::istream& file, bool verbose) override;
  int save_binary_weights(std::ostream& file) const override;
  std::int32_t get_input_rows() const override { return 0; }
  std::int32_t get_input_cols() const override { return 0; }
  std::int32_t get_output_units() const override { return 0; }
  void print_weights() const override;
  int evaluate(Tensor& tensor, LayerBuffer& buffer) const override;

 private:
  std::int32_t m_rows = 0;
  std::int32_t m_cols = 0;
  std::int32_t m_channels = 0;
};

}  // namespace keras
