#pragma once

#include <complex>
#include <memory>
#include <span>

// The plan of a real Fourier transform in double precision: the length and its trigonometric
// tables and work vectors, made once and used for many transforms. One thread at a time uses a
// plan; several plans may be used at once.
//
//   NUMfft_Table_d plan(1024);
//   plan.Forward(signal, spectrum);    // 1024 values -> 513 bins
//   plan.Backward(spectrum, signal);   // 1024 times what it was
class NUMfft_Table_d {
 public:
  // `length`: values a transform, a multiple of 4.
  explicit NUMfft_Table_d(int length);
  ~NUMfft_Table_d();
  NUMfft_Table_d(NUMfft_Table_d&&) noexcept;
  NUMfft_Table_d& operator=(NUMfft_Table_d&&) noexcept;

  int Length() const { return m_nLength; }
  int NumBins() const { return m_nLength / 2 + 1; }

  // `signal`: Length() values. `spectrum`: NumBins() bins from 0 to half the sampling rate.
  void Forward(std::span<const double> signal, std::span<std::complex<double>> spectrum);

  // The inverse of Forward, not divided by the length.
  void Backward(std::span<const std::complex<double>> spectrum, std::span<double> signal);

 private:
  struct Tables;
  int m_nLength;
  std::unique_ptr<Tables> m_pTables;
};
