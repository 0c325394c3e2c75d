#include "recognition/keras/KerasModel.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "common/MessageWriter.h"
#include "recognition/keras/Activation.h"
#include "recognition/keras/BinaryFile.h"
#include "recognition/keras/LayerConv2D.h"
#include "recognition/keras/LayerDense.h"
#include "recognition/keras/LayerDropout.h"
#include "recognition/keras/LayerFlatten.h"
#include "recognition/keras/LayerMaxPooling.h"

namespace keras {
namespace {

using veral3::Message;
using veral3::MessageStream;

constexpr std::size_t kChunk = 64;  // inputs that pass through all layers together, in the cache

std::unique_ptr<Layer> MakeLayer(char code) {
  switch (code) {
    case kConv2D:
      return std::make_unique<LayerConv2D>();
    case kMaxPooling:
      return std::make_unique<LayerMaxPooling>();
    case kDense:
      return std::make_unique<LayerDense>();
    case kFlatten:
      return std::make_unique<LayerFlatten>();
    case kDropout:
      return std::make_unique<LayerDropout>();
    default:
      return nullptr;
  }
}

// Runs step(i) for each layer that is there, with the messages of an evaluation.
template <typename Step>
void RunLayers(const std::vector<std::unique_ptr<Layer>>& layers, const Tensor& tensor,
               bool verbose, Step step) {
  for (std::size_t i = 0; i < layers.size(); ++i) {
    if (!layers[i]) {
      Message(MessageStream::kOutput) << "Skipping Dropout layer\n";
      continue;
    }
    const char code = layers[i]->type();
    if (verbose) Message(MessageStream::kOutput) << "Processing layer [" << code << "]\n";
    if (step(i) != 0) {
      Message(MessageStream::kError)
          << "ERROR in KerasModel::compute_output() - Cannot process layer. Layer type=[" << code
          << "]\n";
    }
    if (verbose) {
      Message(MessageStream::kOutput) << "Output:\n";
      tensor.print();
    }
  }
}

}  // namespace

int KerasModel::load_binary_weights(const std::string& path, bool verbose) {
  if (verbose) Message(MessageStream::kOutput) << "Reading model from " << path << "\n";
  // Only a regular file says how long it is.
  std::error_code error;
  std::ifstream file;
  if (std::filesystem::is_regular_file(path, error)) file.open(path, std::ios::binary);
  if (!file.is_open()) {
    Message(MessageStream::kError) << "*** Error: Cannot load Keras Model file <" << path << ">\n";
    return -1;
  }
  return load_binary_weights(file, verbose);
}

int KerasModel::load_binary_weights(std::istream& file, bool verbose) {
  m_layers.clear();
  m_version = ReadInt32(file);
  const std::int32_t count = ReadInt32(file);
  if (verbose) Message(MessageStream::kOutput) << "Layers " << count << "\n";
  if (count < 0) {
    Message(MessageStream::kError)
        << "Error in KerasModel::load_binary_weights(), negative number of layers: " << count
        << "\n";
    return -1;
  }
  // A count that the file can't hold ends at the first record that lacks.
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t number = ReadInt32(file);
    const char code = ReadChar(file);
    if (verbose) {
      Message(MessageStream::kOutput) << "Layer " << number << " " << code << "\n";
    }
    std::unique_ptr<Layer> layer = MakeLayer(code);
    if (!layer) {
      Message(MessageStream::kError)
          << "Error in KerasModel::load_binary_weights(), unknow layer.\n";
      return -1;
    }
    if (layer->load_binary_weights(file, verbose) < 0) return -1;
    m_layers.push_back(std::move(layer));
    if (verbose) {
      Message(MessageStream::kOutput) << "Layer successfully loaded. Layer type=[" << code << "]\n";
      m_layers.back()->print_weights();
    }
  }
  return 0;
}

int KerasModel::save_binary_weights(const std::string& path) const {
  std::ofstream file(path, std::ios::binary);
  if (save_binary_weights(file) != 0 || !file.flush()) {
    Message(MessageStream::kError) << "*** Error: Cannot save Keras Model file <" << path << ">\n";
    return -1;
  }
  return 0;
}

int KerasModel::save_binary_weights(std::ostream& file) const {
  // An empty slot has no record of its own; as a dropout layer it evaluates alike.
  static const LayerDropout empty_slot;
  WriteInt32(file, m_version);
  WriteInt32(file, static_cast<std::int32_t>(m_layers.size()));
  for (std::size_t i = 0; i < m_layers.size(); ++i) {
    const Layer& layer = m_layers[i] ? *m_layers[i] : static_cast<const Layer&>(empty_slot);
    WriteInt32(file, static_cast<std::int32_t>(i));
    WriteChar(file, layer.type());
    if (layer.save_binary_weights(file) != 0) return -1;
  }
  return file.good() ? 0 : -1;
}

int KerasModel::compute_output(Tensor& tensor, bool verbose) {
  RunLayers(m_layers, tensor, verbose,
            [&](std::size_t i) { return m_layers[i]->compute_output(tensor); });
  return 0;
}

int KerasModel::evaluate(Tensor& tensor, Workspace& workspace) const {
  if (workspace.layers.size() < m_layers.size()) workspace.layers.resize(m_layers.size());
  RunLayers(m_layers, tensor, false,
            [&](std::size_t i) { return m_layers[i]->evaluate(tensor, workspace.layers[i]); });
  return 0;
}

int KerasModel::compute_batch(const double* inputs, std::size_t count, std::int32_t input_size,
                              double* outputs, std::int32_t output_size,
                              Workspace& workspace) const {
  const auto width = static_cast<std::size_t>(output_size);
  if (workspace.kernel && is_dense_chain(input_size, output_size)) {
    run_dense_chain(inputs, count, static_cast<std::size_t>(input_size), outputs, width, workspace);
    return 0;
  }
  std::vector<double> input(static_cast<std::size_t>(input_size));
  int result = 0;
  for (std::size_t n = 0; n < count; ++n) {
    std::copy_n(inputs + n * input.size(), input.size(), input.begin());
    Tensor tensor;
    tensor.view1(input.data(), input_size);
    evaluate(tensor, workspace);
    const bool fits = tensor.dims == 1 && tensor.size_x == output_size;
    if (!fits) result = -1;
    const std::size_t there =
        tensor.dims == 1 ? std::min(width, static_cast<std::size_t>(tensor.size_x)) : 0;
    double* const row = outputs + n * width;
    std::fill(std::copy_n(tensor.data1, there, row), row + width, 0.0);
  }
  return result;
}

bool KerasModel::is_dense_chain(std::int32_t input_size, std::int32_t output_size) const {
  std::int32_t size = input_size;
  for (const std::unique_ptr<Layer>& layer : m_layers) {
    if (!layer) return false;
    if (layer->type() == kDropout) continue;
    const auto* const dense = dynamic_cast<const LayerDense*>(layer.get());
    if (!dense || !dense->complete() || dense->get_input_cols() > size ||
        !IsActivation(dense->activation())) {
      return false;
    }
    size = dense->get_output_units();
  }
  // Nothing has no data to start from or hand on; such models go one at a time.
  return size == output_size && size > 0 && input_size > 0;
}

void KerasModel::run_dense_chain(const double* inputs, std::size_t count, std::size_t input_size,
                                 double* outputs, std::size_t output_size,
                                 Workspace& workspace) const {
  const DenseKernel& kernel = *workspace.kernel;
  std::size_t widest = input_size;
  for (const std::unique_ptr<Layer>& layer : m_layers) {
    widest = std::max(widest, static_cast<std::size_t>(layer->get_output_units()));
  }
  // Whole panels, an odd number of them: rows must not all fall into the same cache lines.
  const std::size_t stride = ((widest + kPanel - 1) / kPanel | 1) * kPanel;
  for (AlignedVector<double>& rows : workspace.rows) {
    rows.resize(std::max(rows.size(), stride * std::min(count, kChunk)));
  }
  for (std::size_t first = 0; first < count; first += kChunk) {
    const std::size_t chunk = std::min(count - first, kChunk);
    Rows in{workspace.rows[0].data(), stride, chunk};
    Rows out{workspace.rows[1].data(), stride, chunk};
    for (std::size_t n = 0; n < chunk; ++n) {
      std::copy_n(inputs + (first + n) * input_size, input_size, in[n]);
    }
    for (const std::unique_ptr<Layer>& layer : m_layers) {
      if (layer->type() == kDropout) continue;
      const auto& dense = static_cast<const LayerDense&>(*layer);
      const auto width = static_cast<std::size_t>(dense.get_output_units());
      const char activation = dense.activation();
      kernel.forward(dense.packed(), in, out, activation == kRelu, workspace.scratch);
      if (activation == kSoftmax) kernel.softmax(out, width);
      if (activation == kSigmoid || activation == kTanh) {
        for (std::size_t n = 0; n < chunk; ++n) ApplyActivation(activation, {out[n], width});
      }
      std::swap(in, out);
    }
    for (std::size_t n = 0; n < chunk; ++n) {
      std::copy_n(in[n], output_size, outputs + (first + n) * output_size);
    }
  }
}

const Layer* KerasModel::first_layer() const {
  return m_layers.empty() ? nullptr : m_layers.front().get();
}

std::int32_t KerasModel::get_input_rows() const {
  return first_layer() ? first_layer()->get_input_rows() : 0;
}

std::int32_t KerasModel::get_input_cols() const {
  return first_layer() ? first_layer()->get_input_cols() : 0;
}

std::int32_t KerasModel::get_output_units() const {
  return first_layer() ? first_layer()->get_output_units() : 0;
}

}  // namespace keras
