#include "recognition/DLFrameClassifier.h"

#include <algorithm>
#include <span>

namespace {

constexpr double kFloor = 1e-6;  // keeps the aligner's logarithms finite

constexpr veral3::VectorClassifier::Texts kTexts = {
    "FC Model loaded: [",
    "ERROR in DLFrameClassifier::DLFrameClassifier(), m_KerasModel.get_input_rows() != 1\n",
    "ERROR in FrameClassifier::ClassifyFrame(), incorrect size of input array.\n",
    "ERROR in FrameClassifier::ClassifyFrame(), incorrect size of output array.\n",
    "ERROR in FrameClassifier::ClassifyFrame(), no model is loaded.\n"};

void RaiseToFloor(double* scores, std::size_t count) {
  for (double& score : std::span(scores, count)) {
    if (!(score >= kFloor)) score = kFloor;  // a score that is no number is no score
  }
}

}  // namespace

DLFrameClassifier::DLFrameClassifier() : m_Classifier(kTexts) {}

int DLFrameClassifier::ClassifyFrame(const float* input, int length, double* output,
                                     int expected) const {
  const int result = m_Classifier.Classify(input, length, output, expected);
  if (output) RaiseToFloor(output, static_cast<std::size_t>(std::max(expected, 0)));
  return result;
}

int DLFrameClassifier::ClassifyFrames(const float* inputs, int count, int length, double* outputs,
                                      int expected) const {
  const int result = m_Classifier.ClassifyBatch(inputs, count, length, outputs, expected);
  if (!IsLoaded() || !outputs) return result;
  RaiseToFloor(outputs, static_cast<std::size_t>(std::max(count, 0)) *
                            static_cast<std::size_t>(std::max(expected, 0)));
  return result;
}
