#pragma once

// One reading of an analysis frame of the pitch tracker: a period that the sound may have there.
class CPraPitchCandidate {
 public:
  CPraPitchCandidate() = default;
  CPraPitchCandidate(double hertz, double correlation) : frequency(hertz), strength(correlation) {}
  CPraPitchCandidate(const CPraPitchCandidate&) = default;
  CPraPitchCandidate& operator=(const CPraPitchCandidate&) = default;
  virtual ~CPraPitchCandidate() = default;

  double frequency = 0.0;  // Hz; 0 means unvoiced
  double strength = 0.0;   // normalised autocorrelation at the period, 0..1; 0 when unvoiced
};
