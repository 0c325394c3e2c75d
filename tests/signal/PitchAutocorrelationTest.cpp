// The steps under the pitch detector, each against its plain formula.

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <vector>

#include "signal/NUMfft_Table_d.h"
#include "signal/PortableSine.h"
#include "signal/ShortTermAutocorrelation.h"
#include "signal/SincInterpolation.h"

namespace veral3::test {
namespace {

constexpr double kPi = std::numbers::pi;

double Wave(int i) { return std::sin(0.31 * i) + 0.4 * std::cos(1.7 * i + 0.2) + 0.1 * (i % 7); }

TEST(PortableSine, IsTheSine) {
  for (double x = 0.0; x <= kPi / 2.0; x += 1e-4) EXPECT_NEAR(QuarterSine(x), std::sin(x), 4e-16);
  EXPECT_EQ(QuarterSine(0.0), 0.0);
  EXPECT_NEAR(QuarterSine(kPi / 2.0), 1.0, 2e-16);
}

TEST(FftPlan, IsTheFourierSum) {
  for (const int n : {4, 8, 64, 256}) {
    NUMfft_Table_d plan(n);
    EXPECT_EQ(plan.Length(), n);
    EXPECT_EQ(plan.NumBins(), n / 2 + 1);
    std::vector<double> signal(static_cast<std::size_t>(n)), back(signal.size());
    for (int i = 0; i < n; ++i) signal[static_cast<std::size_t>(i)] = Wave(i);
    std::vector<std::complex<double>> spectrum(static_cast<std::size_t>(plan.NumBins()));
    plan.Forward(signal, spectrum);
    for (int k = 0; k <= n / 2; ++k) {
      std::complex<double> sum = 0.0;
      for (int i = 0; i < n; ++i) {
        sum += signal[static_cast<std::size_t>(i)] * std::polar(1.0, -2.0 * kPi * k * i / n);
      }
      EXPECT_NEAR(std::abs(sum - spectrum[static_cast<std::size_t>(k)]), 0.0, 1e-11);
    }
    plan.Backward(spectrum, back);
    for (std::size_t i = 0; i < signal.size(); ++i) EXPECT_NEAR(back[i], n * signal[i], 1e-10);
  }
}

TEST(Autocorrelation, IsThatOfThePieceOverThatOfTheWindow) {
  const int half = 61;
  ShortTermAutocorrelation autocorrelation(half);
  EXPECT_EQ(autocorrelation.FftLength(), 256);  // the power of two from 183 on
  std::vector<std::int16_t> piece(2 * half);
  double mean = 0.0;
  for (int i = 0; i < 2 * half; ++i) {
    piece[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(3000.0 * Wave(i));
    mean += piece[static_cast<std::size_t>(i)];
  }
  mean /= 2.0 * half;
  double peak = 0.0;
  std::vector<double> window(piece.size()), value(piece.size());
  for (std::size_t i = 0; i < piece.size(); ++i) {
    window[i] = 0.5 - 0.5 * std::cos(2.0 * kPi * (static_cast<double>(i) + 0.5) / (2.0 * half));
    value[i] = (piece[i] - mean) * window[i];
    peak = std::max(peak, std::abs(piece[i] - mean));
  }
  const auto correlate = [](const std::vector<double>& x, std::size_t lag) {
    double sum = 0.0;
    for (std::size_t i = 0; i + lag < x.size(); ++i) sum += x[i] * x[i + lag];
    return sum;
  };

  EXPECT_DOUBLE_EQ(autocorrelation.Compute(piece), peak);
  const auto r = autocorrelation.Symmetric();
  ASSERT_EQ(r.size(), 2U * half + 1);
  for (std::size_t lag = 0; lag <= half; ++lag) {
    const double expected = correlate(value, lag) / correlate(value, 0) /
                            (correlate(window, lag) / correlate(window, 0));
    EXPECT_NEAR(r[half + lag], expected, 1e-11);
    EXPECT_EQ(r[half + lag], r[half - lag]);
  }
  EXPECT_EQ(r[half], 1.0);
}

TEST(Autocorrelation, ThePeakMayLieBelowTheMean) {
  std::vector<std::int16_t> piece(20, 10);
  piece[7] = -90;
  ShortTermAutocorrelation autocorrelation(10);
  EXPECT_DOUBLE_EQ(autocorrelation.Compute(piece), 95.0);  // the mean is 5
  for (std::int16_t& sample : piece) sample = static_cast<std::int16_t>(-sample);
  EXPECT_DOUBLE_EQ(autocorrelation.Compute(piece), 95.0);
}

// Everything that transforms need is there when the plan is.
TEST(FftPlan, TransformsAllocateNothing) {
  for (const int n : {1024, 4096}) {
    NUMfft_Table_d plan(n);
    std::vector<double> signal(static_cast<std::size_t>(n), 1.0);
    std::vector<std::complex<double>> spectrum(static_cast<std::size_t>(plan.NumBins()));
    const std::size_t before = mallinfo2().uordblks;
    plan.Forward(signal, spectrum);
    const std::size_t forward = mallinfo2().uordblks;
    plan.Backward(spectrum, signal);
    const std::size_t backward = mallinfo2().uordblks;
    EXPECT_EQ(forward, before);
    EXPECT_EQ(backward, before);
  }
}

TEST(Autocorrelation, AConstantPieceHasNone) {
  ShortTermAutocorrelation autocorrelation(10);
  EXPECT_EQ(autocorrelation.Compute(std::vector<std::int16_t>(20, -5)), 0.0);
}

std::vector<double> Symmetric(int reach, double period) {
  std::vector<double> values(static_cast<std::size_t>(2 * reach + 1));
  for (int lag = -reach; lag <= reach; ++lag) {
    values[static_cast<std::size_t>(lag + reach)] =
        0.7 * std::cos(2.0 * kPi * lag / period) + 0.3 * std::cos(6.0 * kPi * lag / period);
  }
  return values;
}

// Equation 22 as it is printed.
double PlainSinc(const std::vector<double>& symmetric, double lag) {
  const int reach = static_cast<int>(symmetric.size() / 2);
  const int left = static_cast<int>(std::floor(lag));
  const double phi_left = lag - left, phi_right = 1.0 - phi_left;
  const int depth = std::min(70, reach - left);
  double sum = 0.0;
  for (int n = 1; n <= depth; ++n) {
    const double u = phi_left + n - 1, v = phi_right + n - 1;
    sum += symmetric[static_cast<std::size_t>(reach + left + 1 - n)] * std::sin(kPi * u) /
           (kPi * u) * (0.5 + 0.5 * std::cos(kPi * u / (phi_left + depth)));
    sum += symmetric[static_cast<std::size_t>(reach + left + n)] * std::sin(kPi * v) / (kPi * v) *
           (0.5 + 0.5 * std::cos(kPi * v / (phi_right + depth)));
  }
  return sum;
}

TEST(SincInterpolation, IsThePrintedFormula) {
  const int reach = 293;
  const auto values = Symmetric(reach, 61.3);
  for (double lag = 0.37; lag < reach; lag += 0.913) {
    EXPECT_NEAR(SincInterpolate(values, lag), PlainSinc(values, lag), 1e-12) << lag;
  }
}

TEST(SincInterpolation, PassesThroughTheValues) {
  const auto values = Symmetric(100, 23.7);
  for (int lag = 0; lag <= 100; ++lag) {
    EXPECT_EQ(SincInterpolate(values, lag), values[static_cast<std::size_t>(100 + lag)]);
    if (lag == 0 || lag == 100) continue;
    EXPECT_NEAR(SincInterpolate(values, lag + 1e-9), values[static_cast<std::size_t>(100 + lag)],
                1e-7);
    EXPECT_NEAR(SincInterpolate(values, lag - 1e-9), values[static_cast<std::size_t>(100 + lag)],
                1e-7);
  }
}

TEST(SincInterpolation, RebuildsWhatWasSampled) {
  const double period = 61.3;
  const auto values = Symmetric(293, period);
  for (double lag = 40.3; lag < 220.0; lag += 1.7) {
    const double expected =
        0.7 * std::cos(2.0 * kPi * lag / period) + 0.3 * std::cos(6.0 * kPi * lag / period);
    EXPECT_NEAR(SincInterpolate(values, lag), expected, 2e-4) << lag;
  }
}

TEST(SincInterpolation, FindsTheMaximum) {
  for (double period = 49.0; period < 220.0; period += 3.37) {
    const auto values = Symmetric(293, period);
    const double* const r = values.data() + 293;
    int lag = static_cast<int>(period + 0.5);
    while (r[lag + 1] > r[lag]) ++lag;
    while (r[lag - 1] > r[lag]) --lag;
    const LagMaximum found = RefineMaximum(values, lag);
    EXPECT_NEAR(found.lag, period, 2e-3) << period;
    EXPECT_NEAR(found.value, 1.0, 1e-4) << period;
    // No place around it is higher.
    for (double step = -0.5; step <= 0.5; step += 0.01) {
      EXPECT_LE(SincInterpolate(values, found.lag + step), found.value + 1e-12) << period;
    }
  }
}

TEST(SincInterpolation, MaximaOfRoughValues) {
  std::uint32_t state = 5;
  std::vector<double> values(101);
  for (int round = 0; round < 50; ++round) {
    for (int lag = 0; lag <= 50; ++lag) {
      state = state * 1664525U + 1013904223U;
      const double value = static_cast<double>(state >> 8) / (1 << 24);
      values[static_cast<std::size_t>(50 + lag)] = values[static_cast<std::size_t>(50 - lag)] =
          lag == 0 ? 1.0 : value;
    }
    for (int lag = 2; lag < 50; ++lag) {
      const double* const r = values.data() + 50;
      if (!(r[lag] > r[lag - 1] && r[lag] >= r[lag + 1])) continue;
      const LagMaximum found = RefineMaximum(values, lag);
      EXPECT_GE(found.value, r[lag]);
      EXPECT_NEAR(found.lag, lag, 1.0);
      EXPECT_EQ(found.value, SincInterpolate(values, found.lag));
    }
  }
}

// Lags 0.. and, the function being even, their mirror.
std::vector<double> Mirrored(const std::vector<double>& values) {
  std::vector<double> symmetric(values.rbegin(), values.rend() - 1);
  symmetric.insert(symmetric.end(), values.begin(), values.end());
  return symmetric;
}

// Values that lead parabolas astray: beside a lopsided top, and with a neighbour of its height.
TEST(SincInterpolation, MaximaThatParabolasMiss) {
  struct Case {
    std::vector<double> values;
    int lag;
  };
  for (const Case& c :
       {Case{{1.0, 0.82, 0.89, 0.88}, 2}, Case{{1.0, 0.9, 0.98, 0.95}, 2},
        Case{{1.0, 0.32, 0.99, 0.18, 0.8, 0.97, 0.96}, 5}, Case{{1.0, 0.76, 0.84, 0.95, 0.91}, 3},
        Case{{1.0, 0.13, 0.73, 0.89, 0.88, 0.12, 0.88, 0.2}, 3},
        Case{{1.0, 0.0, 0.7, 0.7, 0.3, 0.2}, 2},
        Case{{1.0, 0.5, 0.65, 0.42, 0.52, 0.56, 0.76, 0.95, 0.9}, 7}}) {
    const std::vector<double> symmetric = Mirrored(c.values);
    double best = 0.0;
    for (int step = 0; step < 2000; ++step) {
      const double lag = c.lag - 1.0 + (step + 0.5) / 1000.0;
      best = std::max(best, PlainSinc(symmetric, lag));
    }
    const LagMaximum found = RefineMaximum(symmetric, c.lag);
    EXPECT_NEAR(found.lag, c.lag, 1.0);
    EXPECT_NEAR(found.value, best, 1e-5) << c.lag;
    EXPECT_NEAR(PlainSinc(symmetric, found.lag), found.value, 1e-12) << c.lag;
  }
}

// The vertex is the sample itself: there is nowhere to move to, though the values farther out tilt
// the function.
TEST(SincInterpolation, ASearchThatBeginsAtTheVertexEndsThere) {
  const std::vector<double> symmetric = Mirrored({1.0, 0.2, 0.6, 0.2, -0.9});
  EXPECT_NE(PlainSinc(symmetric, 2.001), PlainSinc(symmetric, 1.999));
  const LagMaximum found = RefineMaximum(symmetric, 2);
  EXPECT_EQ(found.lag, 2.0);
  EXPECT_EQ(found.value, 0.6);
}

TEST(SincInterpolation, AFlatTop) {
  const std::vector<double> values = {0.1, 0.5, 0.5, 1.0, 0.5, 0.5, 0.1};
  const LagMaximum found = RefineMaximum(values, 1);
  EXPECT_GE(found.value, 0.5);
  EXPECT_NEAR(found.lag, 1.0, 1.0);
}

}  // namespace
}  // namespace veral3::test
