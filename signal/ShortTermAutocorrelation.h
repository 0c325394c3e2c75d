#pragma once

#include <complex>
#include <cstdint>
#include <span>
#include <vector>

#include "signal/NUMfft_Table_d.h"

// The normalised autocorrelation of short pieces of a sound (Boersma 1993, section 3, steps 3.2 to
// 3.10): the piece without its mean under a Hanning window, its autocorrelation through the power
// spectrum, divided by that of the window itself. Plan, window and work vectors are made once and
// serve every piece.
namespace veral3 {

class ShortTermAutocorrelation {
 public:
  // `half_length`: half the samples of a piece, at least 2. Lags up to that are computed.
  explicit ShortTermAutocorrelation(int half_length);

  int PieceLength() const { return 2 * m_half_length; }
  int Reach() const { return m_half_length; }
  int FftLength() const { return m_plan.Length(); }

  // Takes the PieceLength() samples of `piece` and returns their peak, the largest distance from
  // their mean. 0 says that the piece is constant: it has no autocorrelation.
  double Compute(std::span<const std::int16_t> piece);

  // The last piece's autocorrelation at the lags -Reach()..Reach(), lag 0, which is 1, in the
  // middle.
  std::span<const double> Symmetric() const { return m_symmetric; }

 private:
  void Correlate();

  int m_half_length;
  NUMfft_Table_d m_plan;
  std::vector<double> m_window;         // PieceLength()
  std::vector<double> m_window_factor;  // 1 / the window's autocorrelation, lags 0..Reach()
  std::vector<double> m_signal;         // FftLength(); zero after the piece
  std::vector<double> m_correlation;    // FftLength()
  std::vector<std::complex<double>> m_spectrum;
  std::vector<double> m_symmetric;
};

}  // namespace veral3
