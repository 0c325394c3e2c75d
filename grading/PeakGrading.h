#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/TopSyllables.h"
#include "core/WordSpans.h"

// The pattern that pitch, timing and intensity grading share: the syllables that stand out in the
// learner's reading should be the tutor's, in the utterance and in each word. What differs is in
// the tables.
namespace veral3 {

// One score and one letter of advice a syllable.
struct SyllableGrades {
  std::vector<int> score;
  std::string advice;

  explicit SyllableGrades(int num_syllables)
      : score(static_cast<std::size_t>(num_syllables > 0 ? num_syllables : 0), 100),
        advice(score.size(), '-') {}

  // Takes `loss` from a syllable and sets its advice; an index that is none selects nothing.
  void Take(int syllable, int loss, char letter);
  // Multiplies each score by the syllable's factor and cuts it to a whole number.
  void Weigh(std::span<const double> goodness);
  // The same, then raises what is negative to 0.
  void WeighAndClamp(std::span<const double> goodness);
};

// What a learner's syllable loses, what that adds to the utterance's penalty, and its advice.
struct PeakStep {
  int loss;
  int penalty;
  char advice;
};

struct PeakRules {
  // The learner's first is the tutor's second, third, or none of the three.
  PeakStep first_is_second, first_is_third, first_is_none;
  // The learner's second is the tutor's first, or another than the tutor's second.
  PeakStep second_is_first, second_is_other;
  // The tutor's first or second is none of the learner's three (4 syllables and more): no penalty.
  PeakStep first_is_missing, second_is_missing;
};

// A loss that leaves nothing of any score.
inline constexpr int kLoseAll = -1;

// Grades the utterance's three peaks; returns the penalty. Later rules overwrite the advice of
// earlier ones on the same syllable.
int GradeTopThree(const PeakRules& rules, const TopSyllables& learner, TopSyllables tutor,
                  SyllableGrades& grades);

struct WordPeakRules {
  double contrast;      // above this a misplaced peak counts against the utterance
  int loss;             // of both syllables
  char learner_advice;  // where the learner has the peak
  char tutor_advice;    // where the tutor has it
};

// Grades each word of several syllables by its peak: of equals the later one. Writes one contrast a
// word: how much the tutor's peak stands out over where the learner put it (1.0 where they agree or
// the word has one syllable, 1e10 over nothing). Returns 100 x words that count / words.
template <typename T>
int GradeWordPeaks(const WordPeakRules& rules, const WordSpans& words, std::span<const T> learner,
                   std::span<const T> tutor, SyllableGrades& grades,
                   std::vector<double>& contrasts) {
  constexpr double kOverNothing = 1e10;
  const int num_syllables = static_cast<int>(learner.size());
  const auto value = [](std::span<const T> values, int i) {
    return static_cast<std::size_t>(i) < values.size() ? values[static_cast<std::size_t>(i)] : T{};
  };
  const auto peak = [&](std::span<const T> values, int begin, int end) {
    int best = begin;
    for (int i = begin + 1; i < end; ++i) {
      if (value(values, i) >= value(values, best)) best = i;
    }
    return best;
  };
  const int num_words = static_cast<int>(words.num_syllables.size());
  int count = 0;
  for (int word = 0; word < num_words; ++word) {
    const auto w = static_cast<std::size_t>(word);
    if (w >= contrasts.size()) break;
    contrasts[w] = 1.0;
    const int begin = words.first_syllable[w];
    const int end = begin + words.num_syllables[w];
    if (end - begin < 2 || begin < 0 || end > num_syllables) continue;
    const int a = peak(learner, begin, end);
    const int b = peak(tutor, begin, end);
    const double at_learner = static_cast<double>(value(tutor, a));
    contrasts[w] =
        at_learner == 0.0 ? kOverNothing : static_cast<double>(value(tutor, b)) / at_learner;
    if (a == b) continue;
    if (contrasts[w] > rules.contrast) ++count;
    grades.Take(a, rules.loss, rules.learner_advice);
    grades.Take(b, rules.loss, rules.tutor_advice);
  }
  return num_words > 0 ? count * 100 / num_words : 0;
}

}  // namespace veral3
