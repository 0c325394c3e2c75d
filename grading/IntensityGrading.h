#pragma once

#include <span>
#include <string>
#include <vector>

#include "grading/RecordingView.h"

// Loudness against the tutor's: in English and Japanese by where the loudest syllables lie, in
// Chinese by each syllable's share of the utterance.
namespace veral3 {

struct IntensityGrades {
  std::vector<int> syllable;          // one score a learner's syllable
  std::string advice;                 // '-hHlL'
  std::vector<int> percent;           // loudness against the tutor's, as SyllableIntensityPercent
  std::vector<double> word_contrast;  // English only; what is not graded stays as it came in
  int utterance_penalty = 0;
  int word_penalty = 0;
  int score = 0;
};

// `word_contrast`: the contrasts to start from, one a word. An unknown language is reported and
// loses nothing.
IntensityGrades GradeIntensity(const LearnerView& learner, const RecordingView& tutor,
                               std::vector<double> word_contrast);

// Each syllable's share of its utterance's loudness against the tutor's, in percent; 1000 where the
// tutor's syllable has none.
std::vector<int> SyllableIntensityPercent(const LearnerView& learner, const RecordingView& tutor);

// The Chinese penalty, 0 to 100, from those percents; writes the advice, one letter a syllable.
int GradeSyllableLoudness(std::span<const int> percents, std::string& advice);

}  // namespace veral3
