#pragma once

#include <array>
#include <string>
#include <vector>

#include "grading/RandomPairs.h"

// A second grading, written down step by step with plain loops and shared with nothing of the
// engine's: slow, and only there to be compared with.
namespace veral3::test {

struct LiteralGrades {
  int result = 0;
  bool refused = false;  // the languages differ: nothing was graded
  bool failed = false;   // the pronunciation could not be graded
  std::string messages;  // on the error stream

  int total = 0, pronunciation = 0, pitch = 0, timing = 0, intensity = 0;
  double factor = 0.0, good_timing = 0.0, segment_ratio = 0.0;
  std::array<double, 3> agreement{};
  std::vector<int> phoneme_pronunciation;
  std::vector<int> syllable_pronunciation, syllable_pitch, syllable_timing, syllable_intensity;
  std::vector<int> timing_percent, intensity_percent;
  std::vector<bool> pause;
  std::string pitch_advice, timing_advice, intensity_advice;
  std::vector<double> pitch_contrast, timing_contrast, intensity_contrast;
  std::vector<int> correct_tone, student_tone;
  std::vector<int> word_pronunciation, word_pitch, word_timing, word_intensity, word_total;
};

LiteralGrades GradeLiterally(const Pair& pair);

// The normalisers of a language's phonemes in the order of its set.
const std::vector<double>& LiteralNormalisers(LanguageType language);

}  // namespace veral3::test
