#pragma once

#include "recognition/keras/Layer.h"

namespace keras {

// Two-dimensional convolution: stride 1, zeros around the plane, output plane of the input's size,
// kernels not flipped. Input [rows][columns][channels], output [rows][columns][kernels].
class LayerConv2D final : public Layer {
 public:
  LayerConv2D() : Layer(kConv2D) {}
  int load_weights(std::istream& text, bool verbose) override;
  int load_binary_weights(std::istream& file, bool verbose) override;
  int save_binary_weights(std::ostream& file) const override;
  std::int32_t get_input_rows() const override { return m_rows; }  // of a kernel
  std::int32_t get_input_cols() const override { return m_cols; }  // of a kernel
  std::int32_t get_output_units() const override { return m_kernels_cnt; }
  void print_weights() const override;

  // -1 also when the kernels are shallower than the input has channels.
  int evaluate(Tensor& tensor, LayerBuffer& buffer) const override;

  char activation() const { return m_activation; }

 private:
  static constexpr char kSame = 's';
  static constexpr char kValid = 'v';  // reported at each evaluation, computed as kSame

  int refuse_sizes(const char* operation) const;
  bool any_size_negative() const;
  std::size_t group_count() const;  // weight groups, one for each kernel row, column and depth
  std::size_t weight_index(std::int32_t r, std::int32_t c, std::int32_t d, std::int32_t k) const;
  double correlate(double*** in, std::int32_t y, std::int32_t x, std::int32_t d,
                   std::int32_t k) const;

  std::int32_t m_rows = 0;
  std::int32_t m_cols = 0;
  std::int32_t m_depth = 0;
  std::int32_t m_kernels_cnt = 0;
  std::int32_t m_input_rows = 0;
  std::int32_t m_input_cols = 0;
  std::int32_t m_input_channels = 0;
  std::vector<double> m_weights;  // [m_rows][m_cols][m_depth][m_kernels_cnt]
  std::vector<double> m_bias;
  char m_activation = 0;
  char m_border_mode = 0;
  bool m_complete = false;  // all weights were read
};

}  // namespace keras
