#include "grading/WordGrading.h"

#include "grading/Scores.h"

namespace veral3 {
namespace {

int ScoreOf(std::span<const int> syllables, int first, int count) {
  if (count < 1 || first < 0) return 0;
  long long sum = 0;
  for (int s = first; s < first + count; ++s) {
    if (static_cast<std::size_t>(s) < syllables.size()) {
      sum += syllables[static_cast<std::size_t>(s)];
    }
  }
  if (count == 1) return static_cast<int>(sum);
  return AtLeastZero(static_cast<int>(2 * sum / count - 100));
}

}  // namespace

WordGrades GradeWords(const WordSpans& words, std::span<const int> pronunciation,
                      std::span<const int> pitch, std::span<const int> timing,
                      std::span<const int> intensity) {
  WordGrades grades;
  for (std::size_t w = 0; w < words.num_syllables.size(); ++w) {
    const int first = words.first_syllable[w];
    const int count = words.num_syllables[w];
    const int p = ScoreOf(pronunciation, first, count);
    const int pi = ScoreOf(pitch, first, count);
    const int ti = ScoreOf(timing, first, count);
    const int in = ScoreOf(intensity, first, count);
    grades.pronunciation.push_back(p);
    grades.pitch.push_back(pi);
    grades.timing.push_back(ti);
    grades.intensity.push_back(in);
    grades.total.push_back(count == 1 ? p : Truncate(0.5 * p + 0.2 * pi + 0.2 * ti + 0.1 * in));
  }
  return grades;
}

}  // namespace veral3
