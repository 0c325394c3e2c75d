#pragma once

#include <limits>

// Scores are whole numbers, cut towards 0, never rounded.
namespace veral3 {

// Towards 0; what an int can't hold becomes the nearest that it can, what is no number 0.
inline int Truncate(double value) {
  if (!(value == value)) return 0;
  if (value >= static_cast<double>(std::numeric_limits<int>::max())) {
    return std::numeric_limits<int>::max();
  }
  if (value <= static_cast<double>(std::numeric_limits<int>::min())) {
    return std::numeric_limits<int>::min();
  }
  return static_cast<int>(value);
}

// A score times a factor.
inline int Scaled(int score, double factor) { return Truncate(score * factor); }

inline int AtLeastZero(int score) { return score < 0 ? 0 : score; }

}  // namespace veral3
