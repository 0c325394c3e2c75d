#include "training/augment/Fourier.h"

#include <gtest/gtest.h>

#include "tests/training/augment/Signals.h"

namespace veral3::training {
namespace {

std::vector<float> Noise(std::size_t length, std::uint64_t seed) {
  Random random(seed);
  std::vector<float> signal(length);
  for (float& x : signal) x = static_cast<float>(random.Normal());
  return signal;
}

TEST(Fourier, TransformsAsItsDefinitionAndBack) {
  const std::vector<float> x = Noise(48, 1);
  std::vector<std::complex<float>> spectrum(25);
  Forward(x, spectrum);
  for (std::size_t bin = 0; bin < 25; ++bin) {
    std::complex<double> sum = 0.0;
    for (std::size_t i = 0; i < 48; ++i) {
      sum +=
          static_cast<double>(x[i]) * std::polar(1.0, -kTau * static_cast<double>(bin * i) / 48.0);
    }
    EXPECT_NEAR(static_cast<double>(spectrum[bin].real()), sum.real(), 1e-4);
    EXPECT_NEAR(static_cast<double>(spectrum[bin].imag()), sum.imag(), 1e-4);
  }
  std::vector<float> back(48);
  Inverse(spectrum, back);
  for (std::size_t i = 0; i < 48; ++i) EXPECT_NEAR(back[i], x[i], 1e-5F);
}

TEST(Fourier, ConvolvesAsTheSumOfProducts) {
  for (const std::size_t length : {1u, 5u, 300u, 2000u}) {
    for (const std::size_t taps : {1u, 2u, 127u, 700u}) {
      const std::vector<float> signal = Noise(length, 2);
      const std::vector<float> response = Noise(taps, 3);
      for (const std::size_t delay : {std::size_t{0}, taps / 2}) {
        const std::vector<float> out = Convolve(signal, response, delay);
        ASSERT_EQ(out.size(), length);
        for (std::size_t i = 0; i < length; i += 1 + length / 50) {
          double sum = 0.0;
          for (std::size_t k = 0; k < taps; ++k) {
            if (i + delay >= k && i + delay - k < length) {
              sum += static_cast<double>(response[k]) * static_cast<double>(signal[i + delay - k]);
            }
          }
          ASSERT_NEAR(static_cast<double>(out[i]), sum, 1e-3) << length << " " << taps << " " << i;
        }
      }
    }
  }
  EXPECT_TRUE(Convolve({}, Noise(3, 1), 1).empty());
  EXPECT_EQ(Convolve(Noise(3, 1), {}, 0), std::vector<float>(3, 0.0F));
}

}  // namespace
}  // namespace veral3::training
