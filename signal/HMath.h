#pragma once

#include <cassert>
#include <cstdint>
#include <random>
#include <span>

#include "signal/HMem.h"

// The front end's toolkit, module HMath: vectors, random numbers, a logarithm.
namespace veral3 {

// A handle on an array in a heap: elements 1..Size(), with the length in element 0. The memory is
// the heap's; a handle is copied freely and must not be used after the heap was reset.
template <typename T>
class HeapVector {
 public:
  HeapVector() = default;  // the null vector, of size 0
  explicit HeapVector(T* memory) : m_elements(memory) {}

  int Size() const { return m_elements == nullptr ? 0 : static_cast<int>(m_elements[0]); }
  explicit operator bool() const { return m_elements != nullptr; }

  // i: 1..Size().
  T& operator[](int i) const {
    assert(i >= 1 && i <= Size());
    return m_elements[i];
  }
  // The elements from the first on, counted from 0.
  std::span<T> Elements() const {
    return m_elements == nullptr ? std::span<T>()
                                 : std::span<T>(m_elements + 1, static_cast<std::size_t>(Size()));
  }
  HeapVector<const T> AsConst() const { return HeapVector<const T>(m_elements); }

 private:
  T* m_elements = nullptr;
};
using Vector = HeapVector<float>;
using ConstVector = HeapVector<const float>;
using ShortVec = HeapVector<std::int16_t>;

// New vectors of zeros. `size`: 0 to kMaxVector, the largest length that element 0 can hold;
// anything else is a fatal error.
inline constexpr int kMaxVector = 1 << 24;
inline constexpr int kMaxShortVec = 32767;
Vector CreateVector(MemHeap& heap, int size);
ShortVec CreateShortVec(MemHeap& heap, int size);

// Natural logarithm of a positive, normal number, to about 1e-15 relative. The C library's differs
// in the last bit between processors with and without fused products; this one is the same on all.
double LogOfPositive(double x);

// 1127 ln(1 + ratio): the mel of a frequency given as ratio to 700 Hz.
double MelOfRatio(double ratio);

// Module start: reads the module's configuration and seeds the random source with the time.
void StartMath();

// The smallest exponent that the toolkit takes for more than nothing: -ln(1e10).
inline constexpr double kSmallestLogArgument = -23.025850929940457;

// Numbers for dither, in 0..1. A source of the toolkit's own: the host program's rand() is not
// touched. Each thread has one.
class RandomSource {
 public:
  explicit RandomSource(unsigned seed) : m_engine(seed) {}
  float Next() { return static_cast<float>((m_engine() >> 8) & 0x7FFFU) / 32767.0F; }

 private:
  std::minstd_rand m_engine;
};
RandomSource& ThreadRandomSource();

}  // namespace veral3
