// The engine as an application meets it, on one core with the English resources: loading, aligning,
// analysing and grading speech from 1 s to 60 s, and the memory that takes.
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
#include <utility>
#include <vector>

#include "common/Messages.h"
#include "core/AnalyzedAudio.h"
#include "core/ModelScorers.h"
#include "grading/GradedAudio.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/Models.h"

namespace {

const std::string kRoot = VERAL3_SOURCE_DIR;
const std::string kModel = kRoot + "/resources/EnglishFrame.model";
const std::string kPhonemeModel = kRoot + "/resources/EnglishPhon.model";
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

// All that is in resources/: three dictionaries and every model.
bool LoadAll() {
  AnalyzedAudio::LoadResourceInFolderPath((kRoot + "/resources/").c_str());
  bool good = true;
  for (const auto& [name, type] :
       {std::pair{"EnglishFrame", kFrameModelEnglish},
        std::pair{"EnglishPhon", kPhonemeModelEnglish},
        std::pair{"ChineseFrame", kFrameModelChinese},
        std::pair{"ChinesePhon", kPhonemeModelChinese}, std::pair{"ChineseTone", kToneModelChinese},
        std::pair{"JapaneseFrame", kFrameModelJapanese},
        std::pair{"JapanesePhon", kPhonemeModelJapanese},
        std::pair{"UttGoodness", kUttGoodnessModel}}) {
    const std::string path = kRoot + "/resources/" + name + ".model";
    good = AnalyzedAudio::LoadModelFile(path.c_str(), type) >= 0 && good;
  }
  return good;
}

void LoadEverything(benchmark::State& state) {
  for (auto _ : state) {
    if (!LoadAll()) state.SkipWithError("a model does not load");
  }
}
BENCHMARK(LoadEverything)->Unit(benchmark::kMillisecond);

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
  AnalyzedAudio::LoadModelFile(kPhonemeModel.c_str(), kPhonemeModelEnglish);
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

// Both, as an application calls them for every recording.
void AlignAndAnalyze(benchmark::State& state) {
  const Recording speech = Speech(static_cast<double>(state.range(0)));
  AnalyzedAudio::LoadModelFile(kPhonemeModel.c_str(), kPhonemeModelEnglish);
  std::vector<std::int16_t> samples;
  for (auto _ : state) {
    samples = speech.samples;
    AnalyzedAudio audio(kLanguageEnglish);
    audio.AddPossibleSentence(speech.text.c_str());
    const auto count = static_cast<std::uint32_t>(samples.size());
    if (audio.Align(count, samples.data()) < 0 || audio.Analyze(count, samples.data()) < 0) {
      state.SkipWithError("not analysed");
    }
  }
  const double seconds = static_cast<double>(samples.size()) / kRate;
  state.counters["seconds"] = seconds;
  state.counters["real_time_%"] = benchmark::Counter(
      0.01 * seconds, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(AlignAndAnalyze)
    ->Arg(1)
    ->Arg(5)
    ->Arg(10)
    ->Arg(30)
    ->Arg(60)
    ->Unit(benchmark::kMillisecond);

// What each phoneme of an utterance sounds like: its phonemes classified in one batch (argument 1)
// or one at a time (0), which must give the same bits.
void ClassifyPhonemes(benchmark::State& state) {
  constexpr std::size_t kPhonemes = 120;  // about 10 s
  AnalyzedAudio::LoadModelFile(kPhonemeModel.c_str(), kPhonemeModelEnglish);
  const auto size = static_cast<std::size_t>(veral3::PhonemeSetOf(kLanguageEnglish)->GetSize());
  const veral3::ModelsInUse models_in_use;
  const veral3::PhonemeScorer scorer =
      veral3::ScorerOf(veral3::PhonClassifierOf(CPhonemeSet::kEnglish));
  std::vector<float> inputs(kPhonemes * veral3::kPhonemeInputSize);
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    inputs[i] = static_cast<float>((i * 2654435761u >> 8) % 2000) / 100.0F - 10.0F;
  }
  std::vector<double> scores(kPhonemes * size);
  const auto one_by_one = [&] {
    for (std::size_t p = 0; p < kPhonemes; ++p) {
      scorer(std::span(inputs).subspan(p * veral3::kPhonemeInputSize, veral3::kPhonemeInputSize),
             std::span(scores).subspan(p * size, size));
    }
  };
  one_by_one();
  const std::vector<double> expected = scores;
  scorer(inputs, scores);
  if (scores != expected) state.SkipWithError("batch and single differ");
  for (auto _ : state) {
    if (state.range(0) == 1) {
      scorer(inputs, scores);
    } else {
      one_by_one();
    }
    benchmark::DoNotOptimize(scores.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kPhonemes));
}
BENCHMARK(ClassifyPhonemes)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// Grading alone, against a tutor of the same 13 words.
void GradeAgainstTutor(benchmark::State& state) {
  AnalyzedAudio::LoadModelFile(kPhonemeModel.c_str(), kPhonemeModelEnglish);
  Recording speech;
  Append("english-weather", speech);
  Append("english-train", speech);
  GradedAudio learner(kLanguageEnglish);
  learner.AddPossibleSentence(speech.text.c_str());
  const auto count = static_cast<std::uint32_t>(speech.samples.size());
  if (learner.Align(count, speech.samples.data()) < 0 ||
      learner.Analyze(count, speech.samples.data()) < 0) {
    state.SkipWithError("not analysed");
  }
  GradedAudio tutor = learner;
  for (auto _ : state) {
    if (learner.GradeAgainstTutor(&tutor) < 0) state.SkipWithError("not graded");
  }
  state.counters["words"] = learner.GetNumOfWords();
}
BENCHMARK(GradeAgainstTutor)->Unit(benchmark::kMicrosecond);

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
  LoadAll();
  std::printf("Peak resident memory with everything in resources/ loaded: %.1f MB\n",
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
