#include "recognition/UGClassifier.h"

#include <algorithm>
#include <array>

#include "common/MessageWriter.h"
#include "recognition/VectorClassifier.h"

using veral3::Message;
using veral3::MessageStream;

int UGClassifier::LoadFromFile(const char* path) {
  static constexpr veral3::FixedInputTexts kTexts = {
      "UGC Model loaded: [",
      "ERROR in UGClassifier::LoadFromFile(), m_KerasModel.get_input_rows() != 1\n",
      "Error in UGClassifier::LoadFromFile(), incorrect size of inpute columns!\n"};
  return veral3::LoadFixedInputModel(path, kInputs, kTexts, m_KerasModel, m_loaded);
}

double UGClassifier::ClassifyUtteranceGoodness(const double* features) const {
  if (!m_loaded) {
    Message(MessageStream::kError)
        << "ERROR in UGClassifier::ClassifyUtteranceGoodness(), no model is loaded.\n";
    return 0.0;
  }
  std::array<double, kInputs> input;
  std::copy_n(features, kInputs, input.begin());
  std::array<double, kOutputs> output;
  if (!veral3::EvaluateInto(m_KerasModel, input, output)) {
    Message(MessageStream::kError)
        << "ERROR in UGClassifier::ClassifyUtteranceGoodness(), incorrect size of output array.\n";
  }
  return output[0];
}
