#pragma once

#include "signal/CPraPitch.h"

// The path finder (Boersma 1993, section 3, step 4): of every frame's candidates, those that make
// the cheapest way through the whole sound.
namespace veral3 {

struct PitchPathSettings {
  double silence_threshold = 0.03;     // frames with a peak below this share of the sound's are
                                       // likely unvoiced
  double voicing_threshold = 0.45;     // strength of the unvoiced candidate in a loud frame
  double octave_cost = 0.01;           // per octave below the ceiling: favours high readings
  double octave_jump_cost = 0.35;      // per octave between neighbours
  double voiced_unvoiced_cost = 0.14;  // per change of voicing
  double ceiling = 450.0;              // Hz; candidates above it count as unvoiced
};

// What speaks for a frame's being unvoiced. `intensity`: CPraPitchFrame's.
double UnvoicedStrength(double intensity, const PitchPathSettings& settings);

// Moves the chosen candidate of every frame to position 1. The two transition costs are meant for
// a step of 0.01 s and are scaled by 0.01 / pitch.dx. Time and memory grow with the number of
// frames. Of equally cheap ways the one through lower positions is taken.
void FindPitchPath(CPraPitch& pitch, const PitchPathSettings& settings);

}  // namespace veral3
