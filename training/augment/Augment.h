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
  double level_range_db = 32.0;  // peaks lie so far below full scale, at most

  // What follows does not happen unless asked for, and draws nothing then: samples and labels are
  // what they are without it.

  double child_chance = 0.0;  // pitch and formants up by 10 to 35 %, in place of the warp
  double tempo_chance = 0.0;
  double tempo_low = 0.7;  // slower
  double tempo_high = 1.5;
  double edges_chance = 0.0;   // before and after the speech exactly 10 ms to 3 s, short ones as
                               // often as long ones, in place of .05 to .6 s more than there were
  double room_chance = 0.0;    // with a real tail, in place of reverb
  double babble_chance = 0.0;  // 3 to 8 of `others`; nothing where there are none
  double babble_low_db = 5.0;  // below the speech
  double babble_high_db = 25.0;
  double hum_chance = 0.0;                 // 10 to 30 dB below the speech
  double clipping_chance = 0.0;            // 2 to 8 dB of the peak
  double band_chance = 0.0;                // of a telephone: from 200-400 to 3000-3800 Hz
  double codec_chance = 0.0;               // Opus of 8 to 32 kbit/s or, as often, MP3 of 16 to 64
  std::span<const Utterance> others = {};  // must outlive every use of the options
};

// What people's phones, rooms and browsers do, each by a chance of its own, more of it than a
// reading usually has. `others` are those who babble; without any nobody does.
AugmentOptions WideAugmentation(std::span<const Utterance> others);

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
