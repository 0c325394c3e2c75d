#include "signal/HMath.h"

#include <atomic>
#include <cmath>
#include <ctime>
#include <memory>
#include <numbers>

#include "signal/HShell.h"

namespace veral3 {
namespace {

std::atomic<unsigned> g_seed = 1;

template <typename T>
HeapVector<T> Create(MemHeap& heap, int size, int limit) {
  if (size < 0 || size > limit) FatalError(kErrorAllocation, "New: memory exhausted");
  const std::size_t count = static_cast<std::size_t>(size) + 1;
  T* memory = static_cast<T*>(New(heap, count * sizeof(T)));
  std::uninitialized_fill_n(memory, count, T{0});
  memory[0] = static_cast<T>(size);
  return HeapVector<T>(memory);
}

}  // namespace

Vector CreateVector(MemHeap& heap, int size) { return Create<float>(heap, size, kMaxVector); }

ShortVec CreateShortVec(MemHeap& heap, int size) {
  return Create<std::int16_t>(heap, size, kMaxShortVec);
}

// x = m 2^e with m in [sqrt(1/2), sqrt(2)), and ln m = 2 artanh(z) for z = (m - 1) / (m + 1), whose
// series 2 (z + z^3/3 + z^5/5 ...) ends below 1e-17 after eleven terms since |z| < 0.172.
double LogOfPositive(double x) {
  int exponent = 0;
  double m = std::frexp(x, &exponent);
  if (m < std::numbers::sqrt2 / 2) {
    m *= 2.0;
    --exponent;
  }
  const double z = (m - 1.0) / (m + 1.0);
  const double zz = z * z;
  double series = 0.0;
  for (int k = 21; k >= 1; k -= 2) series = series * zz + 1.0 / k;
  return exponent * std::numbers::ln2 + 2.0 * z * series;
}

double MelOfRatio(double ratio) { return 1127.0 * LogOfPositive(1.0 + ratio); }

void StartMath() {
  g_seed = static_cast<unsigned>(std::time(nullptr) % 257);
  int trace = 0;
  GetConfigInt(GetConfig("HMATH", true, kMaxConfig), "TRACE", &trace);
}

RandomSource& ThreadRandomSource() {
  thread_local RandomSource source(g_seed);
  return source;
}

}  // namespace veral3
