#pragma once

#include "recognition/keras/KerasModel.h"

// The probability that an alignment is good. Loading is for one thread alone; classifying is const,
// any number of threads may.
class UGClassifier {
 public:
  static constexpr int kInputs = 16;
  static constexpr int kOutputs = 2;

  // As DLCTToneClassifier::LoadFromFile.
  int LoadFromFile(const char* path);

  bool IsLoaded() const { return m_loaded; }

  // `features`: kInputs doubles. Returns the model's first output. A model with another number of
  // outputs than two is reported. Without a model: a message and 0.0, so that nobody takes the
  // alignment for a good one.
  double ClassifyUtteranceGoodness(const double* features) const;

 private:
  keras::KerasModel m_KerasModel;
  bool m_loaded = false;
};
