#pragma once

#include "recognition/keras/Layer.h"

namespace keras {

// The largest value of each pool of a 3-D input, channel by channel. The stride is the pool size;
// rows and columns beyond the last whole pool are ignored.
class LayerMaxPooling final : public Layer {
 public:
  LayerMaxPooling() : Layer(kMaxPooling) {}
  int load_weights(std::istream& text, bool verbose) override;
  int load_binary_weights(std::istream& file, bool verbose) override;
  int save_binary_weights(std::ostream& file) const override;
  std::int32_t get_input_rows() const override { return 0; }
  std::int32_t get_input_cols() const override { return 0; }
  std::int32_t get_output_units() const override { return 0; }
  void print_weights() const override;
  int evaluate(Tensor& tensor, LayerBuffer& buffer) const override;

 private:
  int accept_sizes(const char* operation);

  std::int32_t m_input_rows = 0;
  std::int32_t m_input_cols = 0;
  std::int32_t m_channels = 0;
  std::int32_t m_pool_rows = 0;
  std::int32_t m_pool_cols = 0;
  std::int32_t m_output_rows = -1;  // -1 until the sizes were accepted
  std::int32_t m_output_cols = -1;
};

}  // namespace keras
