#include "recognition/keras/LayerMaxPooling.h"

#include <istream>
#include <ostream>
#include <string_view>

#include "common/MessageWriter.h"
#include "recognition/keras/BinaryFile.h"

namespace keras {

using veral3::Message;
using veral3::MessageStream;

int LayerMaxPooling::accept_sizes(const char* operation) {
  m_output_rows = m_output_cols = -1;
  const bool text = std::string_view(operation) == "load_weights";
  if (!NoneNegative({m_input_rows, m_input_cols, m_channels}) || m_pool_rows <= 0 ||
      m_pool_cols <= 0 ||
      (text && SizeProduct({m_input_rows, m_input_cols, m_channels}) > kMaxTextSize)) {
    Message(MessageStream::kError)
        << "ERROR in LayerMaxPooling::" << operation
        << "(). Impossible sizes: input rows=" << m_input_rows << ", input columns=" << m_input_cols
        << ", channels=" << m_channels << ", pool rows=" << m_pool_rows
        << ", pool columns=" << m_pool_cols << "\n";
    return -1;
  }
  m_output_rows = m_input_rows / m_pool_rows;
  m_output_cols = m_input_cols / m_pool_cols;
  return 0;
}

int LayerMaxPooling::load_weights(std::istream& text, bool) {
  text >> m_input_rows >> m_input_cols >> m_channels >> m_pool_rows >> m_pool_cols;
  return accept_sizes("load_weights");
}

int LayerMaxPooling::load_binary_weights(std::istream& file, bool) {
  m_input_rows = ReadInt32(file);
  m_input_cols = ReadInt32(file);
  m_channels = ReadInt32(file);
  m_pool_rows = ReadInt32(file);
  m_pool_cols = ReadInt32(file);
  return accept_sizes("load_binary_weights");
}

int LayerMaxPooling::save_binary_weights(std::ostream& file) const {
  for (const std::int32_t size :
       {m_input_rows, m_input_cols, m_channels, m_pool_rows, m_pool_cols}) {
    WriteInt32(file, size);
  }
  return 0;
}

void LayerMaxPooling::print_weights() const {
  Message(MessageStream::kOutput) << "MaxPooling2D Layer has no weights:\n";
}

int LayerMaxPooling::evaluate(Tensor& tensor, LayerBuffer& buffer) const {
  if (tensor.dims != 3 || !tensor.data3 || m_output_rows < 0) return -1;
  if (tensor.size_x < m_output_rows * m_pool_rows || tensor.size_y < m_output_cols * m_pool_cols ||
      tensor.size_z < m_channels) {
    return -1;
  }
  double*** const in = tensor.data3;
  buffer.cube.resize(m_output_rows, m_output_cols, m_channels);
  double*** const out = buffer.cube.data();
  for (std::int32_t i = 0; i < m_output_rows; ++i) {
    for (std::int32_t j = 0; j < m_output_cols; ++j) {
      for (std::int32_t z = 0; z < m_channels; ++z) {
        double largest = in[i * m_pool_rows][j * m_pool_cols][z];
        for (std::int32_t r = i * m_pool_rows; r < (i + 1) * m_pool_rows; ++r) {
          for (std::int32_t c = j * m_pool_cols; c < (j + 1) * m_pool_cols; ++c) {
            if (in[r][c][z] > largest) largest = in[r][c][z];
          }
        }
        out[i][j][z] = largest;
      }
    }
  }
  tensor.view3(out, m_output_rows, m_output_cols, m_channels);
  return 0;
}

}  // namespace keras
