#include "grading/PitchGrading.h"

#include <cmath>
#include <utility>

#include "common/MessageWriter.h"
#include "grading/PeakGrading.h"
#include "grading/Scores.h"

namespace veral3 {
namespace {

constexpr PeakRules kRules = {.first_is_second = {11, 4, 'h'},
                              .first_is_third = {22, 8, 'h'},
                              .first_is_none = {44, 16, 'H'},
                              .second_is_first = {8, 1, 'l'},
                              .second_is_other = {30, 4, 'h'},
                              .first_is_missing = {43, 0, 'L'},
                              .second_is_missing = {21, 0, 'l'}};
constexpr WordPeakRules kWordRules = {1.48588, 30, 'h', 'l'};

void GradePeaks(const LearnerView& learner, const RecordingView& tutor, PitchGrades& grades) {
  const std::span<const int> pitch(learner.syllable_pitch);
  const std::span<const int> tutor_pitch(tutor.syllable_pitch);
  SyllableGrades syllables(learner.NumSyllables());
  int penalty = GradeTopThree(kRules, FindTopSyllables(pitch, TieGoesTo::kLater),
                              FindTopSyllables(tutor_pitch, TieGoesTo::kLater), syllables);
  if (learner.language == kLanguageEnglish) {
    grades.word_penalty = GradeWordPeaks(kWordRules, learner.words, pitch, tutor_pitch, syllables,
                                         grades.word_contrast);
    // A single word is nothing but its stress.
    if (learner.NumWords() < 2) penalty *= learner.NumSyllables() == 2 ? 16 : 4;
  }
  syllables.WeighAndClamp(learner.goodness);
  grades.utterance_penalty = penalty;
  grades.score = AtLeastZero(100 - grades.word_penalty - penalty);
  grades.syllable = std::move(syllables.score);
  grades.advice = std::move(syllables.advice);
}

// Walks the tutor's syllables: both read the same text. One that the learner lacks adds 0.
void GradeTones(const LearnerView& learner, const RecordingView& tutor, PitchGrades& grades) {
  const int count = tutor.NumSyllables();
  grades.syllable.assign(static_cast<std::size_t>(learner.NumSyllables()), 0);
  long long sum = 0;
  for (int s = 0; s < count; ++s) {
    const ToneRow said = learner.Tones(s);
    const ToneRow wanted = tutor.Tones(s);
    const int tone = MostLikelyTone(said);
    grades.advice.push_back(static_cast<char>('0' + tone));
    grades.student_tone.push_back(tone);
    grades.correct_tone.push_back(MostLikelyTone(wanted));
    if (s >= learner.NumSyllables()) continue;
    const int score = GradeTone(wanted, said);
    grades.syllable[static_cast<std::size_t>(s)] = score;
    sum += score;
  }
  grades.score = count > 0 ? static_cast<int>(sum / count) : 0;
}

}  // namespace

int MostLikelyTone(const ToneRow& tones) {
  int best = 0;
  for (int k = 1; k < kToneClasses; ++k) {
    if (tones[static_cast<std::size_t>(k)] > tones[static_cast<std::size_t>(best)]) best = k;
  }
  return best;
}

int GradeTone(const ToneRow& tutor, const ToneRow& learner) {
  constexpr double kNextToZero = 1e-10;
  const auto above_zero = [](double p) { return p == 0.0 ? kNextToZero : p; };
  double divergence = 0.0;
  for (std::size_t k = 0; k < kToneClasses; ++k) {
    const double t = above_zero(tutor[k]);
    divergence += t * std::log(t / above_zero(learner[k]));
  }
  return AtLeastZero(Truncate(100.0 - 10.0 * divergence));
}

PitchGrades GradePitch(const LearnerView& learner, const RecordingView& tutor,
                       std::vector<double> word_contrast) {
  PitchGrades grades;
  grades.word_contrast = std::move(word_contrast);
  grades.segment_ratio = tutor.pitch_segments >= 1
                             ? static_cast<double>(learner.pitch_segments / tutor.pitch_segments)
                             : 100.0;
  grades.graded = true;
  switch (learner.language) {
    case kLanguageEnglish:
    case kLanguageJapanese:
      GradePeaks(learner, tutor, grades);
      return grades;
    case kLanguageChinese:
      GradeTones(learner, tutor, grades);
      return grades;
  }
  // Named after another step, as applications know it.
  Message(MessageStream::kError)
      << "Error in GradedAudio::GradePhonemePronunMFCC(), unknown LanguageType.\n";
  grades.syllable.assign(static_cast<std::size_t>(learner.NumSyllables()), 0);
  grades.graded = false;
  return grades;
}

}  // namespace veral3
