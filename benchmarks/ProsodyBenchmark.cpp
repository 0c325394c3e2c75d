// Milliseconds of the measuring steps for a recording of so many seconds, on one core, without the
// pitch tracker:
//
//   veral3_benchmark_prosody
//
// "of_real_time" is the part of the recording's own length that they take.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "core/Goodness.h"
#include "core/ModelScorers.h"
#include "core/Pronunciation.h"
#include "core/Prosody.h"
#include "core/Timing.h"

namespace veral3 {
namespace {

// Sound of `seconds`, with phonemes of 8 frames, syllables of 2 phonemes and words of 2 syllables.
struct Recording {
  explicit Recording(int seconds) {
    std::minstd_rand random(1);
    samples.resize(static_cast<std::size_t>(seconds * kSampleRate));
    for (std::int16_t& sample : samples) {
      sample = static_cast<std::int16_t>(static_cast<int>(random() % 20001) - 10000);
    }
    alignment.num_frames = NumFrames(static_cast<std::uint32_t>(samples.size()));
    const auto num_frames = static_cast<std::size_t>(alignment.num_frames);
    for (std::size_t frame = 0; frame < num_frames; ++frame) {
      pitch.push_back(frame % 16 < 11 ? static_cast<std::int32_t>(100 + random() % 200) : 0);
    }
    alignment.mfcc.assign(num_frames * kMfccSize, 0.5F);
    alignment.path_posterior.assign(num_frames, 0.5);
    const int num_phonemes = std::min(alignment.num_frames / 8, kMaxPhonemes);
    for (int i = 0; i < num_phonemes; ++i) {
      const auto index = static_cast<std::size_t>(i);
      alignment.phonemes.push_back('a');
      alignment.phoneme_start[index] = 8 * i * kFrameShift;
      alignment.phoneme_end[index] = 8 * (i + 1) * kFrameShift;
      if (i % 2 == 0) {
        alignment.syllable_start[static_cast<std::size_t>(alignment.num_syllables++)] = i;
      }
      if (i % 4 == 0) alignment.word_start[static_cast<std::size_t>(alignment.num_words++)] = i;
    }
    alignment.phoneme_mfcc_prob.assign(alignment.phonemes.size(), 0.5);
    alignment.pause_mfcc_prob.assign(alignment.phonemes.size() + 1, 0.5);
  }

  std::vector<std::int16_t> samples;
  std::vector<std::int32_t> pitch;
  AlignmentResult alignment;
};

void ReportShare(benchmark::State& state) {
  state.counters["of_real_time"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Prosody(benchmark::State& state) {
  const Recording recording(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    ProsodyResult prosody;
    prosody.pitch = MeasurePitch(kLanguageEnglish, recording.alignment, recording.pitch, {});
    prosody.words = WordSpansOf(recording.alignment);
    prosody.syllable_duration = SyllableDurations(recording.alignment);
    prosody.intensity = MeasureIntensity(recording.alignment, recording.samples, 0.0);
    prosody.utterance_pitch_segments = CountUtterancePitchSegments(recording.alignment, prosody);
    DrawContours(recording.alignment, prosody);
    benchmark::DoNotOptimize(
        MarkBadSyllables(kLanguageEnglish, recording.alignment, prosody).good_syllable.data());
  }
  ReportShare(state);
}
BENCHMARK(Prosody)->ArgName("seconds")->Arg(1)->Arg(10)->Arg(60)->Unit(benchmark::kMillisecond);

void Intensity(benchmark::State& state) {
  const Recording recording(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        FrameIntensities(recording.samples, recording.alignment.num_frames).data());
  }
  ReportShare(state);
}
BENCHMARK(Intensity)->ArgName("seconds")->Arg(10)->Unit(benchmark::kMillisecond);

// With the small network of the tests.
void Pronunciation(benchmark::State& state) {
  const Recording recording(static_cast<int>(state.range(0)));
  DLPhonClassifier classifier;
  if (classifier.LoadFromFile(VERAL3_SOURCE_DIR "/tests/vectors/models/phon_en.bin") < 0) {
    state.SkipWithError("no model");
    return;
  }
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageEnglish);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        AnalyzePronunciation(set, recording.alignment, ScorerOf(&classifier), {})
            .phonemes.rows.data());
  }
  ReportShare(state);
}
BENCHMARK(Pronunciation)
    ->ArgName("seconds")
    ->Arg(1)
    ->Arg(10)
    ->Arg(60)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veral3
