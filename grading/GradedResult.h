#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "grading/RecordingView.h"
#include "grading/TotalScore.h"
#include "grading/WordGrading.h"

// Everything a grading finds, and the two ways to grade.
namespace veral3 {

struct GradedResult {
  int total = 0;
  ComponentScores components;
  double goodness_factor = 0.0;  // what all scores were scaled by

  std::vector<int> phoneme_pronunciation;
  std::vector<int> syllable_pronunciation, syllable_pitch, syllable_timing, syllable_intensity;
  std::vector<int> syllable_timing_percent, syllable_intensity_percent;
  WordGrades words;

  // These keep what they held where a grading does not make them.
  std::string pitch_advice, timing_advice, intensity_advice;  // one letter a syllable
  std::vector<bool> unnecessary_pause;                        // one a syllable
  std::vector<double> word_pitch_contrast, word_timing_contrast, word_intensity_contrast;
  std::vector<int> correct_tone, student_tone;  // Chinese
  std::array<double, 3> timing_traits{};        // rhythm agreement at the quarter points
  double prob_good_timing = 0.0;
  double pitch_segment_ratio = 0.0;
  bool complete = false;  // a grading went through to its end since the object was made

  // Drops the score arrays; the rest stays.
  void ReleaseScores();
};

// Asks how probable it is that the learner's recording is a reading at all; called once, last.
using ProbabilityOfGoodReading = std::function<double()>;

// Grades everything against the tutor. Returns the total, 0 to 100; 0 with a message, and `graded`
// as it was, when the tutor speaks another language; -1 when the pronunciation can't be graded:
// then `graded` has what the steps before made.
int GradeAgainstTutor(const LearnerView& learner, const RecordingView& tutor,
                      const ProbabilityOfGoodReading& probability, GradedResult& graded);

// Grades the pronunciation alone; the other components become 100 without having been measured.
int GradePronunciationOnly(const LearnerView& learner, const ProbabilityOfGoodReading& probability,
                           GradedResult& graded);

}  // namespace veral3
