#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "recognition/keras/KerasModel.h"

namespace veral3 {

// What the frame and the phoneme classifier have in common: a network that turns a vector of floats
// into class scores, and the texts that they differ in. Loading is for one thread alone;
// classifying is const and may run on many threads.
class VectorClassifier {
 public:
  struct Texts {
    const char* loaded;      // up to the path
    const char* input_rows;  // whole messages from here on
    const char* input_size;
    const char* output_size;
    const char* no_model;
  };

  explicit VectorClassifier(const Texts& texts) : m_texts(texts) {}

  // Returns the model's version, or -1 after a message; then the classifier is without a model,
  // even if it had one.
  int LoadFromFile(const char* path);

  bool IsLoaded() const { return m_loaded; }
  int InputLength() const { return m_nInputLength; }

  // Scores one vector. A length other than the model's, or another number of scores than
  // `expected`, is reported; then what there is of the result is written, the rest is zero, and -1
  // comes back. Without a model: a message, zeros, -1. Otherwise 0.
  int Classify(const float* input, int length, double* output, int expected) const;

  // Scores `count` vectors, row after row, with the results and messages of one Classify each.
  int ClassifyBatch(const float* inputs, int count, int length, double* outputs,
                    int expected) const;

 private:
  int ReportNoModel() const;

  const Texts& m_texts;
  keras::KerasModel m_KerasModel;
  bool m_loaded = false;
  int m_nInputLength = 0;
};

// Runs `model` on `input` and copies its 1-D result to `output`; what the result lacks is zero.
// Returns whether the result was 1-D of just that size.
bool EvaluateInto(const keras::KerasModel& model, std::span<double> input,
                  std::span<double> output);

// Loads a model file whose first layer is dense with `input_cols` inputs, in the manner of the tone
// and the goodness classifier. Returns the version, or -1 with `model` empty.
struct FixedInputTexts {
  const char* loaded;  // up to the path
  const char* input_rows;
  const char* input_cols;
};
int LoadFixedInputModel(const char* path, int input_cols, const FixedInputTexts& texts,
                        keras::KerasModel& model, bool& loaded);

}  // namespace veral3
