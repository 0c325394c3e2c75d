#include "SyntheticVoice.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "signal/CWaveFrameDef.h"

namespace veral3::test {
namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;
constexpr double kHighestHarmonic = 5000.0;  // Hz
constexpr double kFade = 0.02;               // s

std::size_t SamplesIn(double seconds) {
  return static_cast<std::size_t>(seconds * kSampleRate + 0.5);
}

double Fade(std::size_t i, std::size_t n) {
  const double edge = static_cast<double>(std::min(i, n - 1 - i)) / (kFade * kSampleRate);
  return edge >= 1.0 ? 1.0 : 0.5 - 0.5 * std::cos(std::numbers::pi * edge);
}

double Percent(int part, int whole) { return whole == 0 ? 0.0 : 100.0 * part / whole; }

}  // namespace

double VowelEnvelope(int, double hertz) {
  double level = 100.0 / hertz;
  for (const double formant : {600.0, 1500.0, 2600.0}) {
    const double distance = (hertz - formant) / 120.0;
    level *= 1.0 + 4.0 / (1.0 + distance * distance);
  }
  return level;
}

void VoiceMaker::AddVoiced(double seconds, const Contour& contour, const Envelope& envelope,
                           double alternation) {
  const std::size_t n = SamplesIn(seconds);
  double phase = 0.0;  // periods
  std::vector<double> stretch(n), pitch(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double f0 = contour(static_cast<double>(i) / static_cast<double>(n));
    // The sines of the harmonics, each from the two below it.
    const double angle = kTwoPi * (phase - std::floor(phase));
    const double factor = 2.0 * std::cos(angle);
    double value = 0.0, below = 0.0, sine = std::sin(angle);
    for (int h = 1; h * f0 <= kHighestHarmonic; ++h) {
      value += envelope(h, h * f0) * sine;
      const double above = factor * sine - below;
      below = sine;
      sine = above;
    }
    // Softening with half the pitch, without a step at the edges of the periods.
    value *= 1.0 - alternation * (0.5 - 0.5 * std::cos(std::numbers::pi * phase));
    stretch[i] = value * Fade(i, n);
    pitch[i] = f0;
    phase += f0 / kSampleRate;
  }
  double power = 0.0;
  for (const double value : stretch) power += value * value;
  const double gain = 0.15 / std::sqrt(power / static_cast<double>(n));
  for (const double value : stretch) m_values.push_back(value * gain);
  m_pitch.insert(m_pitch.end(), pitch.begin(), pitch.end());
}

void VoiceMaker::AddResonant(double seconds, const std::function<double()>& source, double level) {
  const std::size_t n = SamplesIn(seconds);
  double state[2][2] = {};
  std::vector<double> stretch(n);
  for (std::size_t i = 0; i < n; ++i) {
    double value = source();
    const double formants[] = {900.0, 1900.0};
    for (int k = 0; k < 2; ++k) {
      const double radius = std::exp(-std::numbers::pi * 300.0 / kSampleRate);
      value += 2.0 * radius * std::cos(kTwoPi * formants[k] / kSampleRate) * state[k][0] -
               radius * radius * state[k][1];
      state[k][1] = state[k][0];
      state[k][0] = value;
    }
    stretch[i] = value * Fade(i, n);
  }
  double power = 0.0;
  for (const double value : stretch) power += value * value;
  const double gain = level / std::sqrt(power / static_cast<double>(n));
  for (const double value : stretch) m_values.push_back(value * gain);
  m_pitch.resize(m_values.size(), 0.0);
}

void VoiceMaker::AddWhisper(double seconds) {
  AddResonant(
      seconds, [this] { return Noise(); }, 0.04);
}

void VoiceMaker::AddCreak(double seconds) {
  double wait = 0.0;  // samples to the next click
  AddResonant(
      seconds,
      [this, &wait] {
        if (wait > 0.0) {
          wait -= 1.0;
          return 0.0;
        }
        wait = kSampleRate / (40.0 + 20.0 * Noise());
        return 1.0 + 0.3 * Noise();
      },
      0.06);
}

void VoiceMaker::AddSilence(double seconds) {
  m_values.resize(m_values.size() + SamplesIn(seconds), 0.0);
  m_pitch.resize(m_values.size(), 0.0);
}

KnownSound VoiceMaker::WithNoise(double noise_db) {
  double power = 0.0;
  int voiced = 0;
  for (std::size_t i = 0; i < m_values.size(); ++i) {
    if (m_pitch[i] > 0.0) {
      power += m_values[i] * m_values[i];
      ++voiced;
    }
  }
  // The sum of three uniform values has the variance 1.
  const double level =
      voiced == 0 ? 0.0 : std::sqrt(power / voiced) * std::pow(10.0, -noise_db / 20.0);
  KnownSound sound;
  sound.pitch = m_pitch;
  for (const double value : m_values) {
    const double noise = level * (Noise() + Noise() + Noise());
    sound.samples.push_back(
        static_cast<std::int16_t>(std::clamp(32767.0 * (value + noise), -32767.0, 32767.0)));
  }
  return sound;
}

double VoiceMaker::Noise() {
  m_random = m_random * 1664525U + 1013904223U;  // Numerical Recipes' generator
  return static_cast<double>(m_random >> 8) / (1 << 23) - 1.0;
}

void PitchErrors::Add(const PitchErrors& other) {
  frames += other.frames;
  voiced_in_both += other.voiced_in_both;
  gross += other.gross;
  missed += other.missed;
  false_alarms += other.false_alarms;
  fine.insert(fine.end(), other.fine.begin(), other.fine.end());
}

double PitchErrors::GrossPercent() const { return Percent(gross, voiced_in_both); }
double PitchErrors::MissedPercent() const { return Percent(missed, voiced_in_both + missed); }
double PitchErrors::FalsePercent() const {
  return Percent(false_alarms, frames - voiced_in_both - missed);
}

double PitchErrors::MedianHertz() const {
  if (fine.empty()) return 0.0;
  std::vector<double> sorted = fine;
  std::sort(sorted.begin(), sorted.end());
  return sorted[sorted.size() / 2];
}

PitchErrors Compare(const CPraPitch& track, const KnownSound& sound) {
  PitchErrors errors;
  for (std::int32_t i = 1; i <= track.nx; ++i) {
    const double centre = track.x1 + (i - 1) * track.dx;
    const double truth = sound.pitch[static_cast<std::size_t>(centre * kSampleRate + 0.5)];
    const double frequency = track.Frame(i).Frequency();
    const bool voiced = frequency > 0.0 && track.Accepts(frequency);
    ++errors.frames;
    if (truth > 0.0 && voiced) {
      ++errors.voiced_in_both;
      const double distance = std::abs(frequency - truth);
      if (distance > 0.2 * truth) {
        ++errors.gross;
      } else {
        errors.fine.push_back(distance);
      }
    } else if (truth > 0.0) {
      ++errors.missed;
    } else if (voiced) {
      ++errors.false_alarms;
    }
  }
  return errors;
}

}  // namespace veral3::test
