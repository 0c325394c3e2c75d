#include "grading/IntensityGrading.h"

#include <utility>

#include "common/MessageWriter.h"
#include "grading/PeakGrading.h"
#include "grading/Scores.h"

namespace veral3 {
namespace {

constexpr PeakRules kRules = {.first_is_second = {11, 5, 'h'},
                              .first_is_third = {22, 10, 'h'},
                              .first_is_none = {44, 20, 'H'},
                              .second_is_first = {8, 1, 'l'},
                              .second_is_other = {30, 4, 'h'},
                              .first_is_missing = {44, 0, 'L'},
                              .second_is_missing = {22, 0, 'l'}};
constexpr WordPeakRules kWordRules = {3.55139, 20, 'h', 'l'};

// Loudness ratios of Chinese syllables between which the grade falls from 100 to 0.
constexpr double kLowerBound = 0.00065;
constexpr double kUpperBound = 0.015152;
constexpr double kAdviceBelow = 60.0;
constexpr int kNothingToCompare = 1000;

double Total(std::span<const double> intensities) {
  double sum = 0.0;
  for (const double intensity : intensities) sum += intensity;
  return sum;
}

}  // namespace

std::vector<int> SyllableIntensityPercent(const LearnerView& learner, const RecordingView& tutor) {
  double ratio = 1.0;
  const double tutor_total = Total(tutor.syllable_intensity);
  if (tutor_total == 0.0) {
    // Named after the step that asked, as applications know it.
    Message(MessageStream::kError)
        << "ERROR! nTutorUttTotalIntensity==0 in GradedAudio::GradeIntensity()\n";
  } else {
    ratio = Total(learner.syllable_intensity) / tutor_total;
    if (ratio == 0.0) ratio = 0.0001;
  }
  std::vector<int> percents;
  for (int s = 0; s < learner.NumSyllables(); ++s) {
    const double tutor_intensity = tutor.Intensity(s);
    percents.push_back(tutor_intensity == 0.0
                           ? kNothingToCompare
                           : Truncate(learner.Intensity(s) * 100 / tutor_intensity / ratio));
  }
  return percents;
}

int GradeSyllableLoudness(std::span<const int> percents, std::string& advice) {
  advice.assign(percents.size(), '-');
  if (percents.empty()) return 0;
  long long sum = 0;
  for (std::size_t s = 0; s < percents.size(); ++s) {
    const int p = percents[s];
    const bool soft = p <= 100;
    const double q = soft ? p / 100.0 : 100.0 / p;
    if (q > kUpperBound) {
      sum += 100;
    } else if (q < kLowerBound) {
      advice[s] = soft ? 'L' : 'H';
    } else {
      const double value = (q - kLowerBound) * 100 / (kUpperBound - kLowerBound);
      if (value < kAdviceBelow) advice[s] = soft ? 'l' : 'h';
      sum += Truncate(value);
    }
  }
  return 100 - static_cast<int>(sum / static_cast<long long>(percents.size()));
}

IntensityGrades GradeIntensity(const LearnerView& learner, const RecordingView& tutor,
                               std::vector<double> word_contrast) {
  IntensityGrades grades;
  grades.word_contrast = std::move(word_contrast);
  grades.percent = SyllableIntensityPercent(learner, tutor);
  const std::span<const double> intensity(learner.syllable_intensity);
  const std::span<const double> tutor_intensity(tutor.syllable_intensity);
  SyllableGrades syllables(learner.NumSyllables());
  switch (learner.language) {
    case kLanguageEnglish:
    case kLanguageJapanese:
      grades.utterance_penalty =
          GradeTopThree(kRules, FindTopSyllables(intensity, TieGoesTo::kEarlier),
                        FindTopSyllables(tutor_intensity, TieGoesTo::kEarlier), syllables);
      if (learner.language == kLanguageEnglish) {
        grades.word_penalty = GradeWordPeaks(kWordRules, learner.words, intensity, tutor_intensity,
                                             syllables, grades.word_contrast);
      }
      break;
    case kLanguageChinese:
      // Advice only: the syllables' own scores stay at 100.
      grades.utterance_penalty = GradeSyllableLoudness(grades.percent, syllables.advice);
      break;
    default:
      Message(MessageStream::kError)
          << "Error in GradedAudio::GradeIntensity(), unknown LanguageType.\n";
  }
  syllables.WeighAndClamp(learner.goodness);
  grades.score = AtLeastZero(100 - grades.word_penalty - grades.utterance_penalty);
  grades.syllable = std::move(syllables.score);
  grades.advice = std::move(syllables.advice);
  return grades;
}

}  // namespace veral3
