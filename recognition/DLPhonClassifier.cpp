#include "recognition/DLPhonClassifier.h"

namespace {

constexpr veral3::VectorClassifier::Texts kTexts = {
    "PC Model loaded: [",
    "ERROR in DLPhonClassifier::DLPhonClassifier(), m_KerasModel.get_input_rows() != 1\n",
    "ERROR in PhonClassifier::ClassifyPhon(), incorrect size of input array.\n",
    "ERROR in PhonClassifier::ClassifyPhon(), incorrect size of output array.\n",
    "ERROR in PhonClassifier::ClassifyPhon(), no model is loaded.\n"};

}  // namespace

DLPhonClassifier::DLPhonClassifier() : m_Classifier(kTexts) {}

int DLPhonClassifier::ClassifyPhon(const float* input, int length, double* output,
                                   int expected) const {
  return m_Classifier.Classify(input, length, output, expected);
}

int DLPhonClassifier::ClassifyPhons(const float* inputs, int count, int length, double* outputs,
                                    int expected) const {
  return m_Classifier.ClassifyBatch(inputs, count, length, outputs, expected);
}
