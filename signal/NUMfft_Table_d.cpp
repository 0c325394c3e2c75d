#include "signal/NUMfft_Table_d.h"

#include <unsupported/Eigen/FFT>
#include <vector>

struct NUMfft_Table_d::Tables {
  Eigen::FFT<double> fft;
};

NUMfft_Table_d::NUMfft_Table_d(int length)
    : m_nLength(length), m_pTables(std::make_unique<Tables>()) {
  m_pTables->fft.SetFlag(Eigen::FFT<double>::HalfSpectrum);
  m_pTables->fft.SetFlag(Eigen::FFT<double>::Unscaled);

  // The library builds its tables at the first transform; do it here, not within the first frame.
  std::vector<double> signal(static_cast<std::size_t>(length));
  std::vector<std::complex<double>> spectrum(static_cast<std::size_t>(NumBins()));
  Forward(signal, spectrum);
  Backward(spectrum, signal);
}

NUMfft_Table_d::~NUMfft_Table_d() = default;
NUMfft_Table_d::NUMfft_Table_d(NUMfft_Table_d&&) noexcept = default;
NUMfft_Table_d& NUMfft_Table_d::operator=(NUMfft_Table_d&&) noexcept = default;

void NUMfft_Table_d::Forward(std::span<const double> signal,
                             std::span<std::complex<double>> spectrum) {
  m_pTables->fft.fwd(spectrum.data(), signal.data(), m_nLength);
}

void NUMfft_Table_d::Backward(std::span<const std::complex<double>> spectrum,
                              std::span<double> signal) {
  m_pTables->fft.inv(signal.data(), spectrum.data(), m_nLength);
}
