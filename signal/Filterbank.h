#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "signal/HMath.h"

// The mel filterbank: a frame's spectrum summed up in overlapping triangles.
//
//   FBankInfo info = BuildFilterbank(heap, {.frame_size = 551, .samp_period = 453,
//                                           .num_chans = 26});
//   Wave2FBank(s, fbank, info, nullptr);   // s: 551 samples, fbank: 26 log energies
//
// A design is computed once for its options and shared by all threads; the work vector belongs to
// the caller's heap.
namespace veral3 {

struct FilterbankOptions {
  int frame_size = 0;   // samples
  int samp_period = 0;  // whole units of 100 ns; 453 for 22050 Hz, so the axis is that of 22075 Hz
  int num_chans = 0;
  float lo_freq = -1.0F;  // Hz; negative: no cut-off
  float hi_freq = -1.0F;
  bool use_power = true;    // sum powers, not magnitudes
  bool take_logs = true;    // channels are logarithms
  bool double_fft = false;  // transform of twice the length

  bool operator==(const FilterbankOptions&) const = default;
};

// A mel filterbank: triangles whose centres are evenly spaced on the mel axis.
struct FilterbankDesign {
  FilterbankOptions options;
  int fft_n = 0;
  int klo = 0, khi = 0;  // bins used, counted from 1
  double lower_mel = 0.0, upper_mel = 0.0;
  std::vector<float> centres;                // [0]: lower edge; 1..num_chans+1 in mel
  std::vector<std::int16_t> lower_channels;  // of bin 1..fft_n/2; -1 outside klo..khi
  std::vector<float> lower_weights;          // of bin 1..fft_n/2
  std::vector<int> channel_bins;  // [ch]: first bin with lower channel ch; one more for the end
};

// Computes a design; pure. Options outside a sensible range give one without bins.
FilterbankDesign DesignFilterbank(const FilterbankOptions& options);

struct FBankInfo {
  std::shared_ptr<const FilterbankDesign> design;
  Vector work;  // fft_n values
};

// The shared design for `options`, with a work vector of `heap`.
FBankInfo BuildFilterbank(MemHeap& heap, const FilterbankOptions& options);

// One frame to filterbank outputs. `s` and `fbank` must have the design's sizes (fatal errors);
// the sum of squares of `s` goes to `energy` unless that is null.
void Wave2FBank(Vector s, Vector fbank, FBankInfo& info, double* energy);

}  // namespace veral3
