#include "training/train/Scaling.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace veral3::training {

Scaling MeasureScaling(const ExampleSource& source, Random& random) {
  constexpr std::size_t kMost = 200000;
  const auto inputs = static_cast<std::size_t>(source.NumInputs());
  std::vector<std::uint32_t> chosen(std::min(kMost, source.NumExamples()));
  for (auto& example : chosen) {
    example = static_cast<std::uint32_t>(random.Below(source.NumExamples()));
  }
  std::vector<float> rows(chosen.size() * inputs);
  std::vector<std::int64_t> classes(chosen.size());
  source.Fill(chosen, rows, classes);
  std::vector<double> sum(inputs, 0.0);
  std::vector<double> squares(inputs, 0.0);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    sum[i % inputs] += double{rows[i]};
    squares[i % inputs] += double{rows[i]} * double{rows[i]};
  }
  const auto count = static_cast<double>(chosen.size());
  Scaling scaling;
  for (std::size_t i = 0; i < inputs; ++i) {
    const double mean = sum[i] / count;
    const double variance = std::max(squares[i] / count - mean * mean, 1e-8);
    scaling.mean.push_back(static_cast<float>(mean));
    scaling.deviation.push_back(static_cast<float>(std::sqrt(variance)));
  }
  return scaling;
}

Network Unfold(const Network& network, const Scaling& scaling) {
  Network unfolded = FoldScaling(network);
  DenseLayer& first = unfolded.layers.front();
  const auto outputs = static_cast<std::size_t>(first.outputs);
  std::vector<double> bias(first.bias.begin(), first.bias.end());
  for (std::size_t i = 0; i < static_cast<std::size_t>(first.inputs); ++i) {
    for (std::size_t j = 0; j < outputs; ++j) {
      float& weight = first.weights[i * outputs + j];
      bias[j] += double{weight} * double{scaling.mean[i]};
      weight = static_cast<float>(double{weight} * double{scaling.deviation[i]});
    }
  }
  for (std::size_t j = 0; j < outputs; ++j) first.bias[j] = static_cast<float>(bias[j]);
  unfolded.input_mean = scaling.mean;
  unfolded.input_deviation = scaling.deviation;
  return unfolded;
}

}  // namespace veral3::training
