#include "recognition/keras/LayerFlatten.h"

#include <algorithm>
#include <istream>
#include <limits>
#include <ostream>

#include "common/MessageWriter.h"
#include "recognition/keras/BinaryFile.h"

namespace keras {
namespace {

using veral3::Message;
using veral3::MessageStream;

int RefuseSizes(const char* operation, std::int32_t rows, std::int32_t cols,
                std::int32_t channels) {
  Message(MessageStream::kError) << "ERROR in LayerFlatten::" << operation
                                 << "(). Impossible sizes: rows=" << rows << ", columns=" << cols
                                 << ", channels=" << channels << "\n";
  return -1;
}

}  // namespace

int LayerFlatten::load_weights(std::istream& text, bool) {
  text >> m_rows >> m_cols >> m_channels;
  if (!NoneNegative({m_rows, m_cols, m_channels}) ||
      SizeProduct({m_rows, m_cols, m_channels}) > kMaxTextSize) {
    return RefuseSizes("load_weights", m_rows, m_cols, m_channels);
  }
  return 0;
}

int LayerFlatten::load_binary_weights(std::istream& file, bool) {
  m_rows = ReadInt32(file);
  m_cols = ReadInt32(file);
  m_channels = ReadInt32(file);
  if (!NoneNegative({m_rows, m_cols, m_channels})) {
    return RefuseSizes("load_binary_weights", m_rows, m_cols, m_channels);
  }
  return 0;
}

int LayerFlatten::save_binary_weights(std::ostream& file) const {
  WriteInt32(file, m_rows);
  WriteInt32(file, m_cols);
  WriteInt32(file, m_channels);
  return 0;
}

void LayerFlatten::print_weights() const {
  Message(MessageStream::kOutput) << "Flatten Layer has no weights:\n";
}

int LayerFlatten::evaluate(Tensor& tensor, LayerBuffer& buffer) const {
  if (tensor.dims != 3 || !tensor.data3) return -1;
  if (!NoneNegative({m_rows, m_cols, m_channels}) || tensor.size_x < m_rows ||
      tensor.size_y < m_cols || tensor.size_z < m_channels) {
    return -1;
  }
  const std::uint64_t size = SizeProduct({m_rows, m_cols, m_channels});
  if (size > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max())) return -1;
  buffer.values.resize(std::max<std::size_t>(size, 1));
  double* out = buffer.values.data();
  if (size > 0) {
    for (std::int32_t x = 0; x < m_rows; ++x) {
      for (std::int32_t y = 0; y < m_cols; ++y) {
        out = std::copy_n(tensor.data3[x][y], m_channels, out);
      }
    }
  }
  tensor.view1(buffer.values.data(), static_cast<std::int32_t>(size));
  return 0;
}

}  // namespace keras
