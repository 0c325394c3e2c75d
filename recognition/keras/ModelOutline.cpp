#include "recognition/keras/ModelOutline.h"

#include <algorithm>
#include <cmath>
#include <istream>
#include <span>

#include "recognition/keras/Activation.h"
#include "recognition/keras/BinaryFile.h"
#include "recognition/keras/Layer.h"

namespace keras {
namespace {

constexpr const char* kCopyAgain = "copy or make the file again";
constexpr const char* kTrainAgain = "train it again";
constexpr const char* kSmaller = "give a smaller network";
constexpr std::uint64_t kRecordHead = 5;  // bytes of a layer's number and kind

// Where numbers stand in a layer: a group a weight row, the last one the biases.
struct Groups {
  std::uint64_t weight_groups = 0;
  std::size_t width = 0;  // numbers of each, and of the biases

  std::uint64_t Numbers() const { return (weight_groups + 1) * width; }
  std::uint64_t Bytes() const { return (weight_groups + 1) * (2 + 4 * std::uint64_t{width}); }
};

std::string Name(std::size_t layer) { return "layer " + std::to_string(layer + 1); }

// 'q' (0x71), or the number alone.
std::string CodeText(char code) {
  constexpr const char* kDigits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(code);
  const bool is_shown = byte > 0x20 && byte < 0x7F;
  std::string text;
  if (is_shown) text.append("'").append(1, code).append("' (");
  text.append("0x").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
  if (is_shown) text.append(")");
  return text;
}

class Reader {
 public:
  Reader(std::istream& file, ModelOutline& outline) : m_file(file), m_outline(outline) {}

  ModelFault Read() {
    m_outline = {};
    if (BytesLeft(m_file) < 8) return {"it ends before the number of its layers", kCopyAgain};
    m_outline.version = ReadInt32(m_file);
    const std::int32_t count = ReadInt32(m_file);
    if (count == 0) return {"it has no layers", "give a trained network"};
    const std::string announced = "it announces " + std::to_string(count) + " layers";
    if (count < 0) return {announced, kCopyAgain};
    if (static_cast<std::uint64_t>(count) > BytesLeft(m_file) / kRecordHead) {
      return {announced + ", more than the file can hold", kCopyAgain};
    }
    if (count > kMaxLayers) {
      return {announced + "; at most " + std::to_string(kMaxLayers) + " are taken",
              "leave out those that do nothing, such as dropout layers"};
    }
    for (std::int32_t i = 0; i < count; ++i) {
      m_name = Name(m_outline.layers.size());
      if (ModelFault fault = ReadLayer()) return fault;
    }
    return {};
  }

 private:
  ModelFault ReadLayer() {
    if (BytesLeft(m_file) < kRecordHead) return CutOff();
    ReadInt32(m_file);
    LayerOutline layer;
    layer.kind = ReadChar(m_file);
    ModelFault fault;
    switch (layer.kind) {
      case kDense:
        fault = ReadDense(layer);
        break;
      case kConv2D:
        fault = ReadConvolution(layer);
        break;
      case kMaxPooling:
        fault = ReadPlane(layer, 20);
        if (!fault && std::min(ReadInt32(m_file), ReadInt32(m_file)) <= 0) {
          fault = {m_name + " has pools without values", kCopyAgain};
        }
        break;
      case kFlatten:
        fault = ReadPlane(layer, 12);
        break;
      case kDropout:
        break;
      default:
        return {m_name + " is of the unknown kind " + CodeText(layer.kind), kCopyAgain};
    }
    if (!fault) m_outline.layers.push_back(layer);
    return fault;
  }

  ModelFault ReadDense(LayerOutline& layer) {
    if (BytesLeft(m_file) < 9) return CutOff();
    layer.activation = ReadChar(m_file);
    if (!IsActivation(layer.activation)) return UnknownActivation(layer.activation);
    layer.rows = layer.channels = 1;
    layer.cols = ReadInt32(m_file);
    layer.outputs = ReadInt32(m_file);
    if (layer.cols < 0 || layer.outputs < 0) return NegativeSize();
    if (layer.cols == 0) return {m_name + " has no inputs", kTrainAgain};
    if (layer.outputs == 0) return {m_name + " has no outputs", kTrainAgain};
    if (std::max(layer.cols, layer.outputs) > kMaxLayerSize) {
      return {m_name + " has " + std::to_string(layer.cols) + " inputs and " +
                  std::to_string(layer.outputs) + " outputs; at most " +
                  std::to_string(kMaxLayerSize) + " are taken",
              kSmaller};
    }
    return ReadGroups(
        layer, {static_cast<std::uint64_t>(layer.cols), static_cast<std::size_t>(layer.outputs)});
  }

  ModelFault ReadConvolution(LayerOutline& layer) {
    if (BytesLeft(m_file) < 1 + 12 + 16 + 1) return CutOff();
    layer.activation = ReadChar(m_file);
    if (!IsActivation(layer.activation) || layer.activation == kSoftmax) {
      return UnknownActivation(layer.activation);
    }
    if (ModelFault fault = ReadPlane(layer, 12)) return fault;
    const std::int32_t kernel_rows = ReadInt32(m_file);
    const std::int32_t kernel_cols = ReadInt32(m_file);
    const std::int32_t depth = ReadInt32(m_file);
    layer.outputs = ReadInt32(m_file);
    ReadChar(m_file);  // the border; every value is computed alike
    if (!NoneNegative({kernel_rows, kernel_cols, depth, layer.outputs})) return NegativeSize();
    const std::uint64_t groups = SizeProduct({kernel_rows, kernel_cols, depth});
    if (groups == 0 || layer.outputs == 0) return {m_name + " has no kernels", kTrainAgain};
    if (groups > kMaxLayerSize || layer.outputs > kMaxLayerSize) {
      return {m_name + " has kernels of more than " + std::to_string(kMaxLayerSize) +
                  " weights, or more than so many kernels",
              kSmaller};
    }
    return ReadGroups(layer, {groups, static_cast<std::size_t>(layer.outputs)});
  }

  // The sizes of a 3-D input, in a record that goes on for `bytes` at least.
  ModelFault ReadPlane(LayerOutline& layer, std::uint64_t bytes) {
    if (BytesLeft(m_file) < bytes) return CutOff();
    layer.rows = ReadInt32(m_file);
    layer.cols = ReadInt32(m_file);
    layer.channels = ReadInt32(m_file);
    if (!NoneNegative({layer.rows, layer.cols, layer.channels})) return NegativeSize();
    if (SizeProduct({layer.rows, layer.cols, layer.channels}) > kMaxNumbers) {
      return {m_name + " has an input of more than " + std::to_string(kMaxNumbers) + " values",
              kSmaller};
    }
    return {};
  }

  ModelFault ReadGroups(LayerOutline& layer, const Groups& groups) {
    layer.numbers = groups.Numbers();
    m_numbers += layer.numbers;
    if (groups.Bytes() > BytesLeft(m_file)) return CutOff();
    if (m_numbers > kMaxNumbers) {
      return {"it has more than " + std::to_string(kMaxNumbers) + " numbers", kSmaller};
    }
    std::vector<double> group(groups.width);
    std::vector<double> sums(groups.width);
    for (std::uint64_t i = 0; i <= groups.weight_groups; ++i) {
      const bool is_bias = i == groups.weight_groups;
      if (ReadChar(m_file) != '[') return NoBracket();
      ReadFloats(m_file, group);
      if (ReadChar(m_file) != ']') return NoBracket();
      for (std::size_t j = 0; j < group.size(); ++j) {
        if (!std::isfinite(group[j])) return NotFinite(group[j], is_bias);
        if (!is_bias) sums[j] += std::abs(group[j]);
        if (is_bias) layer.offset = std::max(layer.offset, std::abs(group[j]));
      }
    }
    layer.gain = *std::ranges::max_element(sums);
    return {};
  }

  ModelFault CutOff() const { return {"it ends in the middle of " + m_name, kCopyAgain}; }
  ModelFault NegativeSize() const { return {m_name + " has a negative size", kCopyAgain}; }
  ModelFault NoBracket() const {
    return {m_name + " has another byte where a bracket belongs", kCopyAgain};
  }
  ModelFault UnknownActivation(char code) const {
    return {m_name + " has the unknown activation code " + CodeText(code), kCopyAgain};
  }
  ModelFault NotFinite(double value, bool is_bias) const {
    return {m_name + " has a " + (is_bias ? "bias" : "weight") + " that is " +
                (std::isnan(value) ? "not a number" : "infinite"),
            kTrainAgain};
  }

  std::istream& m_file;
  ModelOutline& m_outline;
  std::string m_name;  // of the layer being read
  std::uint64_t m_numbers = 0;
};

}  // namespace

ModelFault ReadModelOutline(std::istream& file, ModelOutline& outline) {
  return Reader(file, outline).Read();
}

}  // namespace keras
