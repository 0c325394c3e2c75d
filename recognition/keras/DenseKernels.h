#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "recognition/keras/PackedDense.h"

// Dense layers evaluated on many inputs at once, with vector instructions. A lane holds one output:
// each output is still summed over the inputs in index order in one accumulator, products and sums
// unfused, so the results are those of DenseReference bit for bit, whatever the instruction set.
//
// Rows go through in small groups of neighbours; inputs that are zero in all of a group (hidden
// activations after a relu, which neighbouring frames share) are skipped. A zero input adds +0.0 or
// -0.0 to a sum that is never -0.0 (it starts at +0.0), so leaving it out changes no bit, provided
// that all weights are finite; with other weights nothing is skipped.
namespace keras {

// Rows of doubles of one width; row n starts at data + n * stride.
struct Rows {
  double* data = nullptr;
  std::size_t stride = 0;
  std::size_t count = 0;
  double* operator[](std::size_t n) const { return data + n * stride; }
};

// What the kernels need besides inputs and outputs; reused between calls, one thread at a time.
struct DenseScratch {
  std::vector<std::uint32_t> lists;  // for each group of rows: the inputs that are not skipped
  std::vector<std::size_t> listed;   // how many they are
};

// The kernels of one instruction set.
struct DenseKernel {
  const char* name;  // "AVX-512", "AVX2", "SSE4" or "baseline"

  // out[n][j] = sum of weights (j, i) * in[n][i], then + bias[j], and with `relu` 0.0 where that is
  // below 0.0; no other activation. `in` rows hold at least layer.inputs values; `out` rows have
  // room for layer.panels * kPanel values and are aligned to 64 bytes.
  void (*forward)(const PackedDense& layer, const Rows& in, const Rows& out, bool relu,
                  DenseScratch& scratch);

  // Softmax of the first `width` values of each row, with the bits of ApplyActivation. The rows are
  // aligned to 64 bytes; what follows the values up to the next multiple of 16 may change.
  void (*softmax)(const Rows& rows, std::size_t width);
};

// All kernels that were built and that this machine can run, best first.
const std::vector<const DenseKernel*>& RunnableDenseKernels();

// Names of all kernels that were built, best first.
const std::vector<const char*>& BuiltDenseKernels();

}  // namespace keras
