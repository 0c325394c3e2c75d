#pragma once

#include <array>
#include <string>
#include <vector>

#include "grading/RecordingView.h"

// Timing against the tutor's: overall rhythm, long syllables, pauses.
namespace veral3 {

// Where the quarter, half and three quarter points of an utterance fall.
struct RhythmGrade {
  std::array<double, 3> agreement{1.0, 1.0, 1.0};  // learner against tutor, 0 to 1
  double probability = 1.0;                        // that the rhythm is good, above 0 to 1
};

// An unknown language is reported and judged good.
RhythmGrade GradeRhythm(const LearnerView& learner, const RecordingView& tutor);

struct TimingGrades {
  std::vector<int> syllable;  // one score a learner's syllable
  std::string advice;         // '-lLsS'
  std::vector<int> percent;   // duration against the tutor's, both as parts of their utterances
  std::vector<bool> unnecessary_pause;  // before each syllable; the first has none
  std::vector<double> word_contrast;    // English only; what is not graded stays as it came in
  int utterance_penalty = 0;
  int word_penalty = 0;
  int score = 0;
};

// `word_contrast`: the contrasts to start from, one a word.
TimingGrades GradeTiming(const LearnerView& learner, const RecordingView& tutor,
                         double rhythm_probability, std::vector<double> word_contrast);

// A pause of more than half a second before a syllable where the tutor makes at most a quarter of
// a second's.
std::vector<bool> FindUnnecessaryPauses(const LearnerView& learner, const RecordingView& tutor);

// Each syllable's share of its utterance against the tutor's, in percent; 1000 where the tutor's
// has no length.
std::vector<int> SyllableTimingPercent(const LearnerView& learner, const RecordingView& tutor);

}  // namespace veral3
