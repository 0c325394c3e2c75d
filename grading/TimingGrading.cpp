#include "grading/TimingGrading.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "common/MessageWriter.h"
#include "grading/PeakGrading.h"
#include "grading/Scores.h"

namespace veral3 {
namespace {

constexpr PeakRules kRules = {.first_is_second = {11, 4, 'l'},
                              .first_is_third = {22, 8, 'l'},
                              .first_is_none = {44, 16, 'L'},
                              .second_is_first = {3, 1, 's'},
                              .second_is_other = {12, 4, 'l'},
                              .first_is_missing = {kLoseAll, 0, 'S'},
                              .second_is_missing = {kLoseAll, 0, 's'}};
constexpr WordPeakRules kWordRules = {1.78571, 25, 'l', 's'};

constexpr int kLongPause = 11025;  // [samples] of the learner, more than half a second
constexpr int kShortPause = 5512;  // [samples] of the tutor, at most a quarter
constexpr int kPausePenalty = 30;
constexpr int kRhythmPhonemes = 6;  // a tutor with no more has no rhythm to speak of
constexpr int kNothingToCompare = 1000;

// Single precision on purpose: scores depend on the nearest float.
float RhythmThreshold(LanguageType language) {
  switch (language) {
    case kLanguageEnglish:
      return 0.38418F;
    case kLanguageChinese:
      return 0.403479F;
    case kLanguageJapanese:
      return 0.399598F;
  }
  return 0.0F;
}

// Where a phoneme begins, as a part of the utterance.
double Position(const RecordingView& view, int phoneme) {
  const double length = static_cast<double>(view.UttEnd()) - view.UttStart();
  if (length == 0.0) return 0.0;
  return (static_cast<double>(view.PhonemeStart(phoneme)) - view.UttStart()) / length;
}

double Agreement(double a, double b) {
  if (a == b) return 1.0;
  return std::min(a, b) / std::max(a, b);
}

std::int64_t PhonemeLengths(const RecordingView& view) {
  std::int64_t sum = 0;
  for (int i = 0; i < view.NumPhonemes(); ++i) sum += view.PhonemeEnd(i) - view.PhonemeStart(i);
  return sum;
}

}  // namespace

RhythmGrade GradeRhythm(const LearnerView& learner, const RecordingView& tutor) {
  RhythmGrade grade;
  const float threshold = RhythmThreshold(learner.language);
  int least_phonemes = kRhythmPhonemes;
  if (threshold == 0.0F) {
    Message(MessageStream::kError)
        << "Error in GradedAudio::CalculateProbOfGoodTiming(), unknown LanguageType.\n";
    least_phonemes = 0;
  }
  const int count = tutor.NumPhonemes();
  if (count <= least_phonemes) return grade;
  constexpr std::array<double, 3> kQuartiles = {0.25, 0.5, 0.75};
  double product = 1.0;
  for (std::size_t i = 0; i < kQuartiles.size(); ++i) {
    const int phoneme = Truncate(kQuartiles[i] * count);
    grade.agreement[i] = Agreement(Position(learner, phoneme), Position(tutor, phoneme));
    product *= grade.agreement[i];
  }
  const double bound = static_cast<double>(threshold);
  grade.probability = product > bound || bound == 0.0 ? 1.0 : product / bound;
  return grade;
}

std::vector<bool> FindUnnecessaryPauses(const LearnerView& learner, const RecordingView& tutor) {
  std::vector<bool> pauses(static_cast<std::size_t>(learner.NumSyllables()), false);
  const auto gap_before = [](const RecordingView& view, int phoneme) {
    return static_cast<std::int64_t>(view.PhonemeStart(phoneme)) - view.PhonemeEnd(phoneme - 1);
  };
  for (int s = 1; s < learner.NumSyllables(); ++s) {
    const int phoneme = learner.SyllableStart(s);
    if (phoneme < 1) continue;
    pauses[static_cast<std::size_t>(s)] =
        gap_before(learner, phoneme) > kLongPause && gap_before(tutor, phoneme) <= kShortPause;
  }
  return pauses;
}

std::vector<int> SyllableTimingPercent(const LearnerView& learner, const RecordingView& tutor) {
  float ratio = 1.0F;
  const std::int64_t tutor_length = PhonemeLengths(tutor);
  if (tutor_length == 0) {
    Message(MessageStream::kError)
        << "ERROR! nTutorUttLength==0 in GradedAudio::CalculateSylTimingPercent()\n";
  } else {
    ratio = static_cast<float>(PhonemeLengths(learner)) / static_cast<float>(tutor_length);
    if (ratio == 0.0F) ratio = 0.0001F;
  }
  std::vector<int> percents;
  for (int s = 0; s < learner.NumSyllables(); ++s) {
    const std::int64_t tutor_duration = tutor.Duration(s);
    if (tutor_duration == 0) {
      percents.push_back(kNothingToCompare);
      continue;
    }
    const std::int64_t percent = std::int64_t{learner.Duration(s)} * 100 / tutor_duration;
    percents.push_back(Truncate(static_cast<double>(static_cast<float>(percent) / ratio)));
  }
  return percents;
}

TimingGrades GradeTiming(const LearnerView& learner, const RecordingView& tutor,
                         double rhythm_probability, std::vector<double> word_contrast) {
  TimingGrades grades;
  grades.word_contrast = std::move(word_contrast);
  grades.percent = SyllableTimingPercent(learner, tutor);

  const std::span<const int> duration(learner.syllable_duration);
  const std::span<const int> tutor_duration(tutor.syllable_duration);
  SyllableGrades syllables(learner.NumSyllables());
  grades.utterance_penalty =
      GradeTopThree(kRules, FindTopSyllables(duration, TieGoesTo::kEarlier),
                    FindTopSyllables(tutor_duration, TieGoesTo::kEarlier), syllables);
  // The factor counts here and once more below: timing suffers twice from a bad syllable.
  syllables.Weigh(learner.goodness);

  grades.unnecessary_pause = FindUnnecessaryPauses(learner, tutor);
  for (std::size_t s = 1; s < grades.unnecessary_pause.size(); ++s) {
    if (!grades.unnecessary_pause[s]) continue;
    syllables.score[s] = 0;
    grades.utterance_penalty += kPausePenalty;
  }
  if (learner.language == kLanguageEnglish) {
    grades.word_penalty = GradeWordPeaks(kWordRules, learner.words, duration, tutor_duration,
                                         syllables, grades.word_contrast);
  }
  syllables.WeighAndClamp(learner.goodness);
  grades.score =
      AtLeastZero(Scaled(100 - grades.word_penalty - grades.utterance_penalty, rhythm_probability));
  grades.syllable = std::move(syllables.score);
  grades.advice = std::move(syllables.advice);
  return grades;
}

}  // namespace veral3
