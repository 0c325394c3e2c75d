#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "grading/GradedAudio.h"

namespace veral3::tools::test {

// Everything that a grading tells, to compare two of one learner.
struct GradedScores {
  int result = 0;
  int total = 0, pronunciation = 0, pitch = 0, timing = 0, intensity = 0;
  std::vector<int> phonemes;
  std::vector<int> syllable_pronunciation, syllable_pitch, syllable_timing, syllable_intensity;
  std::vector<int> word_pronunciation, word_pitch, word_timing, word_intensity, word_total;
  std::string pitch_advice, timing_advice, intensity_advice;
  std::vector<int> pauses, correct_tones, student_tones;
  std::vector<double> contrasts;
  bool operator==(const GradedScores&) const = default;
};

inline GradedScores Grade(GradedAudio& learner, AlignedAudio& tutor) {
  GradedScores scores;
  scores.result = learner.GradeAgainstTutor(&tutor);
  scores.total = learner.GetTotalScore();
  scores.pronunciation = learner.GetPronunScore();
  scores.pitch = learner.GetPitchScore();
  scores.timing = learner.GetTimingScore();
  scores.intensity = learner.GetIntensityScore();
  for (int i = 0; i < learner.GetNumOfPhonemes(); ++i) {
    scores.phonemes.push_back(learner.GetPhonemePonunScore(i));
  }
  for (int i = 0; i < learner.GetNumOfSyllables(); ++i) {
    scores.syllable_pronunciation.push_back(learner.GetSyllablePronunScore(i));
    scores.syllable_pitch.push_back(learner.GetSyllablePitchScore(i));
    scores.syllable_timing.push_back(learner.GetSyllableTimingScore(i));
    scores.syllable_intensity.push_back(learner.GetSyllableIntensityScore(i));
    scores.pitch_advice += learner.GetSyllablePitchAdvice(i);
    scores.timing_advice += learner.GetSyllableTimingAdvice(i);
    scores.intensity_advice += learner.GetSyllableIntensityAdvice(i);
    scores.pauses.push_back(learner.GetSyllableUnnecessaryPause(i));
    scores.correct_tones.push_back(learner.GetCorrectTone(i));
    scores.student_tones.push_back(learner.GetStudentTone(i));
  }
  for (int i = 0; i < learner.GetNumOfWords(); ++i) {
    scores.word_pronunciation.push_back(learner.GetWordPronunScore(i));
    scores.word_pitch.push_back(learner.GetWordPitchScore(i));
    scores.word_timing.push_back(learner.GetWordTimingScore(i));
    scores.word_intensity.push_back(learner.GetWordIntensityScore(i));
    scores.word_total.push_back(learner.GetWordScore(i));
    scores.contrasts.push_back(learner.GetWordPitchConstrast(i));
    scores.contrasts.push_back(learner.GetWordTimingConstrast(i));
    scores.contrasts.push_back(learner.GetWordIntensityConstrast(i));
  }
  return scores;
}

// Whether nothing differs but what single precision of the tutor's loudness does to the contrasts
// of words: ratios of two of its syllables.
inline testing::AssertionResult AlikeButForContrasts(GradedScores stored,
                                                     const GradedScores& fresh) {
  constexpr double kTwoRoundings = 1.5e-7;
  if (stored.contrasts.size() != fresh.contrasts.size()) {
    return testing::AssertionFailure() << "other words";
  }
  for (std::size_t i = 0; i < fresh.contrasts.size(); ++i) {
    if (std::abs(stored.contrasts[i] - fresh.contrasts[i]) > fresh.contrasts[i] * kTwoRoundings) {
      return testing::AssertionFailure()
             << "contrast " << i << ": " << stored.contrasts[i] << ", " << fresh.contrasts[i];
    }
  }
  stored.contrasts = fresh.contrasts;
  if (stored == fresh) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "the scores differ";
}

}  // namespace veral3::tools::test
