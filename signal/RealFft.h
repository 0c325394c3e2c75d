#pragma once

#include <memory>
#include <span>

namespace veral3 {

// Fourier transform of real samples, single precision.
//
//   RealFft& fft = ThreadRealFft();
//   fft.Forward(x);   // x.size(): a power of two, at least 2
//
// x[0..n) becomes the spectrum, X[k] = sum of x[t] exp(-2 pi i k t / n) for k = 0..n/2-1: its real
// part in x[2k], its imaginary part in x[2k + 1]. The bin n/2 is dropped.
//
// A length is planned at its first use, so each thread keeps an object of its own.
class RealFft {
 public:
  RealFft();
  ~RealFft();
  RealFft(const RealFft&) = delete;
  RealFft& operator=(const RealFft&) = delete;

  void Forward(std::span<float> x);

 private:
  struct Plan;
  std::unique_ptr<Plan> m_plan;  // of the last length; null before the first
};

// The calling thread's object.
RealFft& ThreadRealFft();

}  // namespace veral3
