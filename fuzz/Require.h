#pragma once

#include <cstdlib>

namespace veral3::fuzz {

// A promise of the engine; where it is broken, the run ends and the input is kept.
inline void Require(bool kept) {
  if (!kept) std::abort();
}

}  // namespace veral3::fuzz
