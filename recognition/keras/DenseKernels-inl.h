// The kernels of one instruction set; included once for each by DenseKernels.cpp.

#if defined(VERAL3_DENSE_KERNELS_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef VERAL3_DENSE_KERNELS_INL
#undef VERAL3_DENSE_KERNELS_INL
#else
#define VERAL3_DENSE_KERNELS_INL
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <limits>

#include "recognition/keras/Exp.h"

HWY_BEFORE_NAMESPACE();
namespace keras {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;

constexpr std::size_t kLanes = HWY_MAX_BYTES / sizeof(double);
constexpr std::size_t kVectors = kPanel / kLanes;  // of a panel

// How many sums are kept in registers: 32 registers with AVX-512, 16 otherwise.
#if HWY_TARGET == HWY_AVX3
constexpr const char* kName = "AVX-512";
constexpr std::size_t kBlockRows = 8;   // rows x one panel, for inputs without zeros
constexpr std::size_t kTilePanels = 8;  // one row x panels, for inputs with many zeros
#elif HWY_TARGET == HWY_AVX2
constexpr const char* kName = "AVX2";
constexpr std::size_t kBlockRows = 3;
constexpr std::size_t kTilePanels = 3;
#else
#if HWY_TARGET == HWY_SSE4
constexpr const char* kName = "SSE4";
#else
constexpr const char* kName = "baseline";
#endif
constexpr std::size_t kBlockRows = 1;
constexpr std::size_t kTilePanels = 1;
#endif

// Adds the bias, makes every NaN the same one, applies the relu and stores.
HWY_INLINE void Finish(V sum, const double* bias, bool relu, double* out) {
  const D d;
  V value = hn::Add(sum, hn::Load(d, bias));
  const V nan = hn::Set(d, std::numeric_limits<double>::quiet_NaN());
  value = hn::IfThenElse(hn::Eq(value, value), value, nan);
  if (relu) value = hn::IfThenElse(hn::Gt(hn::Zero(d), value), hn::Zero(d), value);
  hn::Store(value, d, out);
}

// kRows rows times one panel, all inputs.
template <std::size_t kRows>
HWY_NOINLINE void DenseBlock(const PackedDense& layer, std::size_t panel, const Rows& in,
                             const Rows& out, std::size_t first, bool relu) {
  const D d;
  const double* in_rows[kRows];
  for (std::size_t r = 0; r < kRows; ++r) in_rows[r] = in[first + r];
  V sums[kRows][kVectors];
  for (std::size_t r = 0; r < kRows; ++r) {
    for (std::size_t v = 0; v < kVectors; ++v) sums[r][v] = hn::Zero(d);
  }
  const double* weights = layer.Panel(panel);
  for (std::size_t i = 0; i < layer.inputs; ++i, weights += kPanel) {
    V weight[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) weight[v] = hn::Load(d, weights + v * kLanes);
    for (std::size_t r = 0; r < kRows; ++r) {
      const V x = hn::Set(d, in_rows[r][i]);
      for (std::size_t v = 0; v < kVectors; ++v) {
        sums[r][v] = hn::Add(sums[r][v], hn::Mul(weight[v], x));
      }
    }
  }
  for (std::size_t r = 0; r < kRows; ++r) {
    for (std::size_t v = 0; v < kVectors; ++v) {
      const std::size_t j = panel * kPanel + v * kLanes;
      Finish(sums[r][v], layer.bias.data() + j, relu, out[first + r] + j);
    }
  }
}

// One row times kPanels panels, only the inputs that are not zero.
template <std::size_t kPanels>
HWY_NOINLINE void SparseTile(const PackedDense& layer, std::size_t panel, const double* values,
                             const std::int64_t* places, std::size_t count, double* out,
                             bool relu) {
  constexpr std::size_t kSums = kPanels * kVectors;
  const D d;
  V sums[kSums];
  for (std::size_t s = 0; s < kSums; ++s) sums[s] = hn::Zero(d);
  const std::size_t panel_size = layer.inputs * kPanel;
  const double* const weights = layer.Panel(panel);
  for (std::size_t n = 0; n < count; ++n) {
    const V x = hn::Set(d, values[n]);
    const double* weight = weights + places[n];
    for (std::size_t p = 0; p < kPanels; ++p) {
      for (std::size_t v = 0; v < kVectors; ++v) {
        sums[p * kVectors + v] =
            hn::Add(sums[p * kVectors + v], hn::Mul(hn::Load(d, weight + v * kLanes), x));
      }
      weight += panel_size;
    }
  }
  for (std::size_t s = 0; s < kSums; ++s) {
    const std::size_t j = panel * kPanel + s * kLanes;
    Finish(sums[s], layer.bias.data() + j, relu, out + j);
  }
}

// Calls Block for kRows, or for as many as are left.
template <std::size_t kRows>
HWY_INLINE void DenseRest(const PackedDense& layer, std::size_t panel, const Rows& in,
                          const Rows& out, std::size_t first, bool relu) {
  if constexpr (kRows > 0) {
    if (in.count - first == kRows) {
      DenseBlock<kRows>(layer, panel, in, out, first, relu);
    } else {
      DenseRest<kRows - 1>(layer, panel, in, out, first, relu);
    }
  }
}

template <std::size_t kPanels>
HWY_INLINE void SparseRest(const PackedDense& layer, std::size_t panel, const double* values,
                           const std::int64_t* places, std::size_t count, double* out, bool relu) {
  if constexpr (kPanels > 0) {
    if (layer.panels - panel == kPanels) {
      SparseTile<kPanels>(layer, panel, values, places, count, out, relu);
    } else {
      SparseRest<kPanels - 1>(layer, panel, values, places, count, out, relu);
    }
  }
}

inline void ForwardDense(const PackedDense& layer, const Rows& in, const Rows& out, bool relu) {
  for (std::size_t panel = 0; panel < layer.panels; ++panel) {
    std::size_t first = 0;
    for (; first + kBlockRows <= in.count; first += kBlockRows) {
      DenseBlock<kBlockRows>(layer, panel, in, out, first, relu);
    }
    DenseRest<kBlockRows - 1>(layer, panel, in, out, first, relu);
  }
}

inline void ForwardSparse(const PackedDense& layer, const Rows& in, const Rows& out, bool relu,
                          DenseScratch& scratch) {
  scratch.values.resize(std::max(scratch.values.size(), layer.inputs));
  scratch.places.resize(std::max(scratch.places.size(), layer.inputs));
  double* const values = scratch.values.data();
  std::int64_t* const places = scratch.places.data();
  for (std::size_t n = 0; n < in.count; ++n) {
    const double* const row = in[n];
    std::size_t count = 0;
    for (std::size_t i = 0; i < layer.inputs; ++i) {
      values[count] = row[i];
      places[count] = static_cast<std::int64_t>(i * kPanel);
      count += row[i] != 0.0;  // NaN is not zero
    }
    std::size_t panel = 0;
    for (; panel + kTilePanels <= layer.panels; panel += kTilePanels) {
      SparseTile<kTilePanels>(layer, panel, values, places, count, out[n], relu);
    }
    SparseRest<kTilePanels - 1>(layer, panel, values, places, count, out[n], relu);
  }
}

inline std::size_t CountZeros(const Rows& rows, std::size_t width) {
  const D d;
  std::size_t zeros = 0;
  for (std::size_t n = 0; n < rows.count; ++n) {
    std::size_t i = 0;
    for (; i + kLanes <= width; i += kLanes) {
      zeros += hn::CountTrue(d, hn::Eq(hn::LoadU(d, rows[n] + i), hn::Zero(d)));
    }
    for (; i < width; ++i) zeros += rows[n][i] == 0.0;
  }
  return zeros;
}

inline void Forward(const PackedDense& layer, const Rows& in, const Rows& out, bool relu,
                    DenseScratch& scratch) {
  // Running through a list costs about as much as computing with half of the inputs being zero.
  if (layer.finite && 2 * CountZeros(in, layer.inputs) > in.count * layer.inputs) {
    ForwardSparse(layer, in, out, relu, scratch);
  } else {
    ForwardDense(layer, in, out, relu);
  }
}

// keras::Exp in every lane, operation for operation.
HWY_INLINE V ExpLanes(V x) {
  using namespace exp_detail;
  const D d;
  const hn::RebindToUnsigned<D> du;
  V y = hn::IfThenElse(hn::Lt(x, hn::Set(d, kLowest)), hn::Set(d, kLowest), x);
  y = hn::IfThenElse(hn::Gt(y, hn::Set(d, kHighest)), hn::Set(d, kHighest), y);
  const V rounder = hn::Set(d, kRounder);
  const V rounded = hn::Add(hn::Mul(y, hn::Set(d, kInverseLn2)), rounder);
  const V k = hn::Sub(rounded, rounder);
  const V r =
      hn::Sub(hn::Sub(y, hn::Mul(k, hn::Set(d, kLn2High))), hn::Mul(k, hn::Set(d, kLn2Low)));
  V q = hn::Set(d, kSeries[0]);
  for (int i = 1; i < 12; ++i) q = hn::Add(hn::Mul(q, r), hn::Set(d, kSeries[i]));
  const V mantissa = hn::Add(hn::Set(d, 1.0), hn::Add(r, hn::Mul(hn::Mul(r, r), q)));
  const auto exponent = hn::Add(hn::Sub(hn::BitCast(du, rounded), hn::BitCast(du, rounder)),
                                hn::Set(du, static_cast<std::uint64_t>(kTwoBiases)));
  const auto half = hn::ShiftRight<1>(exponent);
  const V result = hn::Mul(hn::Mul(mantissa, hn::BitCast(d, hn::ShiftLeft<52>(half))),
                           hn::BitCast(d, hn::ShiftLeft<52>(hn::Sub(exponent, half))));
  const V nan = hn::Set(d, std::numeric_limits<double>::quiet_NaN());
  return hn::IfThenElse(hn::Eq(x, x), result, nan);
}

inline void Softmax(const Rows& rows, std::size_t width) {
  if (width == 0) return;
  const D d;
  for (std::size_t n = 0; n < rows.count; ++n) {
    double* const row = rows[n];
    double largest = row[0];
    for (std::size_t i = 1; i < width; ++i) largest = row[i] > largest ? row[i] : largest;
    const V top = hn::Set(d, largest);
    for (std::size_t i = 0; i < width; i += kLanes) {
      hn::Store(ExpLanes(hn::Sub(hn::Load(d, row + i), top)), d, row + i);
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < width; ++i) sum += row[i];
    const V divisor = hn::Set(d, sum);
    for (std::size_t i = 0; i < width; i += kLanes) {
      hn::Store(hn::Div(hn::Load(d, row + i), divisor), d, row + i);
    }
  }
}

constexpr DenseKernel kDenseKernel = {kName, Forward, Softmax};

}  // namespace HWY_NAMESPACE
}  // namespace keras
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
