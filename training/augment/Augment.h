#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// Makes one clean synthesised utterance into many: other vocal tracts, rooms, microphones, noises
// and levels, with the phoneme times carried along. Everything is drawn from the generator given,
// so that an utterance and a seed always give the same samples.
namespace veral3::training {

struct AugmentOptions {
  double warp_low = 0.88;  // factors of the length: below 1 a shorter vocal tract, and faster
  double warp_high = 1.12;
  double warp_chance = 0.8;
  double reverb_chance = 0.35;
  double low_pass_chance = 0.4;   // 7 to 8 kHz, as of 16 kHz recordings
  double telephone_chance = 0.1;  // 3.8 to 7 kHz
  double noise_chance = 0.8;      // white to brown, 8 to 45 dB below the speech
  double equaliser_db = 4.5;      // deviation of the nine points
  double telephone_low = 3800.0;  // Hz
  double telephone_high = 7000.0;
  double noise_low_db = 8.0;
  double noise_high_db = 45.0;
};

// Worse than anything in training, to see what holds up: a vocal tract beyond its range (every
// second utterance a shorter one), a band of 4 kHz, reverb, noise at 10 dB.
AugmentOptions StrongAugmentation(std::size_t number);

Utterance Augment(const Utterance& clean, const AugmentOptions& options, Random& random);

// The steps, each alone. Signals are floats in the range of 16 bit samples.

// Changes the sampling rate: `factor` times as many samples, labels moved likewise.
std::vector<float> Resample(std::span<const float> signal, double factor);

// Early echoes of a small room, none louder than a fifth of the direct sound.
void AddReverb(std::vector<float>& signal, Random& random);

// Linear-phase filter of 127 taps through nine gains (dB) spaced evenly in mel from 60 Hz to
// 11 kHz, silent above `cutoff_hz`. The delay is taken out: the length stays.
void Equalise(std::vector<float>& signal, std::span<const double> gains_db, double cutoff_hz);

// Noise of the given colour (0 white to 1 brown) and root mean square.
void AddNoise(std::vector<float>& signal, double colour, double rms, Random& random);

}  // namespace veral3::training
