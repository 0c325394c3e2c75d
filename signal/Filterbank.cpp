#include "signal/Filterbank.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <mutex>

#include "common/MessageWriter.h"
#include "signal/HShell.h"
#include "signal/HSigP.h"
#include "signal/RealFft.h"

namespace veral3 {
namespace {

constexpr std::size_t kMaxDesigns = 16;  // kept; the oldest goes first

// Never destroyed: threads may outlive other static objects.
struct Designs {
  std::mutex mutex;
  std::vector<std::shared_ptr<const FilterbankDesign>> all;
};
Designs& TheDesigns() {
  static Designs& designs = *new Designs;
  return designs;
}

std::shared_ptr<const FilterbankDesign> SharedDesign(const FilterbankOptions& options) {
  Designs& designs = TheDesigns();
  const std::lock_guard lock(designs.mutex);
  for (const auto& design : designs.all) {
    if (design->options == options) return design;
  }
  if (designs.all.size() == kMaxDesigns) designs.all.erase(designs.all.begin());
  designs.all.push_back(std::make_shared<const FilterbankDesign>(DesignFilterbank(options)));
  return designs.all.back();
}

std::size_t At(int i) { return static_cast<std::size_t>(i); }

}  // namespace

FilterbankDesign DesignFilterbank(const FilterbankOptions& options) {
  FilterbankDesign design;
  design.options = options;
  int fft_n = 2;
  while (options.frame_size > fft_n) fft_n *= 2;
  if (options.double_fft) fft_n *= 2;
  design.fft_n = fft_n;
  const int num_bins = fft_n / 2;
  const double period = options.samp_period;
  const double bin_ratio = 1.0e7 / (period * fft_n * 700.0);
  const auto mel_of_bin = [bin_ratio](int k) { return MelOfRatio((k - 1) * bin_ratio); };

  design.klo = 2;
  design.khi = num_bins;
  design.lower_mel = 0.0;
  design.upper_mel = mel_of_bin(num_bins + 1);
  if (options.lo_freq >= 0.0F) {
    const double f = static_cast<double>(options.lo_freq);
    design.lower_mel = MelOfRatio(f / 700.0);
    const double bin = std::min(f * period * 1.0e-7 * fft_n + 2.5, num_bins + 1.0);
    design.klo = std::max(static_cast<int>(bin), 2);
  }
  if (options.hi_freq >= 0.0F) {
    const double f = static_cast<double>(options.hi_freq);
    design.upper_mel = MelOfRatio(f / 700.0);
    const double bin = std::min(f * period * 1.0e-7 * fft_n + 0.5, num_bins + 1.0);
    design.khi = std::min(static_cast<int>(bin), num_bins);
  }

  const int num_chans = options.num_chans;
  const double span = design.upper_mel - design.lower_mel;
  std::vector<double> centres(At(num_chans + 2), design.lower_mel);
  for (int j = 1; j <= num_chans + 1; ++j) {
    centres[At(j)] = j / (num_chans + 1.0) * span + design.lower_mel;
  }
  design.centres.assign(centres.begin(), centres.end());

  design.lower_channels.assign(At(num_bins + 1), -1);
  design.lower_weights.assign(At(num_bins + 1), 0.0F);
  design.channel_bins.assign(At(num_chans + 2), std::max(design.khi + 1, design.klo));
  int ch = 0;
  design.channel_bins[0] = design.klo;
  for (int k = design.klo; k <= design.khi; ++k) {
    const double mel = mel_of_bin(k);
    while (ch < num_chans && centres[At(ch + 1)] < mel) design.channel_bins[At(++ch)] = k;
    const double width = centres[At(ch + 1)] - centres[At(ch)];
    design.lower_channels[At(k)] = static_cast<std::int16_t>(ch);
    design.lower_weights[At(k)] = static_cast<float>((centres[At(ch + 1)] - mel) / width);
  }
  return design;
}

FBankInfo BuildFilterbank(MemHeap& heap, const FilterbankOptions& options) {
  FBankInfo info;
  info.design = SharedDesign(options);
  info.work = CreateVector(heap, info.design->fft_n);
  if (SigPTrace() != 0) {
    const FilterbankDesign& design = *info.design;
    Message(MessageStream::kOutput) << "FFT passband " << design.klo << " to " << design.khi
                                    << " out of 1 to " << design.fft_n / 2 << "\n";
    Message(MessageStream::kOutput) << std::fixed << std::setprecision(6) << "Mel passband "
                                    << design.lower_mel << " to " << design.upper_mel << "\n";
  }
  return info;
}

void Wave2FBank(Vector s, Vector fbank, FBankInfo& info, double* energy) {
  const FilterbankDesign& design = *info.design;
  if (s.Size() != design.options.frame_size) {
    FatalError(kErrorParmKind, "Wave2FBank: frame size mismatch");
  }
  if (fbank.Size() != design.options.num_chans) {
    FatalError(kErrorParmKind, "Wave2FBank: num channels mismatch");
  }
  const std::span<const float> samples = s.Elements();
  if (energy != nullptr) *energy = SumOfSquares(samples);
  const std::span<float> work = info.work.Elements();
  std::fill(std::copy(samples.begin(), samples.end(), work.begin()), work.end(), 0.0F);
  ThreadRealFft().Forward(work);

  // Bin k (from 1) has its parts in work[2k - 2] and work[2k - 1]. The bins of one lower channel
  // lie together, so a channel's sum stays in a register: first what the bins below its centre
  // give, then, carried over, what those above it give.
  const float* weights = design.lower_weights.data();
  float carried = 0.0F;
  for (int ch = 0; ch <= design.options.num_chans; ++ch) {
    float own = carried;
    carried = 0.0F;
    for (int k = design.channel_bins[At(ch)]; k < design.channel_bins[At(ch + 1)]; ++k) {
      const float re = work[At(2 * k - 2)];
      const float im = work[At(2 * k - 1)];
      float ek = re * re + im * im;
      if (!design.options.use_power) ek = std::sqrt(ek);
      const float t = weights[k] * ek;
      own += t;
      carried += ek - t;
    }
    if (ch > 0) {
      const float value = std::max(own, 1.0F);
      fbank[ch] = design.options.take_logs
                      ? static_cast<float>(LogOfPositive(static_cast<double>(value)))
                      : own;
    }
  }
}

}  // namespace veral3
