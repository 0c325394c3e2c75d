#pragma once

#include <array>
#include <cstdint>

#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// Virtual speakers: recordings of few voices as if many had read them. Short-time spectra are split
// into a smooth envelope (what mouth and throat do) and the rest (the voice itself); the envelope
// is bent along frequency, flattened or sharpened and tilted, and the voice is made breathy above
// some frequency. Pitch and time stay, so the labels do.
//
//   Random random(seed);
//   const VirtualSpeaker speaker = DrawVirtualSpeaker(random);
//   Utterance one = Morph(first, speaker), other = Morph(second, speaker);  // by the same person
namespace veral3::training {

// One wave of the curve that bends frequencies: by a share of themselves, along the mel scale.
struct Ripple {
  double size = 0.0;    // 0.05: a formant is up to 5 % off
  double cycles = 0.0;  // from 0 to 11025 Hz
  double start = 0.0;   // of a cycle, at 0 Hz
};

struct VirtualSpeaker {
  // The envelope at f [Hz] is the recording's at f (1 + the sum of both ripples at f): where that
  // sum is positive, formants come down. Sizes of 0.05 and 2 cycles never fold the scale.
  std::array<Ripple, 2> bends;
  double sharpness = 1.0;       // factor of the envelope's distance from its mean, in dB
  double tilt_db = 0.0;         // from 0 to 11025 Hz, even on the mel scale
  double rough_above_hz = 1e9;  // phases are changed by chance above
  double roughness = 0.0;       // 0 to 1: by up to half a turn
  std::uint64_t seed = 1;       // of those phases
};

// Bends of 4 to 5 % with half a cycle to two, up to 20 % flatter or sharper, up to 6 dB of tilt;
// every second one rough above 1 to 8 kHz.
VirtualSpeaker DrawVirtualSpeaker(Random& random);

// The same utterance by that speaker, as loud as it was: as many samples, the same labels, text and
// tones. Digital silence stays.
Utterance Morph(const Utterance& utterance, const VirtualSpeaker& speaker);

}  // namespace veral3::training
