#include "recognition/keras/PackedDense.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace keras {

PackedDense PackDense(std::size_t inputs, std::size_t outputs, std::span<const double> weights,
                      std::span<const double> bias) {
  PackedDense packed;
  packed.inputs = inputs;
  packed.outputs = outputs;
  packed.panels = (outputs + kPanel - 1) / kPanel;
  packed.weights.assign(packed.panels * inputs * kPanel, 0.0);
  packed.bias.assign(packed.panels * kPanel, 0.0);
  for (std::size_t j = 0; j < outputs; ++j) {
    for (std::size_t i = 0; i < inputs; ++i) {
      packed.weights[(j / kPanel * inputs + i) * kPanel + j % kPanel] = weights[j * inputs + i];
    }
  }
  std::copy(bias.begin(), bias.end(), packed.bias.begin());
  packed.finite = std::all_of(weights.begin(), weights.end(),
                              [](double weight) { return std::isfinite(weight); });
  return packed;
}

void DenseReference(std::span<const double> weights, std::span<const double> bias, const double* in,
                    double* out) {
  const std::size_t inputs = bias.empty() ? 0 : weights.size() / bias.size();
  for (std::size_t j = 0; j < bias.size(); ++j) {
    const double* const row = weights.data() + j * inputs;
    double sum = 0.0;
    for (std::size_t i = 0; i < inputs; ++i) sum += row[i] * in[i];
    sum += bias[j];
    out[j] = sum == sum ? sum : std::numeric_limits<double>::quiet_NaN();
  }
}

}  // namespace keras
