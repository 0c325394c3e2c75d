#pragma once

#include "recognition/keras/KerasModel.h"

// Scores the five tone classes of one Chinese syllable. Loading is for one thread alone;
// classifying is const, any number of threads may.
class DLCTToneClassifier {
 public:
  static constexpr int kInputs = 68;
  static constexpr int kTones = 5;

  // Loads a model file, replacing the model held. Returns its version, or -1 (with a message except
  // where the network loader wrote one); the classifier is then without a model.
  int LoadFromFile(const char* path);

  bool IsLoaded() const { return m_loaded; }

  // `features`: kInputs ints, `output`: kTones scores. Returns 0; -1 after a message when there is
  // no model (the scores are then 0) or it has another number of outputs.
  int ClassifyTone(const int* features, double* output) const;

 private:
  keras::KerasModel m_KerasModel;
  bool m_loaded = false;
};
