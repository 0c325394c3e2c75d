#include "signal/SignalNoiseRatio.h"

#include <algorithm>
#include <cstddef>

namespace veral3 {
namespace {

struct Power {
  std::int64_t sum = 0;  // of squares
  std::int64_t count = 0;

  void Add(std::span<const std::int16_t> samples, std::int64_t from, std::int64_t to) {
    const auto size = static_cast<std::int64_t>(samples.size());
    from = std::clamp<std::int64_t>(from, 0, size);
    to = std::clamp<std::int64_t>(to, 0, size);
    for (std::int64_t i = from; i < to; ++i) {
      const std::int64_t x = samples[static_cast<std::size_t>(i)];
      sum += x * x;
    }
    count += std::max<std::int64_t>(to - from, 0);
  }
  double Mean() const {
    return count == 0 ? 0.0 : static_cast<double>(sum) / static_cast<double>(count);
  }
};

}  // namespace

double SignalNoiseRatio(std::span<const std::int16_t> samples, std::span<const int> start,
                        std::span<const int> end) {
  Power speech, noise;
  std::int64_t noise_from = 0;
  for (std::size_t i = 0; i < std::min(start.size(), end.size()); ++i) {
    noise.Add(samples, noise_from, start[i]);
    speech.Add(samples, start[i], end[i]);
    noise_from = end[i];
  }
  noise.Add(samples, noise_from, static_cast<std::int64_t>(samples.size()));
  return noise.Mean() == 0.0 ? 0.0 : speech.Mean() / noise.Mean();
}

}  // namespace veral3
