// Microseconds a frame of the front end, on one core:
//
//   veral3_benchmark_front_end
//
// "frame" of Mfcc is all of ComputeMfcc divided by the frames of the recording; the steps below it
// are those of one frame alone.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "signal/CSignalProcessing.h"
#include "signal/HSigP.h"
#include "signal/HighPassFilter.h"
#include "signal/Mfcc.h"
#include "signal/RealFft.h"

namespace veral3 {
namespace {

std::vector<std::int16_t> Noise(std::size_t num_samples) {
  std::minstd_rand engine(1);
  std::vector<std::int16_t> samples(num_samples);
  for (std::int16_t& sample : samples) {
    sample = static_cast<std::int16_t>(static_cast<int>(engine() % 20001) - 10000);
  }
  return samples;
}

// Reports the time of one of `units` that each iteration does.
void CountUnits(benchmark::State& state, const char* name, double units) {
  state.counters[name] = benchmark::Counter(
      units, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Mfcc(benchmark::State& state) {
  const auto samples = Noise(static_cast<std::size_t>(state.range(0)) * kSampleRate);
  const auto num_samples = static_cast<std::uint32_t>(samples.size());
  for (auto _ : state) benchmark::DoNotOptimize(ComputeMfcc(samples.data(), num_samples));
  CountUnits(state, "frame", NumFrames(num_samples));
}
BENCHMARK(Mfcc)->ArgName("seconds")->Arg(1)->Arg(5)->Arg(60)->Unit(benchmark::kMicrosecond);

void SetUp(benchmark::State& state) {
  for (auto _ : state) {
    IOConfigRec config;
    FrontEnd().SetUpUtterance(config, kSampleRate, CWaveFrameDef(), {1, 1, 1});
    FrontEnd().ReleaseUtterance();
  }
}
BENCHMARK(SetUp);

// A set-up utterance, for one step alone.
struct Coding {
  IOConfigRec config;
  std::vector<std::int16_t> samples = Noise(kFrameLength);
  float row[kMfccSize] = {};
  Coding() { FrontEnd().SetUpUtterance(config, kFrameLength, CWaveFrameDef(), {1, 1, 1}); }
  ~Coding() { FrontEnd().ReleaseUtterance(); }
};

void OneFrame(benchmark::State& state) {
  Coding coding;
  for (auto _ : state) {
    FrontEnd().ConvertFrameSamples(coding.config, coding.samples.data(), coding.row);
    benchmark::DoNotOptimize(coding.row);
  }
}
BENCHMARK(OneFrame);

void Filterbank(benchmark::State& state) {
  Coding coding;
  FrontEnd().ConvertFrameSamples(coding.config, coding.samples.data(), coding.row);
  for (auto _ : state) {
    Wave2FBank(coding.config.s, coding.config.fbank, coding.config.fbInfo, nullptr);
    benchmark::DoNotOptimize(coding.config.fbank[1]);
  }
}
BENCHMARK(Filterbank);

void Fft1024(benchmark::State& state) {
  std::vector<float> input(1024);
  for (std::size_t i = 0; i < input.size(); ++i) input[i] = static_cast<float>(i % 37);
  std::vector<float> x;
  for (auto _ : state) {
    x = input;
    ThreadRealFft().Forward(x);
    benchmark::DoNotOptimize(x.data());
  }
}
BENCHMARK(Fft1024);

void HighPass(benchmark::State& state) {
  const auto input = Noise(kSampleRate);
  std::vector<std::int16_t> samples;
  for (auto _ : state) {
    samples = input;
    HighPassFilter(samples.data(), kSampleRate, 80.0, kSampleRate);
    benchmark::DoNotOptimize(samples.data());
  }
  CountUnits(state, "sample", kSampleRate);
}
BENCHMARK(HighPass);

}  // namespace
}  // namespace veral3
