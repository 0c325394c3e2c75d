#pragma once

#include <iosfwd>
#include <memory>

#include "core/AnalyzedAudio.h"

namespace veral3 {
struct GradedResult;
}

// A learner's recording, graded.
//
//   GradedAudio learner(kLanguageEnglish);
//   learner.AddPossibleSentence(L"Good morning");
//   if (learner.Align(num_samples, samples) >= 0) {
//     learner.Analyze(num_samples, samples);
//     int total = learner.GradeAgainstTutor(&tutor);   // an AnalyzedAudio or a SavedAlignedAudio
//     for (int s = 0; s < learner.GetNumOfSyllables(); ++s) {
//       show(learner.GetSyllablePitchAdvice(s), learner.GetSyllableTimingAdvice(s));
//     }
//   }
//
// Scores are whole numbers from 0 to 100 (as long as the goodness model's outputs are
// probabilities; veral3::CheckModelFile sees to that). An index out of range, and a score that no
// grading has made, reads 0. Grading again replaces the scores. A copy reads the same scores as its
// source and keeps them whatever becomes of it.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

class VERAL3_API GradedAudio : public AnalyzedAudio {
 public:
  explicit GradedAudio(LanguageType language);
  GradedAudio(const GradedAudio& other);
  GradedAudio& operator=(const GradedAudio& other);
  ~GradedAudio();

  // Grades against a tutor's reading of the same sentence. Returns the total score; 0 with a
  // message when the tutor speaks another language; -1 with a message without a tutor, before
  // Analyze, after ReleaseMemory, or when memory runs out; -1 silently when the pronunciation can't
  // be graded: without syllables, or with one of consonants that the language has none of. The
  // total and the pronunciation are then those of the grading before. A tutor that was not
  // analysed, or has other counts than the learner, is read as far as it goes; what it lacks counts
  // as 0.
  int GradeAgainstTutor(AlignedAudio* tutor);

  // Grades the pronunciation alone, after Analyze or AnalyzePronunOnly. Returns the total; -1 with
  // a message before them or when memory runs out. A pronunciation that can't be graded counts as
  // the grading before had it, 0 in a fresh object. The other components then hold 100 without
  // having been measured.
  int GradePronunOnly();

  int GetTotalScore();
  int GetPronunScore();
  int GetPitchScore();
  int GetTimingScore();
  int GetIntensityScore();

  int GetPhonemePonunScore(int phoneme);
  int GetSyllablePronunScore(int syl);
  int GetSyllablePitchScore(int syl);
  int GetSyllableTimingScore(int syl);
  int GetSyllableIntensityScore(int syl);
  int GetSyllableTimingPercent(int syl);      // always 100
  bool GetSyllableUnnecessaryPause(int syl);  // before the syllable, where the tutor makes none

  // '-' no advice. Pitch: 'h' 'H' too high, 'l' 'L' should be higher; in Chinese the tone that was
  // said, '0' to '4'. Timing: 'l' 'L' too long, 's' 'S' too short. Intensity: 'h' 'H' too loud,
  // 'l' 'L' too soft. Capitals: much too. '\0' outside.
  char GetSyllablePitchAdvice(int syl);
  char GetSyllableTimingAdvice(int syl);
  char GetSyllableIntensityAdvice(int syl);

  int GetWordPronunScore(int word);
  int GetWordPitchScore(int word);
  int GetWordTimingScore(int word);
  int GetWordIntensityScore(int word);
  int GetWordScore(int word);
  int GetWordIntensityPercent(int word);  // always 100

  // English: how much the tutor's most prominent syllable of the word stands out over the one that
  // the learner made prominent: the tutor's value of the one divided by its value of the other. 1
  // where they agree and for a word of one syllable, 1e10 where it is divided by 0.
  double GetWordPitchConstrast(int word);
  double GetWordTimingConstrast(int word);
  double GetWordIntensityConstrast(int word);

  // Chinese: the tutor's and the learner's most likely tone of a syllable, 1 to 4, or 0 for the
  // neutral tone and where no tone was told. 0 in other languages.
  int GetCorrectTone(int syl);
  int GetStudentTone(int syl);

  // A report of all scores: a message for standard output.
  void PrintScores();

  // One line a recording, syllable or word that tells how learner and tutor differ, for collecting
  // data. Null streams are reported.
  void SaveUttMismatchTraits(std::ofstream* out);
  void SaveSylMismatchTraits(std::ofstream* out);
  void SaveWordMismatchTraits(std::ofstream* out);

 private:
  std::shared_ptr<const veral3::GradedResult> m_graded;  // null before the first grading
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
