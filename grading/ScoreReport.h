#pragma once

#include <iosfwd>
#include <string_view>
#include <vector>

#include "common/CString.h"
#include "common/LanguageType.h"
#include "grading/GradedResult.h"

// Gradings as text: a report to read, and lines of figures that collect how learners and tutors
// differ. Numbers are in the classic locale and the stream's default precision.
namespace veral3 {

struct ReportHead {
  LanguageType language{};
  std::vector<CString> words;  // of the matched sentence
  double signal_noise_ratio = 0.0;
};

// To standard output, as one message.
void PrintScores(const ReportHead& head, const GradedResult& graded);

// One line: phonemes, three rhythm agreements, syllables, the tutor's pitch segments as the ratio
// gives them back, the learner's.
void WriteUttMismatchTraits(std::ostream& out, std::string_view phonemes, int num_syllables,
                            int num_pitch_segments, const GradedResult& graded);

// One line a syllable: H, T or - for the first, the last or another, percents of duration and
// loudness.
void WriteSylMismatchTraits(std::ostream& out, int num_syllables, const GradedResult& graded);

// One line a word: contrasts of pitch, timing and intensity.
void WriteWordMismatchTraits(std::ostream& out, int num_words, const GradedResult& graded);

}  // namespace veral3
