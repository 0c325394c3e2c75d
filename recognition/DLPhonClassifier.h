#pragma once

#include "recognition/VectorClassifier.h"

// Scores the phonemes of a set for one aligned segment from 16 of its MFCC frames (kInputs floats).
// Loading is for one thread alone; classifying is const, any number of threads may.
class DLPhonClassifier {
 public:
  static constexpr int kInputs = 624;

  DLPhonClassifier();

  // As DLFrameClassifier::LoadFromFile.
  int LoadFromFile(const char* path) { return m_Classifier.LoadFromFile(path); }

  bool IsLoaded() const { return m_Classifier.IsLoaded(); }

  // `input`: `length` floats, `output`: `expected` scores. Another length or count than the model's
  // is reported and answered with -1; missing scores are then 0. Without a model: a message, zeros,
  // -1.
  int ClassifyPhon(const float* input, int length, double* output, int expected) const;

  // The same for `count` rows, with the same bits.
  int ClassifyPhons(const float* inputs, int count, int length, double* outputs,
                    int expected) const;

 private:
  veral3::VectorClassifier m_Classifier;
};

using PhonClassifier = DLPhonClassifier;
