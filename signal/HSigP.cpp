#include "signal/HSigP.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>
#include <numbers>
#include <vector>

#include "signal/HShell.h"

namespace veral3 {
namespace {

constexpr std::size_t kTableBlock = 5000;  // bytes

enum class TableKind { kHamming, kLifter, kCosine };

struct Table {
  TableKind kind;
  int a, b;
  ConstVector values;
};

// Never destroyed, since the front end that ends it is itself a static object. The lock may be
// taken again by its holder: a fatal error in between ends the process, and with it the module.
struct Module {
  std::recursive_mutex mutex;
  MemHeap heap;
  std::vector<Table> tables;
  std::atomic<int> trace = 0;
};
Module& TheModule() {
  static Module& module = *new Module;
  return module;
}

// The table (kind, a, b), made by `value` of 1..size at its first use.
template <typename F>
ConstVector SharedTable(TableKind kind, int a, int b, int size, F value) {
  Module& module = TheModule();
  const std::lock_guard lock(module.mutex);
  for (const Table& table : module.tables) {
    if (table.kind == kind && table.a == a && table.b == b) return table.values;
  }
  module.tables.reserve(module.tables.size() + 1);  // a table without its entry would be lost
  const Vector values = CreateVector(module.heap, size);
  for (int i = 1; i <= size; ++i) values[i] = static_cast<float>(value(i));
  module.tables.push_back({kind, a, b, values.AsConst()});
  return values.AsConst();
}

// Eight running sums, added up in pairs: the same bits whatever the compiler vectorises.
template <typename F>
double SumInLanes(std::span<const float> x, F term) {
  constexpr std::size_t kLanes = 8;
  double lanes[kLanes] = {};
  const std::size_t whole = x.size() / kLanes * kLanes;
  for (std::size_t i = 0; i < whole; i += kLanes) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      lanes[lane] += term(static_cast<double>(x[i + lane]));
    }
  }
  for (std::size_t i = whole; i < x.size(); ++i) {
    lanes[i - whole] += term(static_cast<double>(x[i]));
  }
  return ((lanes[0] + lanes[4]) + (lanes[2] + lanes[6])) +
         ((lanes[1] + lanes[5]) + (lanes[3] + lanes[7]));
}

}  // namespace

void StartSigP() {
  Module& module = TheModule();
  const std::lock_guard lock(module.mutex);
  if (module.heap.element_size != 0) return;
  int trace = 0;
  GetConfigInt(GetConfig("HSIGP", true, kMaxConfig), "TRACE", &trace);
  module.trace = trace;
  CreateHeap(module.heap, "sigpHeap", HeapKind::kMstak, 1, 0.0F, kTableBlock, kTableBlock);
}

void EndSigP() {
  Module& module = TheModule();
  const std::lock_guard lock(module.mutex);
  if (module.heap.element_size == 0) return;
  module.tables.clear();
  DeleteHeap(module.heap);
}

int SigPTrace() { return TheModule().trace; }

double Sum(std::span<const float> x) {
  return SumInLanes(x, [](double v) { return v; });
}

double SumOfSquares(std::span<const float> x) {
  return SumInLanes(x, [](double v) { return v * v; });
}

void RemoveFrameMean(Vector s) {
  if (s.Size() == 0) return;
  const float mean = static_cast<float>(Sum(s.Elements()) / s.Size());
  for (float& sample : s.Elements()) sample -= mean;
}

void PreEmphasiseFrame(Vector s, float k) {
  if (s.Size() == 0) return;
  float* x = &s[1];
  for (int i = s.Size() - 1; i >= 1; --i) x[i] -= k * x[i - 1];
  x[0] *= 1.0F - k;
}

ConstVector HammingWindow(int size) {
  return SharedTable(TableKind::kHamming, size, 0, size, [size](int i) {
    const double angle = 2.0 * std::numbers::pi * (i - 1) / std::max(size - 1, 1);
    return 0.54 - 0.46 * std::cos(angle);
  });
}

void HammingWindowFrame(Vector s, ConstVector window) {
  const int n = std::min(s.Size(), window.Size());
  if (n == 0) return;
  float* x = &s[1];
  const float* w = &window[1];
  for (int i = 0; i < n; ++i) x[i] *= w[i];
}

ConstVector LifterWeights(int lifter, int count) {
  return SharedTable(TableKind::kLifter, lifter, count, count, [lifter](int i) {
    return 1.0 + lifter / 2.0 * std::sin(std::numbers::pi * i / lifter);
  });
}

void LifterCepstra(Vector c, ConstVector weights) {
  const int n = std::min(c.Size(), weights.Size());
  for (int i = 1; i <= n; ++i) c[i] *= weights[i];
}

ConstVector CosineTable(int num_chans, int num_ceps) {
  return SharedTable(TableKind::kCosine, num_chans, num_ceps, num_chans * num_ceps,
                     [num_chans, num_ceps](int i) {
                       const int k = (i - 1) / num_ceps + 1;
                       const int j = (i - 1) % num_ceps + 1;
                       const double x = std::cos(std::numbers::pi * j / num_chans * (k - 0.5));
                       return std::abs(x) < 1e-14 ? 0.0 : x;  // a right angle, to the last bit
                     });
}

void FilterbankToCepstra(Vector fbank, Vector c, ConstVector cosines) {
  const int num_chans = fbank.Size();
  const int num_ceps = c.Size();
  if (num_chans == 0 || num_ceps == 0 || cosines.Size() != num_chans * num_ceps) return;
  const std::span<float> sums = c.Elements();
  std::fill(sums.begin(), sums.end(), 0.0F);
  const float* row = &cosines[1];
  for (int k = 1; k <= num_chans; ++k, row += num_ceps) {
    const float x = fbank[k];
    for (int j = 0; j < num_ceps; ++j) sums[static_cast<std::size_t>(j)] += x * row[j];
  }
  const float norm = static_cast<float>(std::sqrt(2.0 / num_chans));
  for (float& sum : sums) sum *= norm;
}

float FilterbankToC0(Vector fbank) {
  if (fbank.Size() == 0) return 0.0F;
  const float norm = static_cast<float>(std::sqrt(2.0 / fbank.Size()));
  float sum = 0.0F;
  for (const float x : fbank.Elements()) sum += x;
  return sum * norm;
}

void AddRegressionColumns(float* rows, int num_rows, int step, int source, int target,
                          int num_columns, const RegressionOptions& options) {
  const int window = options.half_window;
  if (window < 1) return;
  float squares = 0.0F;
  for (int k = 1; k <= window; ++k) squares += static_cast<float>(k) * static_cast<float>(k);
  const auto row = [&](int t) {
    const std::ptrdiff_t at = std::clamp(t, 0, num_rows - 1);
    return rows + at * step + source;
  };
  // Calls difference(j) for the columns of row t.
  const auto fill = [&](int t, auto difference) {
    float* out = rows + std::ptrdiff_t{t} * step + target;
    for (int j = 0; j < num_columns; ++j) out[j] = difference(j);
  };
  for (int t = 0; t < num_rows; ++t) {
    const bool edge = t < window || t >= num_rows - window;
    if (options.v1_compat && edge) {
      const float* after = t < window ? row(t + 1) : row(t);
      const float* before = t < window ? row(t) : row(t - 1);
      fill(t, [&](int j) { return after[j] - before[j]; });
    } else if (options.simple_diffs) {
      const float* after = row(t + window);
      const float* before = row(t - window);
      fill(t, [&](int j) { return (after[j] - before[j]) / (2.0F * static_cast<float>(window)); });
    } else {
      fill(t, [](int) { return 0.0F; });
      float* out = rows + std::ptrdiff_t{t} * step + target;
      for (int k = 1; k <= window; ++k) {
        const float* after = row(t + k);
        const float* before = row(t - k);
        for (int j = 0; j < num_columns; ++j)
          out[j] += static_cast<float>(k) * (after[j] - before[j]);
      }
      for (int j = 0; j < num_columns; ++j) out[j] /= 2.0F * squares;
    }
  }
}

void SubtractColumnMeans(float* rows, int num_rows, int step, int num_columns) {
  if (num_rows < 1 || num_columns < 1) return;
  std::vector<double> sums(static_cast<std::size_t>(num_columns), 0.0);
  for (int t = 0; t < num_rows; ++t) {
    const float* row = rows + std::ptrdiff_t{t} * step;
    for (int j = 0; j < num_columns; ++j)
      sums[static_cast<std::size_t>(j)] += static_cast<double>(row[j]);
  }
  for (int t = 0; t < num_rows; ++t) {
    float* row = rows + std::ptrdiff_t{t} * step;
    for (int j = 0; j < num_columns; ++j) {
      row[j] -= static_cast<float>(sums[static_cast<std::size_t>(j)] / num_rows);
    }
  }
}

void SubtractColumns(float* rows, int num_rows, int step, Vector mean) {
  for (int t = 0; t < num_rows; ++t) {
    float* row = rows + std::ptrdiff_t{t} * step;
    for (int j = 0; j < mean.Size(); ++j) row[j] -= mean[j + 1];
  }
}

void NormaliseUtteranceEnergy(float* first, int n, int step, float sil_floor, float scale) {
  if (n < 1) return;
  const auto value = [&](int t) -> float& { return first[std::ptrdiff_t{t} * step]; };
  float max = value(0);
  for (int t = 1; t < n; ++t) max = std::max(max, value(t));
  const float min = static_cast<float>(static_cast<double>(max) -
                                       static_cast<double>(sil_floor) * std::numbers::ln10 / 10.0);
  for (int t = 0; t < n; ++t) value(t) = 1.0F - (max - std::max(value(t), min)) * scale;
}

}  // namespace veral3
