#include "grading/GradedResult.h"

#include <utility>

#include "common/MessageWriter.h"
#include "grading/IntensityGrading.h"
#include "grading/PitchGrading.h"
#include "grading/PronunciationGrading.h"
#include "grading/Scores.h"
#include "grading/TimingGrading.h"

namespace veral3 {
namespace {

// 0, or -1 where a syllable can't be scored or there are none. Scores made before a failure stay.
int GradePronunciation(const LearnerView& learner, GradedResult& graded) {
  graded.phoneme_pronunciation = GradePhonemes(learner);
  graded.syllable_pronunciation.clear();
  const CPhonemeSet* set = PhonemeSetOf(learner.language);
  if (!set) return -1;
  SyllablePronunciation syllables = GradeSyllables(learner, *set, graded.phoneme_pronunciation);
  graded.syllable_pronunciation = std::move(syllables.score);
  if (syllables.failed) return -1;
  const int score = UtterancePronunciation(graded.syllable_pronunciation);
  if (score < 0) return -1;
  graded.components.pronunciation = score;
  return 0;
}

void ScaleAll(std::vector<int>& scores, double factor) {
  for (int& score : scores) score = Scaled(score, factor);
}

// The syllables' pronunciation scores are left as they are.
void ScaleScores(GradedResult& graded, double factor) {
  for (int* score : {&graded.components.pronunciation, &graded.components.pitch,
                     &graded.components.timing, &graded.components.intensity}) {
    *score = Scaled(*score, factor);
  }
  for (std::vector<int>* scores :
       {&graded.words.pronunciation, &graded.words.pitch, &graded.words.timing,
        &graded.words.intensity, &graded.words.total, &graded.syllable_pitch,
        &graded.syllable_timing, &graded.syllable_intensity, &graded.phoneme_pronunciation}) {
    ScaleAll(*scores, factor);
  }
}

// Contrasts of an earlier grading stay where this one makes none.
std::vector<double> ContrastsFor(const LearnerView& learner, std::vector<double>&& earlier) {
  const auto num_words = static_cast<std::size_t>(learner.NumWords());
  if (earlier.size() < num_words) earlier.resize(num_words, 0.0);
  return std::move(earlier);
}

}  // namespace

void GradedResult::ReleaseScores() {
  for (std::vector<int>* scores :
       {&phoneme_pronunciation, &syllable_pronunciation, &syllable_pitch, &syllable_timing,
        &syllable_intensity, &syllable_timing_percent, &syllable_intensity_percent,
        &words.pronunciation, &words.pitch, &words.timing, &words.intensity, &words.total}) {
    scores->clear();
  }
}

int GradeAgainstTutor(const LearnerView& learner, const RecordingView& tutor,
                      const ProbabilityOfGoodReading& probability, GradedResult& graded) {
  if (learner.language != tutor.language) {
    Message(MessageStream::kError)
        << "ERROR in GradedAudio::GradeAgainstTutor(): the language types of tutor and student do "
           "not match.\n";
    return 0;
  }
  const RhythmGrade rhythm = GradeRhythm(learner, tutor);
  graded.timing_traits = rhythm.agreement;
  graded.prob_good_timing = rhythm.probability;

  TimingGrades timing = GradeTiming(learner, tutor, rhythm.probability,
                                    ContrastsFor(learner, std::move(graded.word_timing_contrast)));
  graded.components.timing = timing.score;
  graded.syllable_timing = std::move(timing.syllable);
  graded.syllable_timing_percent = std::move(timing.percent);
  graded.unnecessary_pause = std::move(timing.unnecessary_pause);
  graded.timing_advice = std::move(timing.advice);
  graded.word_timing_contrast = std::move(timing.word_contrast);

  IntensityGrades intensity = GradeIntensity(
      learner, tutor, ContrastsFor(learner, std::move(graded.word_intensity_contrast)));
  graded.components.intensity = intensity.score;
  graded.syllable_intensity = std::move(intensity.syllable);
  graded.syllable_intensity_percent = std::move(intensity.percent);
  graded.intensity_advice = std::move(intensity.advice);
  graded.word_intensity_contrast = std::move(intensity.word_contrast);

  PitchGrades pitch =
      GradePitch(learner, tutor, ContrastsFor(learner, std::move(graded.word_pitch_contrast)));
  graded.pitch_segment_ratio = pitch.segment_ratio;
  graded.syllable_pitch = std::move(pitch.syllable);
  graded.word_pitch_contrast = std::move(pitch.word_contrast);
  graded.correct_tone = std::move(pitch.correct_tone);
  graded.student_tone = std::move(pitch.student_tone);
  if (pitch.graded) {
    graded.components.pitch = pitch.score;
    graded.pitch_advice = std::move(pitch.advice);
  }

  if (GradePronunciation(learner, graded) < 0) return -1;
  graded.words = GradeWords(learner.words, graded.syllable_pronunciation, graded.syllable_pitch,
                            graded.syllable_timing, graded.syllable_intensity);

  double total = CombineScores(learner.language, learner.NumSyllables(), graded.components);
  graded.goodness_factor = GoodnessFactor(probability());
  if (graded.goodness_factor < 1.0) {
    total *= graded.goodness_factor;
    ScaleScores(graded, graded.goodness_factor);
  }
  graded.complete = true;
  graded.total = Truncate(total);
  return graded.total;
}

int GradePronunciationOnly(const LearnerView& learner, const ProbabilityOfGoodReading& probability,
                           GradedResult& graded) {
  GradePronunciation(learner, graded);
  graded.components.pitch = 100;
  graded.components.timing = 100;
  graded.components.intensity = 100;
  graded.complete = true;
  // The probability itself, not the factor that it gives in a full grading.
  graded.total = Scaled(graded.components.pronunciation, probability());
  return graded.total;
}

}  // namespace veral3
