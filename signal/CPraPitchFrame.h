#pragma once

#include <cstdint>
#include <vector>

#include "signal/CPraPitchCandidate.h"

// One analysis frame of a pitch track. After the path finder, candidate 1 is the chosen one.
class CPraPitchFrame {
 public:
  CPraPitchFrame() = default;
  CPraPitchFrame(const CPraPitchFrame&) = default;
  CPraPitchFrame& operator=(const CPraPitchFrame&) = default;
  virtual ~CPraPitchFrame() = default;

  // Candidates are numbered from 1; element 0 of `candidates` is unused.
  std::int32_t CandidateCount() const {
    return candidates.empty() ? 0 : static_cast<std::int32_t>(candidates.size()) - 1;
  }

  // Hz of the chosen candidate; 0 for an unvoiced one, and for a frame in which nothing but the
  // unvoiced candidate was found.
  double Frequency() const { return CandidateCount() >= 2 ? candidates[1].frequency : 0.0; }

  double intensity = 0.0;  // peak of the frame relative to the peak of the whole sound, 0..1
  std::vector<CPraPitchCandidate> candidates;
};
