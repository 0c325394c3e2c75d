#include "training/augment/Augment.h"

#include <soxr.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <stdexcept>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Babble.h"
#include "training/augment/BandPass.h"
#include "training/augment/Clipping.h"
#include "training/augment/Codec.h"
#include "training/augment/Hum.h"
#include "training/augment/RoomResponse.h"
#include "training/augment/Signal.h"
#include "training/augment/SpeechLevel.h"
#include "training/augment/TimeStretch.h"

namespace veral3::training {
namespace {

double Mel(double hz) { return 1127.0 * std::log1p(hz / 700.0); }

bool Asked(double chance, Random& random) { return chance > 0.0 && random.Chance(chance); }

// Another vocal tract, a child, another pace. Returns by what labels are stretched.
double ChangeSpeaker(std::vector<float>& speech, const AugmentOptions& options, Random& random) {
  double factor = 1.0;
  const bool child = Asked(options.child_chance, random);
  const double pitch = child ? random.Uniform(1.1, 1.35) : 1.0;
  double tempo = 1.0;
  if (Asked(options.tempo_chance, random)) {
    tempo = random.Uniform(options.tempo_low, options.tempo_high);
  }
  if (child || tempo != 1.0) {
    speech = TimeStretch(speech, tempo, pitch);
    factor /= tempo;
  }
  if (!child && random.Chance(options.warp_chance)) {
    const double warp = random.Uniform(options.warp_low, options.warp_high);
    speech = Resample(speech, warp);
    factor *= warp;
  }
  return factor;
}

// 10 ms to 3 s, short ones as often as long ones.
std::size_t DrawEdge(Random& random) { return SamplesOf(0.01 * std::pow(300.0, random.Uniform())); }

// The speech between pauses, its labels moved along.
std::vector<float> WithPadding(std::span<const float> speech, std::vector<PhonemeLabel>& labels,
                               const AugmentOptions& options, Random& random) {
  std::size_t before = 0;
  std::size_t after = 0;
  std::size_t cut_before = 0;  // of the pauses that the recording has
  std::size_t cut_after = 0;
  if (Asked(options.edges_chance, random)) {
    const auto [begin, end] = SpeechEnds(labels, speech.size());
    const std::size_t want_before = DrawEdge(random);
    const std::size_t want_after = DrawEdge(random);
    cut_before = begin - std::min(begin, want_before);
    cut_after = speech.size() - end - std::min(speech.size() - end, want_after);
    before = want_before - (begin - cut_before);
    after = want_after - (speech.size() - end - cut_after);
  } else {
    before = SamplesOf(random.Uniform(0.05, 0.6));
    after = SamplesOf(random.Uniform(0.05, 0.6));
  }
  const auto kept = speech.subspan(cut_before, speech.size() - cut_before - cut_after);
  std::vector<float> signal(before + kept.size() + after, 0.0f);
  std::ranges::copy(kept, signal.begin() + static_cast<std::ptrdiff_t>(before));

  const auto shift = static_cast<std::int32_t>(before) - static_cast<std::int32_t>(cut_before);
  // Two in five of espeak-ng's recordings begin with a phoneme: what is put before it is a pause.
  for (PhonemeLabel& label : labels) {
    if (label.start > 0 || label.symbol != '-') label.start += shift;
  }
  if (!labels.empty() && labels.front().start > 0) labels.insert(labels.begin(), {'-', 0});
  if (!labels.empty() && labels.back().symbol != '-' && after > 0) {
    labels.push_back({'-', static_cast<std::int32_t>(before + kept.size())});
  }
  return signal;
}

// As a microphone's input, a telephone and a codec leave it.
void Transmit(std::vector<float>& signal, const AugmentOptions& options, Random& random) {
  if (Asked(options.clipping_chance, random)) Clip(signal, random.Uniform(2.0, 8.0));
  if (Asked(options.band_chance, random)) {
    const double low = random.Uniform(200.0, 400.0);
    BandPass(signal, low, random.Uniform(3000.0, 3800.0));
  }
  if (Asked(options.codec_chance, random)) {
    constexpr float kPeak = 20000.0F;  // of what a codec is given
    float peak = 1.0F;
    for (const float x : signal) peak = std::max(peak, std::abs(x));
    for (float& x : signal) x *= kPeak / peak;
    const bool opus = random.Chance(0.5);
    const double rate = (opus ? 8.0 : 16.0) * std::exp2(random.Uniform(0.0, 2.0));
    signal = ThroughCodec(signal, opus ? Codec::kOpus : Codec::kMp3, rate);
  }
}

}  // namespace

std::vector<float> Resample(std::span<const float> signal, double factor) {
  std::vector<float> out(
      static_cast<std::size_t>(std::lround(static_cast<double>(signal.size()) * factor)));
  if (signal.empty() || out.empty()) return out;  // soxr crashes on nothing
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_MQ, 0);
  const soxr_runtime_spec_t one_thread = soxr_runtime_spec(1);
  std::size_t done = 0;
  const soxr_error_t error =
      soxr_oneshot(1.0, factor, 1, signal.data(), signal.size(), nullptr, out.data(), out.size(),
                   &done, nullptr, &quality, &one_thread);
  if (error != nullptr) throw std::runtime_error("cannot resample: " + std::string(error));
  return out;
}

void AddReverb(std::vector<float>& signal, Random& random) {
  constexpr int kEchoes = 24;
  const double decay = random.Uniform(0.03, 0.12);  // seconds to fall to 1/e
  const double level = random.Uniform(0.05, 0.2);
  const std::vector<float> direct = signal;
  for (int echo = 0; echo < kEchoes; ++echo) {
    const double delay = random.Uniform(0.003, 3.0 * decay);
    const auto gain = static_cast<float>(level * std::exp(-delay / decay) * random.Uniform(-1, 1));
    const std::size_t offset = SamplesOf(delay);
    for (std::size_t i = offset; i < signal.size(); ++i) signal[i] += gain * direct[i - offset];
  }
}

void Equalise(std::vector<float>& signal, std::span<const double> gains_db, double cutoff_hz) {
  constexpr std::size_t kHalf = 63;
  constexpr std::size_t kBins = 256;  // of the wanted response, 0 to half the sampling rate
  const double mel_low = Mel(60.0);
  const double mel_step = (Mel(11000.0) - mel_low) / static_cast<double>(gains_db.size() - 1);
  std::array<double, kBins + 1> response{};
  for (std::size_t bin = 0; bin <= kBins; ++bin) {
    const double hz = static_cast<double>(bin) * kSampleRate / (2.0 * kBins);
    if (hz > cutoff_hz) continue;
    const double place =
        std::clamp((Mel(hz) - mel_low) / mel_step, 0.0, static_cast<double>(gains_db.size() - 1));
    const auto left = std::min(static_cast<std::size_t>(place), gains_db.size() - 2);
    const double part = place - static_cast<double>(left);
    const double db = gains_db[left] * (1.0 - part) + gains_db[left + 1] * part;
    response[bin] = std::pow(10.0, db / 20.0);
  }
  // Window method: inverse transform of the response, Hann window.
  std::array<float, 2 * kHalf + 1> taps{};
  for (std::size_t n = 0; n <= kHalf; ++n) {
    double sum = 0.5 * (response[0] + (n % 2 == 0 ? response[kBins] : -response[kBins]));
    const double angle = std::numbers::pi * static_cast<double>(n) / kBins;
    for (std::size_t bin = 1; bin < kBins; ++bin) {
      sum += response[bin] * std::cos(angle * static_cast<double>(bin));
    }
    const double window =
        0.5 + 0.5 * std::cos(std::numbers::pi * static_cast<double>(n) / (kHalf + 1));
    taps[kHalf + n] = taps[kHalf - n] = static_cast<float>(sum / kBins * window);
  }
  std::vector<float> padded(signal.size() + 2 * kHalf, 0.0f);
  std::ranges::copy(signal, padded.begin() + kHalf);
  std::ranges::fill(signal, 0.0f);
  for (std::size_t t = 0; t < taps.size(); ++t) {
    for (std::size_t i = 0; i < signal.size(); ++i) signal[i] += taps[t] * padded[i + t];
  }
}

void AddNoise(std::vector<float>& signal, double colour, double rms, Random& random) {
  // A first-order low pass: from none at all to a corner at about 20 Hz.
  const double pole = colour <= 0.0 ? 0.0 : 1.0 - std::pow(10.0, -2.2 * colour);
  std::vector<float> noise(signal.size());
  double state = 0.0;
  for (float& x : noise) {
    // The sum of four uniform values is near enough to a normal one, and quick.
    const double white =
        random.Uniform() + random.Uniform() + random.Uniform() + random.Uniform() - 2.0;
    state = pole * state + white;
    x = static_cast<float>(state);
  }
  const double level = RootMeanSquare(noise);
  if (level == 0.0) return;
  const auto gain = static_cast<float>(rms / level);
  for (std::size_t i = 0; i < signal.size(); ++i) signal[i] += gain * noise[i];
}

AugmentOptions StrongAugmentation(std::size_t number) {
  AugmentOptions options;
  options.warp_chance = 1.0;
  options.warp_low = number % 2 == 0 ? 1.15 : 0.66;  // training has 0.74 to 1.12
  options.warp_high = number % 2 == 0 ? 1.25 : 0.72;
  options.reverb_chance = 1.0;
  options.low_pass_chance = 0.0;
  options.telephone_chance = 1.0;
  options.telephone_low = options.telephone_high = 4000.0;
  options.noise_chance = 1.0;
  options.noise_low_db = options.noise_high_db = 10.0;
  return options;
}

AugmentOptions WideAugmentation(std::span<const Utterance> others) {
  AugmentOptions options;
  options.reverb_chance = 0.25;
  options.noise_chance = 0.6;
  options.noise_low_db = 5.0;
  options.level_range_db = 45.0;
  options.child_chance = 0.12;
  options.tempo_chance = 0.2;
  options.edges_chance = 0.5;
  options.room_chance = 0.25;
  options.babble_chance = 0.3;
  options.hum_chance = 0.1;
  options.clipping_chance = 0.1;
  options.band_chance = 0.08;
  options.codec_chance = 0.15;
  options.others = others;
  return options;
}

Utterance Augment(const Utterance& clean, const AugmentOptions& options, Random& random) {
  std::vector<float> speech = SignalOf(clean);
  const double factor = ChangeSpeaker(speech, options, random);
  const double speech_level = RootMeanSquare(speech);
  Utterance result{clean.text,  clean.voice,        clean.labels,   {},
                   clean.tones, clean.spoken_tones, clean.syllables};
  StretchLabels(result.labels, factor);
  std::vector<float> signal = WithPadding(speech, result.labels, options, random);

  if (Asked(options.room_chance, random)) {
    const double rt60 = random.Uniform(0.3, 0.8);
    Reverberate(signal, RoomResponse(rt60, random.Uniform(0.0, 10.0), random));
  } else if (random.Chance(options.reverb_chance)) {
    AddReverb(signal, random);
  }
  if (!options.others.empty() && Asked(options.babble_chance, random)) {
    const double db = random.Uniform(options.babble_low_db, options.babble_high_db);
    const double rms = SpeechLevel(signal, result.labels) * FactorOfDb(-db);
    AddBabble(signal, options.others, clean.voice, rms, random);
  }

  std::array<double, 9> gains{};
  const double tilt = random.Normal() * options.equaliser_db;
  for (std::size_t i = 0; i < gains.size(); ++i) {
    gains[i] = random.Normal() * options.equaliser_db + tilt * (static_cast<double>(i) / 4.0 - 1.0);
    gains[i] = std::clamp(gains[i], -15.0, 15.0);
  }
  double cutoff = kSampleRate;
  const double kind = random.Uniform();
  if (kind < options.low_pass_chance) {
    cutoff = random.Uniform(7000.0, 8000.0);
  } else if (kind < options.low_pass_chance + options.telephone_chance) {
    cutoff = random.Uniform(options.telephone_low, options.telephone_high);
  }
  Equalise(signal, gains, cutoff);

  if (random.Chance(options.noise_chance)) {
    const double ratio_db = random.Uniform(options.noise_low_db, options.noise_high_db);
    AddNoise(signal, random.Uniform(), speech_level * std::pow(10.0, -ratio_db / 20.0), random);
  }
  if (Asked(options.hum_chance, random)) {
    const double rms = SpeechLevel(signal, result.labels) * FactorOfDb(-random.Uniform(10.0, 30.0));
    AddHum(signal, rms, random);
  }
  Transmit(signal, options, random);

  float peak = 1.0f;
  for (const float x : signal) peak = std::max(peak, std::abs(x));
  const double gain =
      32000.0 * std::pow(10.0, -random.Uniform(0.0, options.level_range_db) / 20.0) / double{peak};
  result.samples.reserve(signal.size());
  for (const float x : signal) {
    result.samples.push_back(static_cast<std::int16_t>(std::lround(double{x} * gain)));
  }
  return result;
}

}  // namespace veral3::training
