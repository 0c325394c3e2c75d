#include "training/augment/Morph.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <span>
#include <vector>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Fourier.h"
#include "training/augment/Signal.h"
#include "training/augment/SpeechLevel.h"

namespace veral3::training {
namespace {

constexpr std::size_t kFrame = 512;  // samples: 23 ms, so that plosives are not smeared
constexpr std::size_t kHop = kFrame / 4;
constexpr std::size_t kBins = kFrame / 2 + 1;
constexpr std::size_t kCepstra = 40;  // of the envelope, the last eight faded out
constexpr std::size_t kFaded = 8;
constexpr float kMostGain = 2.3F;  // natural logarithm: 20 dB, where a band holds nothing but noise

using Bins = std::array<float, kBins>;
using Spectrum = std::array<std::complex<float>, kBins>;

double MelOf(double hz) { return 1127.0 * std::log1p(hz / 700.0); }

double HzOf(std::size_t bin) {
  return static_cast<double>(bin) * kSampleRate / static_cast<double>(kFrame);
}

// What a speaker does to every frame.
struct Plan {
  Bins source;  // the bin, with its fraction, that each bin's envelope is taken from
  Bins tilt;    // natural logarithm
  float sharpness;
  std::size_t first_rough;  // bin
  float rough_angle;        // radians, at most
  float rough_gain;         // makes up for what waves that no longer fit each other lose
  std::array<float, kFrame> window;
  std::array<float, kCepstra> lifter;
};

Plan PlanOf(const VirtualSpeaker& speaker) {
  Plan plan{};
  const double top = MelOf(kSampleRate / 2.0);
  for (std::size_t bin = 0; bin < kBins; ++bin) {
    const double place = MelOf(HzOf(bin)) / top;
    double factor = 1.0;
    for (const Ripple& ripple : speaker.bends) {
      const double turn = 2.0 * std::numbers::pi * (ripple.cycles * place + ripple.start);
      factor += ripple.size * std::sin(turn);
    }
    plan.source[bin] = static_cast<float>(
        std::clamp(static_cast<double>(bin) * factor, 0.0, static_cast<double>(kBins - 1)));
    plan.tilt[bin] =
        static_cast<float>(speaker.tilt_db * (place - 0.5) * std::numbers::ln10 / 20.0);
  }
  plan.sharpness = static_cast<float>(speaker.sharpness);
  plan.first_rough = kBins;
  for (std::size_t bin = kBins; bin-- > 0 && HzOf(bin) > speaker.rough_above_hz;) {
    plan.first_rough = bin;
  }
  if (speaker.roughness <= 0.0) plan.first_rough = kBins;
  const double angle = std::numbers::pi * std::clamp(speaker.roughness, 0.0, 1.0);
  plan.rough_angle = static_cast<float>(angle);
  // Of each bin's power the share `steady` still adds up from frame to frame. The rest becomes
  // noise that is spread over the frame: with both windows' mean square 3/8 and four frames that
  // add up to 3/2 where they fit, a quarter is left of it.
  const double mean = angle == 0.0 ? 1.0 : std::sin(angle) / angle;
  const double steady = mean * mean;
  plan.rough_gain = static_cast<float>(1.0 / std::sqrt(steady + (1.0 - steady) * 0.25));
  for (std::size_t i = 0; i < kFrame; ++i) {
    const double turn = 2.0 * std::numbers::pi * static_cast<double>(i) / kFrame;
    plan.window[i] = static_cast<float>(0.5 - 0.5 * std::cos(turn));
  }
  for (std::size_t i = 0; i < kCepstra; ++i) {
    const double into = static_cast<double>(i) - static_cast<double>(kCepstra - kFaded);
    plan.lifter[i] = static_cast<float>(
        into <= 0.0 ? 1.0 : 0.5 + 0.5 * std::cos(std::numbers::pi * into / kFaded));
  }
  return plan;
}

// Natural logarithm of the smooth envelope of a spectrum.
Bins EnvelopeOf(const Spectrum& spectrum, const Plan& plan) {
  Spectrum logs;
  for (std::size_t bin = 0; bin < kBins; ++bin) {
    logs[bin] = 0.5F * std::log(std::norm(spectrum[bin]) + 1.0F);
  }
  std::array<float, kFrame> cepstrum;
  Inverse(logs, cepstrum);
  for (std::size_t i = 1; i < kCepstra; ++i) {
    cepstrum[i] *= plan.lifter[i];
    cepstrum[kFrame - i] *= plan.lifter[i];
  }
  std::fill(cepstrum.begin() + kCepstra, cepstrum.end() - kCepstra + 1, 0.0F);
  Forward(cepstrum, logs);
  Bins envelope;
  for (std::size_t bin = 0; bin < kBins; ++bin) envelope[bin] = logs[bin].real();
  return envelope;
}

void MorphSpectrum(Spectrum& spectrum, const Plan& plan, Random& random) {
  const Bins envelope = EnvelopeOf(spectrum, plan);
  float mean = 0.0F;
  for (const float x : envelope) mean += x;
  mean /= static_cast<float>(kBins);
  for (std::size_t bin = 0; bin < kBins; ++bin) {
    const auto left = std::min(static_cast<std::size_t>(plan.source[bin]), kBins - 2);
    const float part = plan.source[bin] - static_cast<float>(left);
    const float bent = envelope[left] * (1.0F - part) + envelope[left + 1] * part;
    const float wanted = mean + plan.sharpness * (bent - mean) + plan.tilt[bin];
    spectrum[bin] *= std::exp(std::clamp(wanted - envelope[bin], -kMostGain, kMostGain));
  }
  for (std::size_t bin = plan.first_rough; bin < kBins; ++bin) {
    const auto angle = static_cast<float>(random.Uniform(-1.0, 1.0)) * plan.rough_angle;
    spectrum[bin] *= std::polar(plan.rough_gain, angle);
  }
  // A real signal has no imaginary part there.
  spectrum[0] = spectrum[0].real();
  spectrum[kBins - 1] = spectrum[kBins - 1].real();
}

}  // namespace

VirtualSpeaker DrawVirtualSpeaker(Random& random) {
  VirtualSpeaker speaker;
  for (Ripple& bend : speaker.bends) {
    bend = {random.Uniform(0.04, 0.05), random.Uniform(0.5, 2.0), random.Uniform()};
  }
  speaker.sharpness = random.Uniform(0.8, 1.2);
  speaker.tilt_db = random.Uniform(-6.0, 6.0);
  if (random.Chance(0.5)) {
    speaker.rough_above_hz = 1000.0 * std::exp2(random.Uniform(0.0, 3.0));
    speaker.roughness = random.Uniform(0.3, 1.0);
  }
  speaker.seed = random.Next();
  return speaker;
}

Utterance Morph(const Utterance& utterance, const VirtualSpeaker& speaker) {
  const std::vector<float> signal = SignalOf(utterance);
  const double level = RootMeanSquare(signal);
  if (level == 0.0) return utterance;
  const Plan plan = PlanOf(speaker);
  Random random(MixSeed(speaker.seed, signal.size()));
  std::vector<float> padded(signal.size() + 2 * kFrame, 0.0F);
  std::ranges::copy(signal, padded.begin() + kFrame);
  std::vector<float> out(padded.size(), 0.0F);
  std::array<float, kFrame> frame;
  Spectrum spectrum;
  for (std::size_t at = 0; at + kFrame <= padded.size(); at += kHop) {
    bool silent = true;
    for (std::size_t i = 0; i < kFrame; ++i) {
      frame[i] = padded[at + i] * plan.window[i];
      silent = silent && frame[i] == 0.0F;
    }
    if (silent) continue;
    Forward(frame, spectrum);
    MorphSpectrum(spectrum, plan, random);
    Inverse(spectrum, frame);
    for (std::size_t i = 0; i < kFrame; ++i) out[at + i] += frame[i] * plan.window[i];
  }
  const auto morphed = std::span(out).subspan(kFrame, signal.size());
  const double now = RootMeanSquare(morphed);
  const auto gain = static_cast<float>(now == 0.0 ? 0.0 : level / now);
  for (float& x : morphed) x *= gain;
  return WithSignal(utterance, morphed);
}

}  // namespace veral3::training
