#include "signal/RealFft.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <unsupported/Eigen/FFT>
#include <utility>
#include <vector>

namespace veral3 {

struct RealFft::Plan {
  Eigen::FFT<float> fft;
  std::vector<std::complex<float>> half;      // transform of the samples taken as n/2 complex ones
  std::vector<std::complex<float>> twiddles;  // exp(-2 pi i k / n), k = 0..n/4
};

RealFft::RealFft() = default;
RealFft::~RealFft() = default;

// Even samples as real parts and odd ones as imaginary parts go through one complex transform of
// half the length, Z. The even samples' spectrum is then E = (Z[k] + conj Z[n/2-k]) / 2, that of
// the odd ones O = (Z[k] - conj Z[n/2-k]) / 2i, and X[k] = E + exp(-2 pi i k / n) O.
void RealFft::Forward(std::span<float> x) {
  const std::size_t n = x.size();
  const std::size_t half_n = n / 2;
  if (n == 2) {
    x[0] += x[1];
    x[1] = 0.0F;
    return;
  }
  // Back at the end: a plan that memory ran out for must not be taken for a whole one.
  std::unique_ptr<Plan> own = m_plan ? std::move(m_plan) : std::make_unique<Plan>();
  Plan& plan = *own;
  if (plan.half.size() != half_n) {
    plan.half.resize(half_n);
    plan.twiddles.resize(half_n / 2 + 1);
    for (std::size_t k = 0; k < plan.twiddles.size(); ++k) {
      const double angle = 2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(n);
      plan.twiddles[k] = {static_cast<float>(std::cos(angle)),
                          static_cast<float>(-std::sin(angle))};
    }
  }
  plan.fft.fwd(plan.half.data(), reinterpret_cast<const std::complex<float>*>(x.data()),
               static_cast<Eigen::Index>(half_n));

  const std::complex<float>* z = plan.half.data();
  x[0] = z[0].real() + z[0].imag();
  x[1] = 0.0F;
  for (std::size_t k = 1; k <= half_n / 2; ++k) {
    const std::complex<float> a = z[k];
    const std::complex<float> b = z[half_n - k];
    const float even_re = 0.5F * (a.real() + b.real());
    const float even_im = 0.5F * (a.imag() - b.imag());
    const float odd_re = 0.5F * (a.imag() + b.imag());
    const float odd_im = 0.5F * (b.real() - a.real());
    const float c = plan.twiddles[k].real();
    const float s = plan.twiddles[k].imag();
    const float turned_re = c * odd_re - s * odd_im;
    const float turned_im = c * odd_im + s * odd_re;
    x[2 * k] = even_re + turned_re;
    x[2 * k + 1] = even_im + turned_im;
    x[2 * (half_n - k)] = even_re - turned_re;
    x[2 * (half_n - k) + 1] = turned_im - even_im;
  }
  m_plan = std::move(own);
}

RealFft& ThreadRealFft() {
  thread_local RealFft fft;
  return fft;
}

}  // namespace veral3
