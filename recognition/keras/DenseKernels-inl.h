// The kernels of one instruction set; included once for each by DenseKernels.cpp.

#if defined(VERAL3_DENSE_KERNELS_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef VERAL3_DENSE_KERNELS_INL
#undef VERAL3_DENSE_KERNELS_INL
#else
#define VERAL3_DENSE_KERNELS_INL
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <bit>
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

// A tile of the result: as many rows times panels as have their sums in registers, of which there
// are 32 with AVX-512 and 16 otherwise.
#if HWY_TARGET == HWY_AVX3
constexpr const char* kName = "AVX-512";
constexpr std::size_t kTileRows = 4;
constexpr std::size_t kTilePanels = 2;
#elif HWY_TARGET == HWY_AVX2
constexpr const char* kName = "AVX2";
constexpr std::size_t kTileRows = 2;
constexpr std::size_t kTilePanels = 1;
#else
#if HWY_TARGET == HWY_SSE4
constexpr const char* kName = "SSE4";
#else
constexpr const char* kName = "baseline";
#endif
constexpr std::size_t kTileRows = 1;
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

// One tile: the sums over the listed inputs.
template <std::size_t kRows, std::size_t kPanels>
HWY_NOINLINE void Tile(const PackedDense& layer, const std::uint32_t* list, std::size_t listed,
                       const Rows& in, const Rows& out, std::size_t first, std::size_t panel,
                       bool relu) {
  constexpr std::size_t kSums = kPanels * kVectors;  // of a row
  const D d;
  const double* in_rows[kRows];
  for (std::size_t r = 0; r < kRows; ++r) in_rows[r] = in[first + r];
  V sums[kRows][kSums];
  for (std::size_t r = 0; r < kRows; ++r) {
    for (std::size_t s = 0; s < kSums; ++s) sums[r][s] = hn::Zero(d);
  }
  const double* const weights = layer.Panel(panel);
  const std::size_t panel_size = layer.inputs * kPanel;
  for (std::size_t n = 0; n < listed; ++n) {
    const std::size_t i = list[n];
    V weight[kSums];
    for (std::size_t s = 0; s < kSums; ++s) {
      weight[s] =
          hn::Load(d, weights + s / kVectors * panel_size + i * kPanel + s % kVectors * kLanes);
    }
    for (std::size_t r = 0; r < kRows; ++r) {
      const V x = hn::Set(d, in_rows[r][i]);
      for (std::size_t s = 0; s < kSums; ++s) {
        sums[r][s] = hn::Add(sums[r][s], hn::Mul(weight[s], x));
      }
    }
  }
  for (std::size_t r = 0; r < kRows; ++r) {
    for (std::size_t s = 0; s < kSums; ++s) {
      const std::size_t j = panel * kPanel + s * kLanes;
      Finish(sums[r][s], layer.bias.data() + j, relu, out[first + r] + j);
    }
  }
}

// kTileRows rows, or kRows at the end.
template <std::size_t kPanels, std::size_t kRows = kTileRows>
HWY_INLINE void TileOfRows(std::size_t rows, const PackedDense& layer, const std::uint32_t* list,
                           std::size_t listed, const Rows& in, const Rows& out, std::size_t first,
                           std::size_t panel, bool relu) {
  if constexpr (kRows > 0) {
    if (rows == kRows) {
      Tile<kRows, kPanels>(layer, list, listed, in, out, first, panel, relu);
    } else {
      TileOfRows<kPanels, kRows - 1>(rows, layer, list, listed, in, out, first, panel, relu);
    }
  }
}

// Lists the inputs that are not zero in every one of the rows first .. end - 1 (NaN is not zero),
// or all inputs when none may be skipped. Returns how many they are.
inline std::size_t ListInputs(const PackedDense& layer, const Rows& in, std::size_t first,
                              std::size_t end, std::uint32_t* list) {
  const D d;
  std::size_t listed = 0;
  for (std::size_t begin = 0; begin < layer.inputs; begin += 64) {
    const std::size_t count = std::min<std::size_t>(64, layer.inputs - begin);
    std::uint64_t wanted = 0;  // bit i: input begin + i
    if (!layer.finite) wanted = ~std::uint64_t{0} >> (64 - count);
    for (std::size_t n = first; n < end && layer.finite; ++n) {
      const double* const inputs = in[n] + begin;
      std::size_t i = 0;
      for (; i + kLanes <= count; i += kLanes) {
        std::uint8_t bits[8] = {};
        // Not Ne, which is false for NaN with some instruction sets.
        const auto zero = hn::Eq(hn::LoadU(d, inputs + i), hn::Zero(d));
        hn::StoreMaskBits(d, hn::Not(zero), bits);
        wanted |= std::uint64_t{bits[0]} << i;
      }
      for (; i < count; ++i) wanted |= std::uint64_t{inputs[i] != 0.0} << i;
    }
    for (; wanted != 0; wanted &= wanted - 1) {
      list[listed++] =
          static_cast<std::uint32_t>(begin) + static_cast<std::uint32_t>(std::countr_zero(wanted));
    }
  }
  return listed;
}

inline void Forward(const PackedDense& layer, const Rows& in, const Rows& out, bool relu,
                    DenseScratch& scratch) {
  const std::size_t groups = (in.count + kTileRows - 1) / kTileRows;
  scratch.lists.resize(std::max(scratch.lists.size(), groups * layer.inputs));
  scratch.listed.resize(std::max(scratch.listed.size(), groups));
  for (std::size_t g = 0; g < groups; ++g) {
    scratch.listed[g] =
        ListInputs(layer, in, g * kTileRows, std::min((g + 1) * kTileRows, in.count),
                   scratch.lists.data() + g * layer.inputs);
  }
  // The weights of a few panels stay in the cache while all rows pass.
  for (std::size_t panel = 0; panel < layer.panels; panel += kTilePanels) {
    for (std::size_t g = 0; g < groups; ++g) {
      const std::size_t first = g * kTileRows;
      const std::size_t rows = std::min(kTileRows, in.count - first);
      const std::uint32_t* const list = scratch.lists.data() + g * layer.inputs;
      if (panel + kTilePanels <= layer.panels) {
        TileOfRows<kTilePanels>(rows, layer, list, scratch.listed[g], in, out, first, panel, relu);
      } else {
        TileOfRows<1>(rows, layer, list, scratch.listed[g], in, out, first, panel, relu);
      }
    }
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
