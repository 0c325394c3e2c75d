#include "training/augment/Clipping.h"

#include <algorithm>
#include <cmath>

#include "training/augment/SpeechLevel.h"

namespace veral3::training {

void Clip(std::vector<float>& signal, double db) {
  float peak = 0.0F;
  for (const float x : signal) peak = std::max(peak, std::abs(x));
  const auto limit = static_cast<float>(double{peak} * FactorOfDb(-db));
  for (float& x : signal) x = std::clamp(x, -limit, limit);
}

}  // namespace veral3::training
