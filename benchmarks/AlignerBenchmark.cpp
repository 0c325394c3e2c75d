#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "recognition/DecodingNetwork.h"
#include "recognition/TokenPassing.h"
#include "recognition/ViterbiAligner.h"
#include "signal/CWaveFrameDef.h"

// The aligner without the frame classifier: networks, decoding, and all of an alignment that
// follows the frame scores. `real_time` is the share of the recording's own duration; `a_frame` and
// `a_node` are times.
namespace veral3 {
namespace {

const CPhonemeSet& English() { return *PhonemeSetOf(kLanguageEnglish); }

struct Spelling {
  const wchar_t* word;
  std::vector<std::string> variants;
};

// Twelve words of everyday speech with the alternatives that a dictionary lists.
const std::vector<Spelling>& TwelveWords() {
  static const std::vector<Spelling> words = {
      {L"SHE", {"Si"}},
      {L"HAD", {"h{d", "h@d"}},
      {L"YOUR", {"jUr", "jOr", "j3"}},
      {L"DARK", {"dArk"}},
      {L"SUIT", {"sut"}},
      {L"IN", {"In", "@n"}},
      {L"GREASY", {"grisi", "grizi"}},
      {L"WASH", {"wAS", "wOS"}},
      {L"WATER", {"wOt3"}},
      {L"ALL", {"Ol"}},
      {L"THIS", {"DIs"}},
      {L"YEAR", {"jIr"}},
  };
  return words;
}

WordSequence Sentence(int num_words) {
  WordSequence sentence;
  for (int i = 0; i < num_words; ++i) {
    const Spelling& spelling = TwelveWords()[static_cast<std::size_t>(i) % 12];
    std::vector<OwnedWordEntry::Variant> variants;
    for (const std::string& phonemes : spelling.variants) variants.push_back({phonemes, {1}, {0}});
    sentence.AppendOwned(std::make_shared<const OwnedWordEntry>(spelling.word, variants));
  }
  return sentence;
}

// Scores like the frame classifier's: a few states of a frame share what there is, the rest is
// low. Unrelated to the words, so that many paths stay alive: the hard case for the decoder.
std::vector<double> Scores(int num_frames) {
  std::uint32_t state = 1;
  const auto next = [&state] {
    state = state * 1664525u + 1013904223u;
    return state >> 8;
  };
  const int columns = 3 * English().GetSize();
  std::vector<double> scores(static_cast<std::size_t>(num_frames * columns));
  for (double& score : scores) {
    const double share = (1 + next() % 65536) / 65536.0;
    score = share * share * share * share + 1e-6;
  }
  return scores;
}

void ReportTimes(benchmark::State& state, int num_frames, std::size_t num_nodes) {
  using benchmark::Counter;
  const double seconds = num_frames * static_cast<double>(kFrameShift) / kSampleRate;
  const auto a_run = Counter::kIsIterationInvariantRate | Counter::kInvert;
  state.counters["real_time"] = Counter(seconds, a_run);
  state.counters["a_frame"] = Counter(num_frames, a_run);
  state.counters["a_node"] = Counter(num_frames * static_cast<double>(num_nodes), a_run);
  state.counters["nodes"] = static_cast<double>(num_nodes);
}

// Decoding alone: words, frames.
void Decode(benchmark::State& state) {
  const auto num_words = static_cast<int>(state.range(0));
  const auto num_frames = static_cast<int>(state.range(1));
  const WordSequence sentence = Sentence(num_words);
  DecodingNetwork network;
  ExtendNetwork(network, std::span(&sentence, 1));
  const std::vector<double> scores = Scores(num_frames);
  std::size_t room = 0;
  for (auto _ : state) {
    const auto best = PassTokens(network, English(), scores, num_frames);
    if (!best) return state.SkipWithError("no path");
    room = best->history_room;
  }
  ReportTimes(state, num_frames, network.nodes.size());
  state.counters["history_room"] = static_cast<double>(room);
}
BENCHMARK(Decode)
    ->ArgsProduct({{12}, {500, 1000, 2000, 4000, 8000, 60000}})
    ->ArgsProduct({{3, 6, 24, 48}, {1000}})
    ->ArgNames({"words", "frames"})
    ->Unit(benchmark::kMillisecond);

// All of an alignment that follows the frame scores, with a network that stands.
void AlignScores(benchmark::State& state) {
  const auto num_frames = static_cast<int>(state.range(0));
  const WordSequence sentence = Sentence(12);
  DecodingNetwork network;
  ExtendNetwork(network, std::span(&sentence, 1));
  const std::size_t num_nodes = network.nodes.size();
  ViterbiAligner aligner;
  aligner.AddSentence(sentence);
  AlignmentResult result;
  result.num_frames = num_frames;
  result.score_columns = 3 * English().GetSize();
  result.frame_scores = Scores(num_frames);
  for (auto _ : state) {
    if (aligner.AlignScores(English(), result) < 0) return state.SkipWithError("no path");
  }
  ReportTimes(state, num_frames, num_nodes);
}
BENCHMARK(AlignScores)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(4000)
    ->ArgName("frames")
    ->Unit(benchmark::kMillisecond);

// Eight candidate sentences of twelve words that differ in two.
void BuildNetwork(benchmark::State& state) {
  std::vector<WordSequence> sentences;
  for (int i = 0; i < 8; ++i) {
    WordSequence sentence;
    for (int word = 0; word < 12; ++word) {
      const bool own = word == 4 || word == 6;
      const Spelling& spelling =
          TwelveWords()[static_cast<std::size_t>(own ? (word + i) % 12 : word)];
      std::vector<OwnedWordEntry::Variant> variants;
      for (const std::string& phonemes : spelling.variants) {
        variants.push_back({phonemes, {1}, {0}});
      }
      sentence.AppendOwned(std::make_shared<const OwnedWordEntry>(spelling.word, variants));
    }
    sentences.push_back(std::move(sentence));
  }
  for (auto _ : state) {
    DecodingNetwork network;
    ExtendNetwork(network, sentences);
    benchmark::DoNotOptimize(network.nodes.data());
  }
}
BENCHMARK(BuildNetwork)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace veral3
