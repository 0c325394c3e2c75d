#include "recognition/VectorClassifier.h"

#include <algorithm>
#include <vector>

#include "common/MessageWriter.h"

namespace veral3 {

bool EvaluateInto(const keras::KerasModel& model, std::span<double> input,
                  std::span<double> output) {
  keras::Tensor tensor;
  tensor.view1(input.data(), static_cast<std::int32_t>(input.size()));
  keras::Workspace workspace;
  model.evaluate(tensor, workspace);
  const std::size_t size = tensor.dims == 1 ? static_cast<std::size_t>(tensor.size_x) : 0;
  const auto end = std::copy_n(tensor.data1, std::min(size, output.size()), output.begin());
  std::fill(end, output.end(), 0.0);
  return tensor.dims == 1 && size == output.size();
}

int LoadFixedInputModel(const char* path, int input_cols, const FixedInputTexts& texts,
                        keras::KerasModel& model, bool& loaded) {
  loaded = false;
  model = {};
  keras::KerasModel fresh;
  if (fresh.load_binary_weights(path ? path : "", false) != 0) return -1;
  if (fresh.get_input_rows() != 1) {
    Message(MessageStream::kError) << texts.input_rows;
    return -1;
  }
  if (fresh.get_input_cols() != input_cols) {
    Message(MessageStream::kError) << texts.input_cols;
    return -1;
  }
  Message(MessageStream::kError) << texts.loaded << path << "];\tVersion = [" << fresh.version()
                                 << "]\n";
  model = std::move(fresh);
  loaded = true;
  return model.version();
}

int VectorClassifier::LoadFromFile(const char* path) {
  m_loaded = false;
  m_nInputLength = 0;
  m_KerasModel = {};
  keras::KerasModel model;
  if (model.load_binary_weights(path ? path : "", false) != 0) {
    Message(MessageStream::kError)
        << "ERROR! Cannot load model file [" << (path ? path : "") << "]\n";
    return -1;
  }
  Message(MessageStream::kError) << m_texts.loaded << path << "];\tVersion = [" << model.version()
                                 << "]\n";
  if (model.get_input_rows() != 1) {
    Message(MessageStream::kError) << m_texts.input_rows;
    return -1;
  }
  m_KerasModel = std::move(model);
  m_nInputLength = m_KerasModel.get_input_cols();
  m_loaded = true;
  return m_KerasModel.version();
}

int VectorClassifier::ReportNoModel() const {
  Message(MessageStream::kError) << m_texts.no_model;
  return -1;
}

int VectorClassifier::Classify(const float* input, int length, double* output, int expected) const {
  const auto outputs = static_cast<std::size_t>(output ? std::max(expected, 0) : 0);
  if (!m_loaded) {
    std::fill_n(output, outputs, 0.0);
    return ReportNoModel();
  }
  bool fits = length == m_nInputLength;
  if (!fits) Message(MessageStream::kError) << m_texts.input_size;
  const auto inputs = static_cast<std::size_t>(input ? std::max(length, 0) : 0);
  std::vector<double> values(std::max<std::size_t>(inputs, 1));
  std::copy_n(input, inputs, values.begin());
  const bool whole =
      EvaluateInto(m_KerasModel, std::span(values).first(inputs), std::span(output, outputs));
  if (!whole || static_cast<int>(outputs) != expected) {
    Message(MessageStream::kError) << m_texts.output_size;
    fits = false;
  }
  return fits ? 0 : -1;
}

int VectorClassifier::ClassifyBatch(const float* inputs, int count, int length, double* outputs,
                                    int expected) const {
  if (!m_loaded) return ReportNoModel();
  if (count <= 0) return 0;
  if (inputs && outputs && length == m_nInputLength &&
      m_KerasModel.is_dense_chain(length, expected)) {
    const std::size_t rows = static_cast<std::size_t>(count);
    const std::vector<double> values(inputs, inputs + rows * static_cast<std::size_t>(length));
    keras::Workspace workspace;
    m_KerasModel.compute_batch(values.data(), rows, length, outputs, expected, workspace);
    return 0;
  }
  int result = 0;
  for (std::ptrdiff_t n = 0; n < count; ++n) {
    const float* const input = inputs ? inputs + n * length : nullptr;
    double* const output = outputs ? outputs + n * expected : nullptr;
    if (Classify(input, length, output, expected) != 0) result = -1;
  }
  return result;
}

}  // namespace veral3
