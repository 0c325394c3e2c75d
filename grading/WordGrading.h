#pragma once

#include <span>
#include <vector>

#include "core/WordSpans.h"

namespace veral3 {

// One score a word.
struct WordGrades {
  std::vector<int> pronunciation, pitch, timing, intensity, total;
};

// Words from their syllables. A word of one syllable takes its syllable's scores, and its
// pronunciation for the total; of several, an average of 50 gives 0 and one of 100 gives 100. A
// word without syllables scores 0.
WordGrades GradeWords(const WordSpans& words, std::span<const int> pronunciation,
                      std::span<const int> pitch, std::span<const int> timing,
                      std::span<const int> intensity);

}  // namespace veral3
