#include "training/augment/Fourier.h"

#include <algorithm>
#include <bit>
#include <unsupported/Eigen/FFT>

namespace veral3::training {
namespace {

Eigen::FFT<float>& ThreadFft() {
  thread_local Eigen::FFT<float> fft(Eigen::FFT<float>::impl_type(),
                                     Eigen::FFT<float>::HalfSpectrum);
  return fft;
}

}  // namespace

void Forward(std::span<const float> x, std::span<std::complex<float>> spectrum) {
  ThreadFft().fwd(spectrum.data(), x.data(), static_cast<Eigen::Index>(x.size()));
}

void Inverse(std::span<const std::complex<float>> spectrum, std::span<float> x) {
  ThreadFft().inv(x.data(), spectrum.data(), static_cast<Eigen::Index>(x.size()));
}

// Overlap and add, with blocks of about three times the response.
std::vector<float> Convolve(std::span<const float> signal, std::span<const float> response,
                            std::size_t delay) {
  if (signal.empty() || response.empty()) return std::vector<float>(signal.size(), 0.0F);
  const std::size_t size = std::bit_ceil(std::max<std::size_t>(4 * response.size(), 256));
  const std::size_t block = size - response.size() + 1;
  std::vector<float> frame(size, 0.0F);
  std::vector<std::complex<float>> filter(size / 2 + 1);
  std::vector<std::complex<float>> spectrum(size / 2 + 1);
  std::ranges::copy(response, frame.begin());
  Forward(frame, filter);
  std::vector<float> out(signal.size() + response.size() + delay, 0.0F);
  for (std::size_t at = 0; at < signal.size(); at += block) {
    const auto part = signal.subspan(at, std::min(block, signal.size() - at));
    std::fill(std::ranges::copy(part, frame.begin()).out, frame.end(), 0.0F);
    Forward(frame, spectrum);
    for (std::size_t bin = 0; bin < spectrum.size(); ++bin) spectrum[bin] *= filter[bin];
    Inverse(spectrum, frame);
    const std::size_t length = part.size() + response.size() - 1;
    for (std::size_t i = 0; i < length; ++i) out[at + i] += frame[i];
  }
  out.erase(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(delay));
  out.resize(signal.size());
  return out;
}

}  // namespace veral3::training
