#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "recognition/keras/AlignedVector.h"

namespace keras {

inline constexpr std::size_t kPanel = 16;  // outputs that lie side by side

// The weights of a dense layer in the order in which the batch kernels read them. The outputs are
// cut into panels of 16; panel p holds, for input 0, 1, ..., the weights to outputs 16 p .. 16 p +
// 15. What lies beyond the last output is zero.
struct PackedDense {
  std::size_t inputs = 0;
  std::size_t outputs = 0;
  std::size_t panels = 0;
  AlignedVector<double> weights;  // [panels][inputs][kPanel]
  AlignedVector<double> bias;     // [panels][kPanel]
  bool finite = false;            // no weight is infinite or NaN: zero inputs may be skipped

  const double* Panel(std::size_t p) const { return weights.data() + p * inputs * kPanel; }
};

// `weights`: neuron-major, [outputs][inputs].
PackedDense PackDense(std::size_t inputs, std::size_t outputs, std::span<const double> weights,
                      std::span<const double> bias);

// The reference: out[j] = sum of weights[j * inputs + i] * in[i], i upward from 0.0 in one
// accumulator, then + bias[j]. No activation. A result that is NaN becomes the one quiet NaN, so
// that results do not depend on the operand order that a compiler chose. Every other kernel gives
// the same bits.
void DenseReference(std::span<const double> weights, std::span<const double> bias, const double* in,
                    double* out);

}  // namespace keras
