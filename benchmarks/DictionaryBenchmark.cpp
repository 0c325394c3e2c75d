#include <benchmark/benchmark.h>

#include <string>
#include <string_view>
#include <vector>

#include "common/Messages.h"
#include "recognition/VeralDictionary.h"

// What the English dictionary costs: loading, one word, one sentence. Run from anywhere; the
// dictionary is that of the source tree.
namespace {

const char* Path() { return VERAL3_SOURCE_DIR "/resources/KEN-UTF8Order.txt"; }

const VeralDictionary& English() {
  static const VeralDictionary dictionary(Path());
  return dictionary;
}

void Silence() {
  veral3::SetMessageHandler([](veral3::MessageStream, std::string_view) {});
}

void Load(benchmark::State& state) {
  Silence();
  for (auto _ : state) {
    const VeralDictionary dictionary(Path());
    if (dictionary.GetWordCount() == 0) state.SkipWithError("no dictionary");
  }
}
BENCHMARK(Load)->Unit(benchmark::kMillisecond);

void LookupWord(benchmark::State& state) {
  Silence();
  const VeralDictionary& dictionary = English();
  if (dictionary.GetWordCount() == 0) return state.SkipWithError("no dictionary");
  std::vector<std::wstring> words;
  for (int i = 0; i < dictionary.GetWordCount(); i += 997) {
    words.emplace_back(dictionary.EntryAt(i)->Entry().word);
  }
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(dictionary.LookupWord(words[next]));
    next = next + 1 == words.size() ? 0 : next + 1;
  }
}
BENCHMARK(LookupWord);

void LookupMissingWord(benchmark::State& state) {
  Silence();
  for (auto _ : state) benchmark::DoNotOptimize(English().LookupWord(L"qqqq"));
}
BENCHMARK(LookupMissingWord);

void LookupSentence(benchmark::State& state) {
  Silence();
  for (auto _ : state) {
    veral3::WordSequence words;
    benchmark::DoNotOptimize(English().LookupSentence(
        L"The students' teacher doesn't think that 3,500 apples are enough for lunch.", words));
  }
}
BENCHMARK(LookupSentence);

}  // namespace
