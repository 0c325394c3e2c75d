// Speaks English sentences with espeak-ng and writes them with their phoneme times.
//
//   make-corpus --words resources/KEN-UTF8Order.txt --count 1000 --seed 1 --out work/a.corpus
//
// The same arguments give the same file. espeak-ng is one a process: make large corpora in shards,
// each with its own seed, several processes at a time.

#include <CLI/CLI.hpp>
#include <array>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>

#include "signal/CWaveFrameDef.h"
#include "training/common/Random.h"
#include "training/corpus/CorpusFile.h"
#include "training/corpus/EnglishTexts.h"
#include "training/corpus/EnglishVoices.h"
#include "training/corpus/PhonemeBalance.h"
#include "training/speech/EspeakSpeech.h"

namespace veral3::training {
namespace {

struct Options {
  std::string words;
  std::string out;
  int count = 0;
  std::uint64_t seed = 1;
  bool held_out = false;
};

// The phonemes of a text as the voice would say them; nothing for a text with a sound that the
// language's set lacks (nasal vowels of French words).
std::optional<std::string> ExpectedPhonemes(EspeakSpeech& espeak, const EventTable& table,
                                            const std::string& text) {
  std::string phonemes;
  for (const std::string& name : espeak.PhonemeNames(text)) {
    if (!table.Knows(name)) return std::nullopt;
    phonemes += table.SymbolsOf(name);
  }
  return phonemes;
}

void Run(const Options& options) {
  constexpr int kCandidates = 5;  // texts to choose from for every utterance
  const EnglishTexts texts(options.words.empty() ? std::vector<std::string>{}
                                                 : ReadDictionaryWords(options.words));
  PhonemeBalance balance(EnglishPhonemeFrequencies());
  EspeakSpeech espeak;
  CorpusWriter writer(options.out);
  double seconds = 0.0;
  for (int number = 0; number < options.count; ++number) {
    Random random(MixSeed(options.seed, static_cast<std::uint64_t>(number)));
    const EnglishVoice drawn = DrawEnglishVoice(random, options.held_out);
    espeak.SetVoice(drawn.voice);
    const EventTable& table = EnglishEventTable(drawn.accent);
    Utterance utterance;
    if (options.held_out) {
      utterance.text = texts.DrawHeldOut(random);
    } else {
      std::array<std::string, kCandidates> candidates;
      std::array<std::string, kCandidates> phonemes;
      for (std::size_t i = 0; i < kCandidates; ++i) {
        std::optional<std::string> expected;
        while (!expected) {
          candidates[i] = texts.Draw(random);
          expected = ExpectedPhonemes(espeak, table, candidates[i]);
        }
        phonemes[i] = *std::move(expected);
      }
      utterance.text = candidates[balance.Choose(phonemes)];
    }
    utterance.voice = "espeak:" + drawn.voice.name;
    SpokenText spoken = espeak.Speak(utterance.text);
    try {
      utterance.labels =
          LabelsFromEvents(spoken.events, table, static_cast<std::int32_t>(spoken.samples.size()));
    } catch (const std::exception& error) {
      throw std::runtime_error(std::string(error.what()) + " in \"" + utterance.text + "\"");
    }
    TakeClosures(utterance.labels, spoken.samples, kEnglishStops);
    utterance.samples = std::move(spoken.samples);
    balance.Count(PhonemesOf(utterance));
    seconds += static_cast<double>(utterance.samples.size()) / kSampleRate;
    writer.Write(utterance);
  }
  writer.Close();
  std::printf("%s: %d utterances, %.2f h\n", options.out.c_str(), options.count, seconds / 3600);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Speaks English sentences with espeak-ng and writes them with phoneme times.");
  app.add_option("--words", options.words, "dictionary whose words fill sentences");
  app.add_option("--out", options.out, "corpus to write")->required();
  app.add_option("--count", options.count, "utterances")->required();
  app.add_option("--seed", options.seed, "a different one, a different corpus");
  app.add_flag("--held-out", options.held_out, "voices and sentences that training never has");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-corpus: %s\n", error.what());
    return 1;
  }
  return 0;
}
