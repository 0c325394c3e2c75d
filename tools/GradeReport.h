#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/AnalysisReport.h"
#include "tools/ScoreHints.h"

class GradedAudio;

// What one grading found, as plain data for the output formats (tools/GradeFormats.h,
// tools/GradePage.h). A value that was not graded is empty: after grading the pronunciation alone
// these are pitch, timing and intensity, the scores of words, advice and contrasts.
namespace veral3::tools {

// Whole numbers, 0 to 100.
struct GradeScores {
  std::optional<int> total;
  std::optional<int> pronunciation;
  std::optional<int> pitch;
  std::optional<int> timing;
  std::optional<int> intensity;
};

// English: how much more the tutor stresses the syllable that ought to be stressed than the one
// that the learner stressed, as a ratio; 1 where they are the same, 1e10 where the latter has none.
struct WordContrasts {
  std::optional<double> pitch;
  std::optional<double> timing;
  std::optional<double> intensity;
};

struct WordGrade {
  GradeScores scores;
  WordContrasts contrasts;
};

struct SyllableGrade {
  GradeScores scores;        // without a total
  char pitch_advice = '\0';  // as GradedAudio gives them; '\0' none given
  char timing_advice = '\0';
  char intensity_advice = '\0';
  std::optional<bool> unnecessary_pause;  // before it
  // Chinese: the most likely tone class, 1 to 4 the tones, 0 the neutral one; empty where the pitch
  // was too broken to classify.
  std::optional<int> tutor_tone;
  std::optional<int> learner_tone;
};

// A recording as it is drawn.
struct DrawnRecording {
  struct Span {
    int start = 0;  // [samples]
    int end = 0;
  };
  std::string file;
  std::vector<std::int16_t> samples;  // 22050 Hz
  Span utterance;
  std::vector<Span> words;
  std::vector<Span> syllables;
  ContourSet contours;
};

struct GradeReport {
  AnalysisReport analysis;  // of the learner; its alignment's error is why there is no grade
  bool pronunciation_only = false;
  std::string tutor_file;  // "" without a tutor
  std::string teacher;     // "" where the tutor's file does not say
  GradeScores scores;
  // What the goodness of the recording leaves of its scores, 0 to 1: of all but the syllables'
  // pronunciation; after grading the pronunciation alone, of the total.
  std::optional<double> lowered_to;
  std::vector<ScoreHint> reasons;  // what speaks for why, where that is below kTellLoweredBelow
  std::vector<WordGrade> words;    // one for each of the alignment's
  std::vector<SyllableGrade> syllables;
  std::vector<std::optional<int>> phonemes;  // scores
  DrawnRecording drawn;                      // the learner's
};

// Reads a graded learner whose analysis is reported already. `tutor`: what it was graded against,
// null after grading the pronunciation alone.
GradeReport MakeGradeReport(AnalysisReport analysis, GradedAudio& learner, AlignedAudio* tutor);

// "scores lowered to 48 %: this may not be a reading of the sentence"; "" where they keep
// kTellLoweredBelow or more.
std::string LoweredText(const GradeReport& report);

// What is drawn of an aligned recording.
DrawnRecording DrawingOf(std::string file, AlignedAudio& audio,
                         std::span<const std::int16_t> samples);

}  // namespace veral3::tools
