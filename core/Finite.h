#pragma once

#include <cmath>

namespace veral3 {

// What a network with absurd weights gives, or a product of its outputs, may be infinite or not a
// number; no result of the engine is.
inline double FiniteOrZero(double value) { return std::isfinite(value) ? value : 0.0; }

}  // namespace veral3
