#include "recognition/DLCTToneClassifier.h"

#include <algorithm>
#include <array>

#include "common/MessageWriter.h"
#include "recognition/VectorClassifier.h"

using veral3::Message;
using veral3::MessageStream;

int DLCTToneClassifier::LoadFromFile(const char* path) {
  // The first text names the frame classifier; applications may look for it.
  static constexpr veral3::FixedInputTexts kTexts = {
      "TC Model loaded: [",
      "ERROR in DLFrameClassifier::DLFrameClassifier(), m_KerasModel.get_input_rows() != 1\n",
      "Error in DLCTToneClassifier::DLCTToneClassifier(), incorrect size of inpute columns!\n"};
  return veral3::LoadFixedInputModel(path, kInputs, kTexts, m_KerasModel, m_loaded);
}

int DLCTToneClassifier::ClassifyTone(const int* features, double* output) const {
  const std::span<double> tones(output, kTones);
  if (!m_loaded) {
    std::fill(tones.begin(), tones.end(), 0.0);
    Message(MessageStream::kError)
        << "ERROR in DLCTToneClassifier::ClassifyTone(), no model is loaded.\n";
    return -1;
  }
  std::array<double, kInputs> input;
  std::copy_n(features, kInputs, input.begin());
  if (veral3::EvaluateInto(m_KerasModel, input, tones)) return 0;
  Message(MessageStream::kError)
      << "ERROR in FrameClassifier::ClassifyFrame(), incorrect size of output array.\n";
  return -1;
}
