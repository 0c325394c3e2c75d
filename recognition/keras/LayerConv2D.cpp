#include "recognition/keras/LayerConv2D.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <span>
#include <sstream>
#include <string>

#include "common/MessageWriter.h"
#include "recognition/keras/Activation.h"
#include "recognition/keras/BinaryFile.h"
#include "recognition/keras/TextForm.h"

namespace keras {
namespace {

using veral3::Message;
using veral3::MessageStream;

constexpr TextBrackets kWeightBrackets = {
    "ERROR in LayerConv2D::load_weights(). Expect '[', but got:",
    "ERROR in LayerConv2D::load_weights(). Expect ']', but got:"};
constexpr TextBrackets kBiasBrackets = {
    "ERROR in LayerConv2D::load_weights() - Reading bias. Expect '[', but got:",
    "ERROR in LayerConv2D::load_weights() - Reading bias. Expect ']', but got:"};

constexpr const char* kWeightPlace = "ERROR in LayerConv2D::load_binary_weights(). Expect '";
constexpr const char* kBiasPlace =
    "ERROR in LayerConv2D::load_binary_weights() - Reading bias. Expect '";

bool ExpectBracket(std::istream& file, char bracket, const char* place) {
  const char c = ReadChar(file);
  if (c == bracket) return true;
  Message(MessageStream::kError) << place << bracket << "', but got:" << c << "\n";
  return false;
}

}  // namespace

int LayerConv2D::refuse_sizes(const char* operation) const {
  Message(MessageStream::kError) << "ERROR in LayerConv2D::" << operation
                                 << "(). Impossible sizes: input rows=" << m_input_rows
                                 << ", input columns=" << m_input_cols
                                 << ", input channels=" << m_input_channels << ", m_rows=" << m_rows
                                 << ", m_cols=" << m_cols << ", m_depth=" << m_depth
                                 << ", m_kernels_cnt=" << m_kernels_cnt << "\n";
  return -1;
}

bool LayerConv2D::any_size_negative() const {
  return !NoneNegative(
      {m_input_rows, m_input_cols, m_input_channels, m_rows, m_cols, m_depth, m_kernels_cnt});
}

std::size_t LayerConv2D::group_count() const { return SizeProduct({m_rows, m_cols, m_depth}); }

int LayerConv2D::load_weights(std::istream& text, bool verbose) {
  m_complete = false;
  m_weights.clear();
  m_bias.clear();
  std::string word;
  text >> word;
  m_activation = ActivationOfWord(word);
  if (m_activation == 0 || m_activation == kSoftmax) {
    m_activation = 0;
    Message(MessageStream::kError)
        << "Error in LayerDense::load_weights(). Unknow activation mode [" << word << "]\n";
    return -1;
  }
  text >> m_input_rows >> m_input_cols >> m_input_channels >> m_rows >> m_cols >> m_depth >>
      m_kernels_cnt;
  text >> word;
  if (word != "same" && word != "valid") {
    Message(MessageStream::kError)
        << "Error in LayerDense::load_weights(). Unknow border mode [" << word << "]\n";
    return -1;
  }
  m_border_mode = word == "same" ? kSame : kValid;
  if (any_size_negative() || group_count() > kMaxTextSize ||
      static_cast<std::uint64_t>(m_kernels_cnt) > kMaxTextSize ||
      group_count() * static_cast<std::uint64_t>(m_kernels_cnt) > kMaxTextSize ||
      SizeProduct({m_input_rows, m_input_cols, m_input_channels}) > kMaxTextSize ||
      SizeProduct({m_input_rows, m_input_cols, m_kernels_cnt}) > kMaxTextSize) {
    return refuse_sizes("load_weights");
  }
  if (verbose) {
    Message(MessageStream::kOutput)
        << "LayerConv2D::load_weights() m_rows=" << m_rows << "; m_cols=" << m_cols
        << "; m_depth= " << m_depth << "; m_kernels_cnt=" << m_kernels_cnt
        << "; m_border_mode=" << m_border_mode << "\n";
  }
  const auto kernels = static_cast<std::size_t>(m_kernels_cnt);
  const std::size_t groups = group_count();
  for (std::size_t i = 0; i < groups; ++i) {
    if (!ReadTextGroup(text, kernels, kWeightBrackets, m_weights)) {
      return ReportShortText("LayerConv2D");
    }
  }
  if (!ReadTextGroup(text, kernels, kBiasBrackets, m_bias)) return ReportShortText("LayerConv2D");
  m_complete = true;
  return 0;
}

int LayerConv2D::load_binary_weights(std::istream& file, bool) {
  m_complete = false;
  m_weights.clear();
  m_bias.clear();
  m_activation = ReadChar(file);
  m_input_rows = ReadInt32(file);
  m_input_cols = ReadInt32(file);
  m_input_channels = ReadInt32(file);
  m_rows = ReadInt32(file);
  m_cols = ReadInt32(file);
  m_depth = ReadInt32(file);
  m_kernels_cnt = ReadInt32(file);
  m_border_mode = ReadChar(file);
  const std::uint64_t room = BytesLeft(file) / 4;  // floats
  if (any_size_negative()) return refuse_sizes("load_binary_weights");
  const std::uint64_t needed = SizeProduct({m_rows, m_cols, m_depth, m_kernels_cnt});
  const auto kernels = static_cast<std::size_t>(m_kernels_cnt);
  if (needed > room || needed + kernels > room) return refuse_sizes("load_binary_weights");
  m_weights.resize(needed);
  m_bias.resize(kernels);
  const std::size_t groups = group_count();
  for (std::size_t i = 0; i < groups; ++i) {
    if (!ExpectBracket(file, '[', kWeightPlace)) return -1;
    ReadFloats(file, std::span(m_weights).subspan(i * kernels, kernels));
    if (!ExpectBracket(file, ']', kWeightPlace)) return -1;
  }
  if (!ExpectBracket(file, '[', kBiasPlace)) return -1;
  ReadFloats(file, m_bias);
  if (!ExpectBracket(file, ']', kBiasPlace)) return -1;
  m_complete = true;
  return 0;
}

int LayerConv2D::save_binary_weights(std::ostream& file) const {
  if (!m_complete) return -1;
  WriteChar(file, m_activation);
  for (const std::int32_t size :
       {m_input_rows, m_input_cols, m_input_channels, m_rows, m_cols, m_depth, m_kernels_cnt}) {
    WriteInt32(file, size);
  }
  WriteChar(file, m_border_mode);
  const std::size_t kernels = m_bias.size();
  const std::size_t groups = group_count();
  for (std::size_t i = 0; i < groups; ++i) {
    WriteChar(file, '[');
    WriteFloats(file, std::span(m_weights).subspan(i * kernels, kernels));
    WriteChar(file, ']');
  }
  WriteChar(file, '[');
  WriteFloats(file, m_bias);
  WriteChar(file, ']');
  return 0;
}

void LayerConv2D::print_weights() const {
  Message text(MessageStream::kOutput);
  text << "Conv2D Layer weights:\n";
  const std::size_t kernels = m_bias.size();
  const std::size_t groups = m_complete ? group_count() : 0;
  for (std::size_t i = 0; i < groups; ++i) {
    text << "[";
    for (std::size_t k = 0; k < kernels; ++k) text << m_weights[i * kernels + k] << " ";
    text << "]\n";
  }
  text << "Bias:\n";
  for (const double value : m_bias) text << value << " ";
  text << "]\n=====Conv2D Layer weights=====\n";
}

std::size_t LayerConv2D::weight_index(std::int32_t r, std::int32_t c, std::int32_t d,
                                      std::int32_t k) const {
  const auto n = [](std::int32_t value) { return static_cast<std::size_t>(value); };
  return ((n(r) * n(m_cols) + n(c)) * n(m_depth) + n(d)) * n(m_kernels_cnt) + n(k);
}

// The sum for output (y, x) over the part of kernel k, depth d that lies on the plane.
double LayerConv2D::correlate(double*** in, std::int32_t y, std::int32_t x, std::int32_t d,
                              std::int32_t k) const {
  const std::int32_t top = y - (m_rows - 1) / 2;
  const std::int32_t left = x - (m_cols - 1) / 2;
  const std::int32_t r_begin = std::max(0, -top);
  const std::int32_t c_begin = std::max(0, -left);
  const auto r_end =
      static_cast<std::int32_t>(std::min<std::int64_t>(m_rows, std::int64_t{m_input_rows} - top));
  const auto c_end =
      static_cast<std::int32_t>(std::min<std::int64_t>(m_cols, std::int64_t{m_input_cols} - left));
  double sum = 0.0;
  for (std::int32_t r = r_begin; r < r_end; ++r) {
    for (std::int32_t c = c_begin; c < c_end; ++c) {
      sum += m_weights[weight_index(r, c, d, k)] * in[top + r][left + c][d];
    }
  }
  return sum;
}

int LayerConv2D::evaluate(Tensor& tensor, LayerBuffer& buffer) const {
  if (tensor.dims != 3 || !tensor.data3 || !m_complete) return -1;
  if (tensor.size_x < m_input_rows || tensor.size_y < m_input_cols ||
      tensor.size_z < m_input_channels || m_depth < m_input_channels) {
    return -1;
  }
  if (m_border_mode == kValid) {
    Message(MessageStream::kError) << "ERROR! rebigrado does not support 'Valid' padding mode.\n";
  }
  if (m_activation != kRelu && m_activation != kSigmoid && m_activation != kTanh) {
    UndefinedActivation(m_activation);
  }
  buffer.cube.resize(m_input_rows, m_input_cols, m_kernels_cnt);
  double*** const out = buffer.cube.data();
  for (std::int32_t y = 0; y < m_input_rows; ++y) {
    for (std::int32_t x = 0; x < m_input_cols; ++x) {
      for (std::int32_t k = 0; k < m_kernels_cnt; ++k) {
        double sum = 0.0;
        for (std::int32_t d = 0; d < m_input_channels; ++d) {
          sum += correlate(tensor.data3, y, x, d, k);
        }
        out[y][x][k] = sum + m_bias[static_cast<std::size_t>(k)];
      }
      ApplyActivation(m_activation, {out[y][x], static_cast<std::size_t>(m_kernels_cnt)});
    }
  }
  tensor.view3(out, m_input_rows, m_input_cols, m_kernels_cnt);
  return 0;
}

}  // namespace keras
