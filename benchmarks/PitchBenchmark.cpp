// Speed of the pitch tracker. "realtime" is processor time over the length of the sound: one pass
// is to stay at or below 0.004 on speech.
//
// The sound is made here: vowels of gliding pitch with formants, noise between them. A recording of
// one's own (16 bit, mono, 22050 Hz, no header) replaces it:
//
//   VERAL3_BENCHMARK_SOUND=speech.s16 veral3_benchmark_pitch

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "signal/CPraAutoCorrPDA.h"
#include "signal/CWaveFrameDef.h"
#include "signal/FramePitch.h"

namespace {

using veral3::kSampleRate;

// Syllables of 250 ms: 180 ms of a vowel through two resonances, the rest soft noise.
std::vector<std::int16_t> SpeechLikeSound(int seconds) {
  std::mt19937 random(1);
  std::vector<std::int16_t> sound(static_cast<std::size_t>(seconds * kSampleRate));
  double phase = 0.0;
  double y1[2] = {0.0, 0.0}, y2[2] = {0.0, 0.0};
  const double formants[4][2] = {{700, 1200}, {300, 2200}, {500, 1500}, {350, 900}};
  for (std::size_t i = 0; i < sound.size(); ++i) {
    const double t = static_cast<double>(i) / kSampleRate;
    const double in_syllable = std::fmod(t, 0.25);
    const bool voiced = in_syllable < 0.18;
    const double f0 = 130.0 + 40.0 * std::sin(2.0 * std::numbers::pi * t / 1.7);
    phase += f0 / kSampleRate;
    const bool pulse = phase >= 1.0;
    if (pulse) phase -= 1.0;
    const double noise = static_cast<double>(random() % 2001) / 1000.0 - 1.0;
    const double source = voiced ? (pulse ? 1.0 : 0.0) + 0.003 * noise : 0.01 * noise;
    double value = source;
    const double* const formant = formants[static_cast<std::size_t>(t / 0.25) % 4];
    for (int k = 0; k < 2; ++k) {
      const double radius = std::exp(-std::numbers::pi * 90.0 / kSampleRate);
      const double next =
          value +
          2.0 * radius * std::cos(2.0 * std::numbers::pi * formant[k] / kSampleRate) * y1[k] -
          radius * radius * y2[k];
      y2[k] = y1[k];
      y1[k] = next;
      value = next;
    }
    sound[i] = static_cast<std::int16_t>(std::clamp(value * 600.0, -32000.0, 32000.0));
  }
  return sound;
}

const std::vector<std::int16_t>& Sound() {
  static const std::vector<std::int16_t> sound = [] {
    const char* const path = std::getenv("VERAL3_BENCHMARK_SOUND");
    if (!path) return SpeechLikeSound(10);
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return samples;
  }();
  return sound;
}

void ReportRealtime(benchmark::State& state) {
  const double seconds = static_cast<double>(Sound().size()) / kSampleRate;
  // The counter is divided by the time; what is shown is its inverse, time over length.
  state.counters["realtime"] = benchmark::Counter(
      seconds, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// One detection with the floor (Hz) of the argument.
void OnePass(benchmark::State& state) {
  const CPraAutoCorrPDA detector;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        detector.SoundToPitch(Sound().data(), static_cast<std::uint32_t>(Sound().size()),
                              1.0 / kSampleRate, 0.0, static_cast<double>(state.range(0)), 450.0));
  }
  ReportRealtime(state);
}
BENCHMARK(OnePass)->Arg(75)->Arg(150)->Arg(250)->Unit(benchmark::kMillisecond);

// The whole step, a second pass only where the sound asks for it.
void FramePitch(benchmark::State& state) {
  std::vector<int> frames(
      static_cast<std::size_t>(veral3::NumFrames(static_cast<std::uint32_t>(Sound().size()))));
  for (auto _ : state) {
    veral3::CalculateFramePitch(Sound().data(), static_cast<std::uint32_t>(Sound().size()), frames);
    benchmark::DoNotOptimize(frames.data());
  }
  ReportRealtime(state);
}
BENCHMARK(FramePitch)->Unit(benchmark::kMillisecond);

}  // namespace
