#pragma once

#include <cstddef>
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

// Picks the highest, second and third of `count` syllables by `value_of(syllable)`. A value must
// beat -1 to be picked at all; equalling it is enough where ties go to the later syllable.
template <typename ValueOf>
TopSyllables FindTopSyllables(int count, TieGoesTo tie, ValueOf value_of) {
  int top[3] = {-1, -1, -1};
  for (int rank = 0; rank < 3; ++rank) {
    auto best = decltype(value_of(0)){-1};
    for (int syllable = 0; syllable < count; ++syllable) {
      if ((rank > 0 && syllable == top[0]) || (rank > 1 && syllable == top[1])) continue;
      const auto value = value_of(syllable);
      const bool beats = tie == TieGoesTo::kLater ? value >= best : value > best;
      if (!beats) continue;
      best = value;
      top[rank] = syllable;
    }
  }
  return {top[0], top[1], top[2]};
}

// The same for values at hand, one a syllable.
template <typename T>
TopSyllables FindTopSyllables(std::span<const T> values, TieGoesTo tie) {
  return FindTopSyllables(static_cast<int>(values.size()), tie, [values](int syllable) {
    return T{values[static_cast<std::size_t>(syllable)]};
  });
}

}  // namespace veral3
