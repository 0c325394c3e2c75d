#pragma once

#include <span>

namespace veral3 {

// The three most prominent syllables by one measure; -1 where there are fewer.
struct TopSyllables {
  int first = -1;
  int second = -1;
  int third = -1;
  bool operator==(const TopSyllables&) const = default;
  bool Has(int syllable) const {
    return syllable == first || syllable == second || syllable == third;
  }
};

enum class TieGoesTo { kEarlier, kLater };

// Picks the highest, second and third of `values`, one a syllable. A value must beat -1 to be
// picked at all; equalling it is enough where ties go to the later syllable.
template <typename T>
TopSyllables FindTopSyllables(std::span<const T> values, TieGoesTo tie) {
  int top[3] = {-1, -1, -1};
  for (int rank = 0; rank < 3; ++rank) {
    T best = T{-1};
    for (std::size_t i = 0; i < values.size(); ++i) {
      const int syllable = static_cast<int>(i);
      if ((rank > 0 && syllable == top[0]) || (rank > 1 && syllable == top[1])) continue;
      const bool beats = tie == TieGoesTo::kLater ? values[i] >= best : values[i] > best;
      if (!beats) continue;
      best = values[i];
      top[rank] = syllable;
    }
  }
  return {top[0], top[1], top[2]};
}

}  // namespace veral3
