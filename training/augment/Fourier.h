#pragma once

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

// Fourier transforms of real signals, and what is quicker by them. Each thread plans for itself;
// the same input gives the same bits on any thread.
namespace veral3::training {

// x: an even number n of samples; spectrum: n / 2 + 1 bins.
void Forward(std::span<const float> x, std::span<std::complex<float>> spectrum);

// Back again, divided by n.
void Inverse(std::span<const std::complex<float>> spectrum, std::span<float> x);

// The signal through a filter with this response to one pulse, as many samples as it had: those
// from `delay` on, which is 0 for an echo and half the length for a symmetric filter.
std::vector<float> Convolve(std::span<const float> signal, std::span<const float> response,
                            std::size_t delay);

}  // namespace veral3::training
