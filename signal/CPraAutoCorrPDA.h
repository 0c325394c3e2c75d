#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "signal/CPraPitch.h"

// The pitch detector: Boersma's short-term autocorrelation method ("Accurate short-term analysis
// of the fundamental frequency and the harmonics-to-noise ratio of a sampled sound", IFA
// Proceedings 17, 1993, pages 97-110) with a Hanning window of two periods of the lowest pitch.
//
//   CPraAutoCorrPDA detector;
//   auto track = detector.SoundToPitch(samples, n, 1.0 / 22050, 0.0, 75.0, 450.0);
//   if (track) { double low, high; detector.EstimatePitchRange(*track, low, high); }
//
// A detector has no state of its own: threads may share one. The same sound always gives the same
// bits.
class CPraAutoCorrPDA {
 public:
  // Everything that the method leaves open.
  struct Settings {
    double time_step = 0.0;  // s; 0 or less: a quarter of the window. At least one sample is taken
    double floor = 75.0;     // Hz, lowest pitch
    double periods_per_window = 2.0;
    std::int32_t max_candidates = 15;  // a frame, the unvoiced one included
    double silence_threshold = 0.03;
    double voicing_threshold = 0.45;
    double octave_cost = 0.01;
    double octave_jump_cost = 0.35;
    double voiced_unvoiced_cost = 0.14;
    double ceiling = 450.0;  // Hz, highest pitch; half the sampling rate at most
  };

  virtual ~CPraAutoCorrPDA() = default;

  // The track of `n` samples, `dx` seconds apart, the first at time 0. None, and a message on the
  // standard error stream, when the sound is shorter than two periods of `floor` (Hz) or when the
  // window is too short to hold a few samples. When memory runs out: a message and std::bad_alloc.
  virtual std::unique_ptr<CPraPitch> SoundToPitch(const std::int16_t* samples, std::uint32_t n,
                                                  double dx, double time_step, double floor,
                                                  double ceiling) const;

  // The same with every setting open.
  std::unique_ptr<CPraPitch> Analyze(std::span<const std::int16_t> samples, double dx,
                                     const Settings& settings) const;

  // The speaker's range (Hz) on a track; see EstimateRangeOfSorted. True when stray values were
  // cut off at either end.
  bool EstimatePitchRange(const CPraPitch& pitch, double& low, double& high) const;

 protected:
  // Gives a frame its candidates; may throw std::bad_alloc.
  virtual void StoreCandidates(CPraPitchFrame& frame,
                               std::span<const CPraPitchCandidate> candidates) const;

 private:
  std::unique_ptr<CPraPitch> MakeTrack(std::span<const std::int16_t> samples, double dx,
                                       const Settings& settings) const;
};

namespace veral3 {

struct PitchRange {
  double low = 0.0;  // Hz
  double high = 0.0;
  bool gap_found = false;
};

// The range of ascending frequencies without the strays beyond a gap: from a quarter of them
// downwards the first step of more than 60 Hz ends the range below, from three quarters upwards the
// first of more than 50 Hz ends it above. (The two widths differ on purpose.) No frequencies: 0 to
// 0, no gap.
PitchRange EstimateRangeOfSorted(std::span<const double> frequencies);

}  // namespace veral3
