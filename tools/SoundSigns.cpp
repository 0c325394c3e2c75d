#include "tools/SoundSigns.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "core/Intensity.h"
#include "signal/CWaveFrameDef.h"

namespace veral3::tools {
namespace {

constexpr int kFlatRun = 3;        // [samples]
constexpr double kFlatTop = 0.99;  // of the extreme value
constexpr double kLoudShare = 0.9;
constexpr double kSoftShare = 0.05;
constexpr double kSilentDb = -200.0;  // of a frame without any sound, below all others

double Decibels(double energy) { return energy > 0.0 ? 10.0 * std::log10(energy) : kSilentDb; }

// The value that `share` of the values stay under.
double Quantile(std::vector<double> values, double share) {
  const auto rank = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size()));
  const auto place = values.begin() + std::min<std::ptrdiff_t>(rank, std::ssize(values) - 1);
  std::ranges::nth_element(values, place);
  return *place;
}

}  // namespace

double ClippedShare(std::span<const std::int16_t> samples) {
  if (samples.empty()) return 0.0;
  const auto [lowest, highest] = std::ranges::minmax(samples);
  const auto is_flat = [&, low = lowest, high = highest](std::int16_t sample) {
    return (high >= kLeastPeak && sample >= high * kFlatTop) ||
           (low <= -kLeastPeak && sample <= low * kFlatTop);
  };
  std::size_t flat = 0;
  std::size_t run = 0;
  for (const std::int16_t sample : samples) {
    run = is_flat(sample) ? run + 1 : 0;
    // The run counts from its start once it is long enough.
    if (run == kFlatRun) flat += kFlatRun;
    if (run > kFlatRun) ++flat;
  }
  return static_cast<double>(flat) / static_cast<double>(samples.size());
}

std::optional<SoundLevels> MeasureLevels(std::span<const std::int16_t> samples, int start,
                                         int end) {
  const std::vector<double> energies =
      FrameIntensities(samples, static_cast<int>(samples.size() / kFrameShift));
  std::vector<double> sounding;
  std::vector<double> speech;
  for (std::size_t i = 0; i < energies.size(); ++i) {
    if (!(energies[i] > 0.0)) continue;
    const int begin = static_cast<int>(i) * kFrameShift;
    sounding.push_back(Decibels(energies[i]));
    if (begin >= start && begin < end) speech.push_back(sounding.back());
  }
  if (speech.empty()) return std::nullopt;
  const double loud = Quantile(std::move(speech), kLoudShare);
  const double soft = Quantile(std::move(sounding), kSoftShare);
  return SoundLevels{loud - soft, Decibels(energies.front()) - loud,
                     Decibels(energies.back()) - loud};
}

}  // namespace veral3::tools
