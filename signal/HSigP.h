#pragma once

#include <span>

#include "signal/HMath.h"

// The front end's toolkit, module HSigP: the steps from samples to cepstra, each a function over
// plain arrays.
//
//   RemoveFrameMean(s);                                   s: one frame of samples
//   PreEmphasiseFrame(s, 0.95F);
//   HammingWindowFrame(s, HammingWindow(s.Size()));
//   Wave2FBank(s, fbank, info, nullptr);                  log energies of the mel channels,
//                                                         see Filterbank.h
//   FilterbankToCepstra(fbank, c, CosineTable(26, 12));
//   LifterCepstra(c, LifterWeights(22, 12));
//
// The tables are made once for each set of arguments, shared by all threads and read-only. They
// last until the module ends.
namespace veral3 {

// Module start (the heap "sigpHeap" for the tables, the configuration) and end. Starting twice does
// nothing.
void StartSigP();
void EndSigP();

// The module's trace setting, 0 unless configured.
int SigPTrace();

// Sums in double precision and in a fixed order.
double Sum(std::span<const float> x);
double SumOfSquares(std::span<const float> x);

void RemoveFrameMean(Vector s);

// s[i] -= k s[i-1] from the last sample down to the second, then s[1] *= 1 - k.
void PreEmphasiseFrame(Vector s, float k);

// 0.54 - 0.46 cos(2 pi (i-1) / (size-1)), i = 1..size.
ConstVector HammingWindow(int size);
// Multiplies sample by sample; the window has the frame's size.
void HammingWindowFrame(Vector s, ConstVector window);

// 1 + (lifter/2) sin(pi i / lifter), i = 1..count.
ConstVector LifterWeights(int lifter, int count);
void LifterCepstra(Vector c, ConstVector weights);

// cos(pi j (k - 0.5) / num_chans) for j = 1..num_ceps, channel after channel (k = 1..num_chans).
ConstVector CosineTable(int num_chans, int num_ceps);
// DCT-II: c[j] = sqrt(2 / num_chans) x sum of fbank[k] cos(pi j (k - 0.5) / num_chans).
void FilterbankToCepstra(Vector fbank, Vector c, ConstVector cosines);
// The 0th coefficient, sqrt(2 / num_chans) x sum of fbank[k].
float FilterbankToC0(Vector fbank);

// Regression coefficients over rows of `step` floats.
struct RegressionOptions {
  int half_window = 2;
  bool simple_diffs = false;  // differences over the window instead
  bool v1_compat = false;     // differences of neighbours in the edge rows
};
// Columns source.. of all rows give columns target..; beyond the edges the first or last row is
// repeated.
void AddRegressionColumns(float* rows, int num_rows, int step, int source, int target,
                          int num_columns, const RegressionOptions& options);

// Subtracts from each of the first `num_columns` columns its mean over the rows.
void SubtractColumnMeans(float* rows, int num_rows, int step, int num_columns);

// Subtracts mean[j] from column j (the first column with mean[1]).
void SubtractColumns(float* rows, int num_rows, int step, Vector mean);

// Log energies of an utterance, `n` of them `step` floats apart: at most `sil_floor` dB below the
// largest, then 1 - (largest - value) x scale.
void NormaliseUtteranceEnergy(float* first, int n, int step, float sil_floor, float scale);

}  // namespace veral3
