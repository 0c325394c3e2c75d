#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "signal/CPraPitch.h"

// Sounds of known pitch, made of sines and noise, and the errors of a track against them.
namespace veral3::test {

// 16 bit, mono, 22050 Hz, with the pitch (Hz, 0 where there is none) at every sample.
struct KnownSound {
  std::vector<std::int16_t> samples;
  std::vector<double> pitch;
};

// Puts a sound together from stretches, one after another.
class VoiceMaker {
 public:
  explicit VoiceMaker(std::uint32_t seed = 1) : m_random(seed) {}

  // The amplitude of a harmonic from its number (1 the fundamental) and frequency (Hz).
  using Envelope = std::function<double(int harmonic, double hertz)>;
  // The pitch (Hz) from the time in the stretch, 0..1.
  using Contour = std::function<double(double time)>;

  // A periodic stretch: harmonics up to 5 kHz, 20 ms of rise and fall. `alternation`: by how much
  // every second period is softer, 0..1.
  void AddVoiced(double seconds, const Contour& contour, const Envelope& envelope,
                 double alternation = 0.0);
  // Soft noise through resonances, without pitch.
  void AddWhisper(double seconds);
  // Clicks through resonances at irregular distances, 20 to 60 a second: below every pitch that the
  // tracker looks for, so without pitch here.
  void AddCreak(double seconds);
  void AddSilence(double seconds);

  // The sound so far with white noise, `noise_db` below the mean power of its periodic stretches.
  KnownSound WithNoise(double noise_db);

 private:
  double Noise();  // -1..1
  void AddResonant(double seconds, const std::function<double()>& source, double level);

  std::uint32_t m_random;
  std::vector<double> m_values;
  std::vector<double> m_pitch;
};

// Falls by 6 dB an octave, with resonances at 600, 1500 and 2600 Hz.
double VowelEnvelope(int harmonic, double hertz);

struct PitchErrors {
  int frames = 0;
  int voiced_in_both = 0;
  int gross = 0;             // of those, more than 20 % off
  int missed = 0;            // voiced frames read as unvoiced
  int false_alarms = 0;      // unvoiced frames read as voiced
  std::vector<double> fine;  // Hz, distances of those that are not gross

  void Add(const PitchErrors& other);
  double GrossPercent() const;
  double MissedPercent() const;  // of the voiced frames
  double FalsePercent() const;   // of the unvoiced frames
  double MedianHertz() const;
};

// Errors of a track, whose limits have the last word on what is voiced, frame by frame.
PitchErrors Compare(const CPraPitch& track, const KnownSound& sound);

}  // namespace veral3::test
