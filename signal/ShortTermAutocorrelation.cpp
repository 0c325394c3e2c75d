#include "signal/ShortTermAutocorrelation.h"

#include <algorithm>
#include <numbers>

#include "signal/PortableSine.h"

namespace veral3 {
namespace {

// A power of two that leaves room for half a piece of zeros: the lags up to half a piece do not
// wrap round.
int FftLengthFor(int piece_length) {
  int length = 4;
  while (length < 1.5 * piece_length) length *= 2;
  return length;
}

}  // namespace

ShortTermAutocorrelation::ShortTermAutocorrelation(int half_length)
    : m_half_length(half_length), m_plan(FftLengthFor(2 * half_length)) {
  const auto fft_length = static_cast<std::size_t>(m_plan.Length());
  const auto piece_length = static_cast<std::size_t>(PieceLength());
  const auto reach = static_cast<std::size_t>(Reach());
  m_window.resize(piece_length);
  m_window_factor.resize(reach + 1);
  m_signal.resize(fft_length);
  m_correlation.resize(fft_length);
  m_spectrum.resize(static_cast<std::size_t>(m_plan.NumBins()));
  m_symmetric.resize(2 * reach + 1);

  for (std::size_t i = 0; i < piece_length; ++i) {
    const double phase = (static_cast<double>(i) + 0.5) / static_cast<double>(piece_length);
    const double sine = QuarterSine(std::numbers::pi * std::min(phase, 1.0 - phase));
    m_window[i] = sine * sine;  // (1 - cos(2 pi phase)) / 2
  }
  std::copy(m_window.begin(), m_window.end(), m_signal.begin());
  Correlate();
  for (std::size_t lag = 0; lag <= reach; ++lag) {
    m_window_factor[lag] = m_correlation[0] / m_correlation[lag];
  }
}

double ShortTermAutocorrelation::Compute(std::span<const std::int16_t> piece) {
  std::int64_t total = 0;
  std::int16_t least = piece[0], greatest = piece[0];
  for (const std::int16_t sample : piece) {
    total += sample;
    least = std::min(least, sample);
    greatest = std::max(greatest, sample);
  }
  const double mean = static_cast<double>(total) / static_cast<double>(piece.size());
  const double peak = std::max(greatest - mean, mean - least);
  const std::size_t reach = static_cast<std::size_t>(Reach());
  if (least == greatest) return 0.0;

  for (std::size_t i = 0; i < piece.size(); ++i) m_signal[i] = (piece[i] - mean) * m_window[i];
  Correlate();

  const double scale = 1.0 / m_correlation[0];
  for (std::size_t lag = 1; lag <= reach; ++lag) {
    const double value = m_correlation[lag] * scale * m_window_factor[lag];
    m_symmetric[reach + lag] = value;
    m_symmetric[reach - lag] = value;
  }
  m_symmetric[reach] = 1.0;
  return peak;
}

void ShortTermAutocorrelation::Correlate() {
  m_plan.Forward(m_signal, m_spectrum);
  for (std::complex<double>& bin : m_spectrum) {
    bin = bin.real() * bin.real() + bin.imag() * bin.imag();
  }
  m_plan.Backward(m_spectrum, m_correlation);
}

}  // namespace veral3
