#pragma once

#include <string>
#include <vector>

#include "grading/RecordingView.h"

// Melody against the tutor's: in English and Japanese by where the highest syllables lie, in
// Chinese by the tones.
namespace veral3 {

struct PitchGrades {
  std::vector<int> syllable;          // one score a learner's syllable
  std::string advice;                 // '-hHlL', or '0'..'4' (the learner's tone) in Chinese
  std::vector<double> word_contrast;  // English only; what is not graded stays as it came in
  std::vector<int> correct_tone;      // Chinese: the tutor's most likely tone a syllable
  std::vector<int> student_tone;      // Chinese: the learner's
  double segment_ratio = 0.0;         // pitch segments, learner / tutor, whole; 100 for no tutor's
  int utterance_penalty = 0;
  int word_penalty = 0;
  int score = 0;
  bool graded = false;  // false for an unknown language, which is reported
};

// `word_contrast`: the contrasts to start from, one a word.
PitchGrades GradePitch(const LearnerView& learner, const RecordingView& tutor,
                       std::vector<double> word_contrast);

// 100 - 10 x the divergence (Kullback-Leibler, natural logarithm) of the learner's tone
// probabilities from the tutor's, at least 0. Zeros count as 1e-10.
int GradeTone(const ToneRow& tutor, const ToneRow& learner);

// The class of the highest probability; of equals the lower one.
int MostLikelyTone(const ToneRow& tones);

}  // namespace veral3
