// The engine as an application meets it, on one core with the English resources: loading, a whole
// alignment of real speech from 1 s to 60 s, and the memory that takes.
//
//   veral3_benchmark_engine [Google Benchmark's options]

#include <benchmark/benchmark.h>
#include <sndfile.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "common/Messages.h"
#include "core/AnalyzedAudio.h"

namespace {

const std::string kRoot = VERAL3_SOURCE_DIR;
const std::string kModel = kRoot + "/resources/EnglishFrame.model";
constexpr double kRate = 22050.0;

struct Recording {
  std::vector<std::int16_t> samples;
  std::string text;
};

void Append(const std::string& name, Recording& to) {
  SF_INFO info{};
  SNDFILE* file = sf_open((kRoot + "/examples/audio/" + name + ".wav").c_str(), SFM_READ, &info);
  if (!file) {
    std::fprintf(stderr, "cannot read examples/audio/%s.wav\n", name.c_str());
    std::exit(1);
  }
  const std::size_t begin = to.samples.size();
  to.samples.resize(begin + static_cast<std::size_t>(info.frames));
  sf_read_short(file, to.samples.data() + begin, info.frames);
  sf_close(file);
  const auto labels =
      nlohmann::json::parse(std::ifstream(kRoot + "/examples/audio/" + name + ".json"));
  to.text += labels["text"].get<std::string>() + " ";
}

// The example recordings one after another until `seconds` are full. An alignment holds 512
// phonemes, some 40 s of speech: what is longer ends with silence.
Recording Speech(double seconds) {
  static const char* const kNames[] = {"english-bread", "english-train", "english-weather"};
  constexpr double kMostSpeech = 35.0;
  const double spoken = std::min(seconds, kMostSpeech);
  Recording speech;
  for (int i = 0; i == 0 || static_cast<double>(speech.samples.size()) < spoken * kRate; ++i) {
    Append(kNames[i % 3], speech);
  }
  if (seconds > kMostSpeech) speech.samples.resize(static_cast<std::size_t>(seconds * kRate));
  return speech;
}

void LoadDictionaries(benchmark::State& state) {
  for (auto _ : state) {
    AnalyzedAudio::LoadResourceInFolderPath((kRoot + "/resources/").c_str());
  }
}
BENCHMARK(LoadDictionaries)->Unit(benchmark::kMillisecond);

void LoadFrameModel(benchmark::State& state) {
  for (auto _ : state) {
    if (AnalyzedAudio::LoadModelFile(kModel.c_str(), kFrameModelEnglish) < 0) {
      state.SkipWithError("no model");
    }
  }
}
BENCHMARK(LoadFrameModel)->Unit(benchmark::kMillisecond);

// Sentence and alignment; the argument is the length in seconds. real_time: share of the
// recording's own time.
void Align(benchmark::State& state) {
  const Recording speech = Speech(static_cast<double>(state.range(0)));
  std::vector<std::int16_t> samples;
  for (auto _ : state) {
    samples = speech.samples;
    AnalyzedAudio audio(kLanguageEnglish);
    audio.AddPossibleSentence(speech.text.c_str());
    if (audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data()) < 0) {
      state.SkipWithError("not aligned");
    }
  }
  const double seconds = static_cast<double>(samples.size()) / kRate;
  state.counters["seconds"] = seconds;
  state.counters["real_time_%"] = benchmark::Counter(
      0.01 * seconds, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(Align)->Arg(1)->Arg(5)->Arg(10)->Arg(30)->Arg(60)->Unit(benchmark::kMillisecond);

// The measurements that follow an alignment.
void Analyze(benchmark::State& state) {
  const Recording speech = Speech(static_cast<double>(state.range(0)));
  std::vector<std::int16_t> samples = speech.samples;
  AnalyzedAudio::LoadModelFile((kRoot + "/resources/EnglishPhon.model").c_str(),
                               kPhonemeModelEnglish);
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(speech.text.c_str());
  const auto count = static_cast<std::uint32_t>(samples.size());
  if (audio.Align(count, samples.data()) < 0) state.SkipWithError("not aligned");
  for (auto _ : state) {
    if (audio.Analyze(count, samples.data()) < 0) state.SkipWithError("not analysed");
  }
  const double seconds = static_cast<double>(samples.size()) / kRate;
  state.counters["seconds"] = seconds;
  state.counters["real_time_%"] = benchmark::Counter(
      0.01 * seconds, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(Analyze)->Arg(1)->Arg(10)->Arg(60)->Unit(benchmark::kMillisecond);

long PeakResidentKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::atol(line.c_str() + 6);
  }
  return 0;
}

// In a process that has done nothing else.
void ReportMemory() {
  AnalyzedAudio::LoadResourceInFolderPath((kRoot + "/resources/").c_str());
  AnalyzedAudio::LoadModelFile(kModel.c_str(), kFrameModelEnglish);
  Recording speech = Speech(10);
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(speech.text.c_str());
  audio.Align(static_cast<std::uint32_t>(speech.samples.size()), speech.samples.data());
  std::printf("Peak resident memory of an English alignment of %.1f s: %.1f MB\n",
              static_cast<double>(speech.samples.size()) / kRate,
              static_cast<double>(PeakResidentKilobytes()) / 1024.0);
}

}  // namespace

int main(int argc, char** argv) {
  veral3::SetMessageHandler([](veral3::MessageStream, std::string_view) {});
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  ReportMemory();
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
