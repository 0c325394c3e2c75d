#pragma once

#include <cstdint>
#include <vector>

#include "signal/CPraPitchFrame.h"

// A pitch track: what CPraAutoCorrPDA makes of a sound. Frames are numbered from 1; frame i is
// centred at x1 + (i - 1) * dx.
class CPraPitch {
 public:
  CPraPitch() = default;
  CPraPitch(const CPraPitch&) = default;
  CPraPitch& operator=(const CPraPitch&) = default;
  virtual ~CPraPitch() = default;

  // The voicing test: whether a frequency (Hz) counts as voiced pitch of this track. One below 0,
  // below the floor or above the ceiling does not.
  bool Accepts(double frequency) const {
    return !(frequency < 0.0 || frequency < floor || frequency > ceiling);
  }

  const CPraPitchFrame& Frame(std::int32_t i) const {
    return frames[static_cast<std::size_t>(i) - 1];
  }

  double xmin = 0.0;  // s, start of the sound
  double xmax = 0.0;  // s, its end
  std::int32_t nx = 0;
  double dx = 0.0;       // s, frame step
  double x1 = 0.0;       // s, centre of the first frame
  double ceiling = 0.0;  // Hz
  double floor = 0.0;    // Hz
  std::int32_t max_candidates = 0;
  std::vector<CPraPitchFrame> frames;  // nx of them
};
