#include "training/augment/Lengthen.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "signal/CWaveFrameDef.h"

namespace veral3::training {
namespace {

constexpr int kShortestLag = kSampleRate / 100;  // 10 ms: at least one period of a low voice
constexpr int kLongestLag = kSampleRate / 50;    // 20 ms
constexpr int kWindow = kSampleRate / 200;       // 5 ms to compare and to fade over

// The lag at which what lies before `place` is most like what begins there.
int BestLag(std::span<const std::int16_t> samples, int place) {
  int best = kShortestLag;
  double most = -1.0;
  for (int lag = kShortestLag; lag <= kLongestLag; ++lag) {
    double product = 0.0;
    double here = 1.0;
    double before = 1.0;
    for (int i = 0; i < kWindow; ++i) {
      const double x = samples[static_cast<std::size_t>(place + i)];
      const double y = samples[static_cast<std::size_t>(place + i - lag)];
      product += x * y;
      here += x * x;
      before += y * y;
    }
    const double likeness = product / std::sqrt(here * before);
    if (likeness > most) {
      most = likeness;
      best = lag;
    }
  }
  return best;
}

}  // namespace

std::int32_t Lengthen(std::vector<std::int16_t>& samples, std::int32_t first, std::int32_t end,
                      std::int32_t more) {
  const int from = first + kLongestLag;  // earliest and latest place to go back from
  const int to = end - kWindow;
  if (to < from || end > static_cast<std::int32_t>(samples.size())) return 0;
  const int average = (kShortestLag + kLongestLag) / 2;
  const int jumps = std::max((more + average / 2) / average, 0);
  std::vector<std::int16_t> longer(samples.begin(), samples.begin() + from);
  int read = from;
  for (int jump = 0; jump < jumps; ++jump) {
    const int place = jumps == 1 ? (from + to) / 2 : from + (to - from) * jump / (jumps - 1);
    // The places may lie nearer than a lag: what was read already is not read again from there.
    for (; read < place; ++read) longer.push_back(samples[static_cast<std::size_t>(read)]);
    const int lag = BestLag(samples, read);
    for (int i = 0; i < lag; ++i) {
      double value = samples[static_cast<std::size_t>(read - lag + i)];
      if (i < kWindow) {
        const double part = static_cast<double>(i) / kWindow;
        value = part * value + (1.0 - part) * samples[static_cast<std::size_t>(read + i)];
      }
      longer.push_back(static_cast<std::int16_t>(std::lround(value)));
    }
  }
  const auto added = static_cast<std::int32_t>(longer.size()) - read;
  longer.insert(longer.end(), samples.begin() + read, samples.end());
  samples = std::move(longer);
  return added;
}

}  // namespace veral3::training
