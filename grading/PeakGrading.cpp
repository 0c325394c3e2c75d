#include "grading/PeakGrading.h"

#include <algorithm>

#include "grading/Scores.h"

namespace veral3 {

void SyllableGrades::Take(int syllable, int loss, char letter) {
  if (syllable < 0 || static_cast<std::size_t>(syllable) >= score.size()) return;
  const auto at = static_cast<std::size_t>(syllable);
  score[at] = loss == kLoseAll ? 0 : score[at] - loss;
  advice[at] = letter;
}

void SyllableGrades::Weigh(std::span<const double> goodness) {
  for (std::size_t i = 0; i < score.size(); ++i) {
    score[i] = Scaled(score[i], i < goodness.size() ? goodness[i] : 0.0);
  }
}

void SyllableGrades::WeighAndClamp(std::span<const double> goodness) {
  Weigh(goodness);
  for (int& value : score) value = AtLeastZero(value);
}

int GradeTopThree(const PeakRules& rules, const TopSyllables& learner, TopSyllables tutor,
                  SyllableGrades& grades) {
  const int count = static_cast<int>(grades.score.size());
  int penalty = 0;
  const auto apply = [&](int syllable, const PeakStep& step) {
    grades.Take(syllable, step.loss, step.advice);
    penalty += step.penalty;
  };
  if (learner.first != tutor.first) {
    apply(learner.first, learner.first == tutor.second  ? rules.first_is_second
                         : learner.first == tutor.third ? rules.first_is_third
                                                        : rules.first_is_none);
  }
  if (count >= 2 && learner.second != tutor.second) {
    apply(learner.second,
          learner.second == tutor.first ? rules.second_is_first : rules.second_is_other);
  }
  if (count >= 4) {
    tutor.first = std::min(tutor.first, count - 1);
    tutor.second = std::min(tutor.second, count - 1);
    if (!learner.Has(tutor.first)) apply(tutor.first, rules.first_is_missing);
    if (!learner.Has(tutor.second)) apply(tutor.second, rules.second_is_missing);
  }
  return penalty;
}

}  // namespace veral3
