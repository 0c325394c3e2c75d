#include "training/augment/SpeechLevel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace veral3::training {
namespace {

constexpr std::size_t kStretch = 441;    // samples, 20 ms
constexpr double kQuietest = 0.0316228;  // of the loudest stretch: -30 dB

double SumOfSquares(std::span<const float> signal) {
  double sum = 0.0;
  for (const float x : signal) sum += double{x} * double{x};
  return sum;
}

double LoudPart(std::span<const float> signal) {
  std::vector<double> levels;
  for (std::size_t i = 0; i < signal.size(); i += kStretch) {
    levels.push_back(RootMeanSquare(signal.subspan(i, std::min(kStretch, signal.size() - i))));
  }
  const double least = levels.empty() ? 0.0 : kQuietest * *std::ranges::max_element(levels);
  double sum = 0.0;
  std::size_t count = 0;
  for (std::size_t i = 0; i < levels.size(); ++i) {
    if (levels[i] < least) continue;
    const std::size_t length = std::min(kStretch, signal.size() - i * kStretch);
    sum += levels[i] * levels[i] * static_cast<double>(length);
    count += length;
  }
  return count == 0 ? 0.0 : std::sqrt(sum / static_cast<double>(count));
}

}  // namespace

double RootMeanSquare(std::span<const float> signal) {
  return signal.empty() ? 0.0
                        : std::sqrt(SumOfSquares(signal) / static_cast<double>(signal.size()));
}

double SpeechLevel(std::span<const float> signal, std::span<const PhonemeLabel> labels) {
  double sum = 0.0;
  std::size_t count = 0;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (labels[i].symbol == '-') continue;
    const auto start = std::min(static_cast<std::size_t>(labels[i].start), signal.size());
    const std::size_t end =
        i + 1 < labels.size()
            ? std::clamp(static_cast<std::size_t>(labels[i + 1].start), start, signal.size())
            : signal.size();
    sum += SumOfSquares(signal.subspan(start, end - start));
    count += end - start;
  }
  return count == 0 ? LoudPart(signal) : std::sqrt(sum / static_cast<double>(count));
}

double FactorOfDb(double db) { return std::pow(10.0, db / 20.0); }

}  // namespace veral3::training
