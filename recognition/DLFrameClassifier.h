#pragma once

#include "recognition/VectorClassifier.h"

// Scores the phoneme states of one MFCC frame from five frames (195 floats): one score a state,
// each at least 1e-6, which is also what a score that is no number becomes. Loading is for one
// thread alone; classifying is const, any number of threads may.
class DLFrameClassifier {
 public:
  DLFrameClassifier();

  // Loads a model file, replacing the model held. Returns its version. A file that can't be read or
  // whose first layer is not dense: a message and -1; the classifier is then without a model.
  int LoadFromFile(const char* path) { return m_Classifier.LoadFromFile(path); }

  bool IsLoaded() const { return m_Classifier.IsLoaded(); }

  // `input`: `length` floats, `output`: `expected` scores. Another length or count than the model's
  // is reported and answered with -1; missing scores are then 1e-6. Without a model: a message, -1.
  int ClassifyFrame(const float* input, int length, double* output, int expected) const;

  // The same for `count` rows of `length` floats and `expected` scores, several times as fast and
  // with the same bits.
  int ClassifyFrames(const float* inputs, int count, int length, double* outputs,
                     int expected) const;

 private:
  veral3::VectorClassifier m_Classifier;
};

using FrameClassifier = DLFrameClassifier;
