#include "recognition/keras/LayerDense.h"

#include <algorithm>
#include <istream>
#include <ostream>
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
    "ERROR in LayerDense::load_weights(). When loading weights, expect '[', but got:",
    "ERROR in LayerDense::load_weights() - When loading weights, expect  ']', but got:"};
constexpr TextBrackets kBiasBrackets = {
    "ERROR in LayerDense::load_weights(). When loading bias, expect '[', but got:",
    "ERROR in LayerDense::load_weights() - When loading bias, expect ']', but got:"};

int RefuseSizes(const char* operation, std::int32_t inputs, std::int32_t neurons) {
  Message(MessageStream::kError) << "ERROR in LayerDense::" << operation
                                 << "(). Impossible sizes: input count=" << inputs
                                 << ", neuron count=" << neurons << "\n";
  return -1;
}

bool ExpectBracket(std::istream& file, char bracket) {
  const char c = ReadChar(file);
  if (c == bracket) return true;
  Message(MessageStream::kError) << "ERROR in LayerDense::load_binary_weights(). Expect '"
                                 << bracket << "', but got:" << c << "\n";
  return false;
}

}  // namespace

LayerDense::LayerDense(std::span<const double> weights, std::span<const double> bias,
                       char activation)
    : Layer(kDense),
      m_inputs(bias.empty() ? 0 : static_cast<std::int32_t>(weights.size() / bias.size())),
      m_neurons(static_cast<std::int32_t>(bias.size())),
      m_activation(activation),
      m_bias(bias.begin(), bias.end()) {
  m_weights.assign(weights.begin(), weights.begin() + std::ptrdiff_t{m_inputs} * m_neurons);
  finish();
}

void LayerDense::clear() {
  m_inputs = m_neurons = 0;
  m_activation = 0;
  m_complete = false;
  m_weights.clear();
  m_bias.clear();
  m_packed = {};
}

void LayerDense::finish() {
  m_packed = PackDense(static_cast<std::size_t>(m_inputs), static_cast<std::size_t>(m_neurons),
                       m_weights, m_bias);
  m_complete = true;
}

int LayerDense::load_weights(std::istream& text, bool) {
  clear();
  std::string word;
  text >> word;
  m_activation = ActivationOfWord(word);
  if (m_activation == 0) {
    Message(MessageStream::kError)
        << "Error in LayerDense::load_weights(). Unknow activation mode [" << word << "]\n";
    return -1;
  }
  text >> m_inputs >> m_neurons;
  if (!NoneNegative({m_inputs, m_neurons}) || SizeProduct({m_inputs, m_neurons}) > kMaxTextSize ||
      std::max(m_inputs, m_neurons) > static_cast<std::int32_t>(kMaxTextSize)) {
    return RefuseSizes("load_weights", m_inputs, m_neurons);
  }
  const auto inputs = static_cast<std::size_t>(m_inputs);
  const auto neurons = static_cast<std::size_t>(m_neurons);
  std::vector<double> input_major;  // grows with what is there, not with what is announced
  for (std::size_t i = 0; i < inputs; ++i) {
    if (!ReadTextGroup(text, neurons, kWeightBrackets, input_major)) {
      return ReportShortText("LayerDense");
    }
  }
  std::vector<double> bias;
  if (!ReadTextGroup(text, neurons, kBiasBrackets, bias)) return ReportShortText("LayerDense");
  m_bias = std::move(bias);
  m_weights.resize(inputs * neurons);
  for (std::size_t i = 0; i < inputs; ++i) {
    for (std::size_t j = 0; j < neurons; ++j) {
      m_weights[j * inputs + i] = input_major[i * neurons + j];
    }
  }
  finish();
  return 0;
}

int LayerDense::load_binary_weights(std::istream& file, bool) {
  clear();
  m_activation = ReadChar(file);
  m_inputs = ReadInt32(file);
  m_neurons = ReadInt32(file);
  const std::uint64_t room = BytesLeft(file) / 4;  // floats
  const auto neurons = static_cast<std::size_t>(m_neurons);
  if (!NoneNegative({m_inputs, m_neurons}) || SizeProduct({m_inputs, m_neurons}) > room ||
      SizeProduct({m_inputs, m_neurons}) + neurons > room) {
    return RefuseSizes("load_binary_weights", m_inputs, m_neurons);
  }
  const auto inputs = static_cast<std::size_t>(m_inputs);
  m_weights.resize(inputs * neurons);
  m_bias.resize(neurons);
  std::vector<double> group(neurons);
  for (std::size_t i = 0; i < inputs; ++i) {
    if (!ExpectBracket(file, '[')) return -1;
    ReadFloats(file, group);
    if (!ExpectBracket(file, ']')) return -1;
    for (std::size_t j = 0; j < neurons; ++j) m_weights[j * inputs + i] = group[j];
  }
  if (!ExpectBracket(file, '[')) return -1;
  ReadFloats(file, m_bias);
  if (!ExpectBracket(file, ']')) return -1;
  finish();
  return 0;
}

int LayerDense::save_binary_weights(std::ostream& file) const {
  const auto inputs = static_cast<std::size_t>(m_inputs);
  const auto neurons = static_cast<std::size_t>(m_neurons);
  if (!m_complete) return -1;
  WriteChar(file, m_activation);
  WriteInt32(file, m_inputs);
  WriteInt32(file, m_neurons);
  std::vector<double> group(neurons);
  for (std::size_t i = 0; i < inputs; ++i) {
    for (std::size_t j = 0; j < neurons; ++j) group[j] = m_weights[j * inputs + i];
    WriteChar(file, '[');
    WriteFloats(file, group);
    WriteChar(file, ']');
  }
  WriteChar(file, '[');
  WriteFloats(file, m_bias);
  WriteChar(file, ']');
  return 0;
}

void LayerDense::print_weights() const {
  Message text(MessageStream::kOutput);
  text << "Dense Layer weights:\n";
  const auto inputs = m_complete ? static_cast<std::size_t>(m_inputs) : 0;
  for (std::size_t i = 0; i < inputs; ++i) {
    text << "[";
    for (std::size_t j = 0; j < m_bias.size(); ++j) text << m_weights[j * inputs + i] << " ";
    text << "]\n";
  }
  text << "Bias:\n";
  for (const double value : m_bias) text << value << " ";
  text << "]\n=====Dense Layer weights=====\n";
}

int LayerDense::evaluate(Tensor& tensor, LayerBuffer& buffer) const {
  if (tensor.dims != 1 || !tensor.data1 || tensor.size_x < m_inputs || !m_complete) return -1;
  buffer.values.resize(std::max<std::size_t>(m_bias.size(), 1));
  const std::span<double> out = std::span(buffer.values).first(m_bias.size());
  DenseReference(m_weights, m_bias, tensor.data1, out.data());
  ApplyActivation(m_activation, out);
  tensor.view1(buffer.values.data(), m_neurons);
  return 0;
}

}  // namespace keras
