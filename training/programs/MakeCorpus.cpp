// Speaks English sentences with espeak-ng, flite or festival and writes them with phoneme times.
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
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "signal/CWaveFrameDef.h"
#include "training/common/Random.h"
#include "training/corpus/CorpusFile.h"
#include "training/corpus/EnglishTexts.h"
#include "training/corpus/EnglishVoices.h"
#include "training/corpus/PhonemeBalance.h"
#include "training/speech/ArpabetEvents.h"
#include "training/speech/EspeakSpeech.h"
#include "training/speech/FestivalSpeech.h"
#include "training/speech/FliteSpeech.h"

namespace veral3::training {
namespace {

struct Options {
  std::string words;
  std::string out;
  int count = 0;
  std::uint64_t seed = 1;
  std::string flite;     // voice; empty for espeak-ng
  std::string festival;  // voice; empty for espeak-ng
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

// Draws texts that the voice can say, the best balanced of a few each time.
class TextChooser {
 public:
  TextChooser(const Options& options)
      : m_texts(options.words.empty() ? std::vector<std::string>{}
                                      : ReadDictionaryWords(options.words)),
        m_balance(EnglishPhonemeFrequencies()),
        m_held_out(options.held_out) {}

  std::string Choose(EspeakSpeech& espeak, const EventTable& table, Random& random) {
    if (m_held_out) return m_texts.DrawHeldOut(random);
    constexpr std::size_t kCandidates = 5;
    std::array<std::string, kCandidates> candidates;
    std::array<std::string, kCandidates> phonemes;
    for (std::size_t i = 0; i < kCandidates; ++i) {
      std::optional<std::string> expected;
      while (!expected) {
        candidates[i] = m_texts.Draw(random);
        expected = ExpectedPhonemes(espeak, table, candidates[i]);
      }
      phonemes[i] = *std::move(expected);
    }
    const std::size_t chosen = m_balance.Choose(phonemes);
    m_balance.Count(phonemes[chosen]);
    return candidates[chosen];
  }

 private:
  EnglishTexts m_texts;
  PhonemeBalance m_balance;
  bool m_held_out;
};

Utterance Labelled(std::string text, std::string voice, SpokenText spoken,
                   const EventTable& table) {
  Utterance utterance{std::move(text), std::move(voice), {}, {}};
  try {
    utterance.labels =
        LabelsFromEvents(spoken.events, table, static_cast<std::int32_t>(spoken.samples.size()));
  } catch (const std::exception& error) {
    throw std::runtime_error(std::string(error.what()) + " in \"" + utterance.text + "\"");
  }
  utterance.samples = std::move(spoken.samples);
  return utterance;
}

void Run(const Options& options) {
  TextChooser texts(options);
  EspeakSpeech espeak;  // also tells how texts sound that others speak
  CorpusWriter writer(options.out);
  double seconds = 0.0;
  const auto write = [&](const Utterance& utterance) {
    seconds += static_cast<double>(utterance.samples.size()) / kSampleRate;
    writer.Write(utterance);
  };
  std::optional<FliteSpeech> flite;
  if (!options.flite.empty()) flite.emplace(options.flite);
  std::vector<FestivalText> for_festival;
  for (int number = 0; number < options.count; ++number) {
    Random random(MixSeed(options.seed, static_cast<std::uint64_t>(number)));
    const EnglishVoice drawn = DrawEnglishVoice(random, options.held_out);
    espeak.SetVoice(drawn.voice);
    const EventTable& table = EnglishEventTable(drawn.accent);
    std::string text = texts.Choose(espeak, table, random);
    if (flite) {
      SpokenText spoken = flite->Speak(text, random.Uniform(0.8, 1.35), 0.0);
      write(Labelled(std::move(text), "flite:" + options.flite, std::move(spoken),
                     ArpabetEventTable()));
    } else if (!options.festival.empty()) {
      for_festival.push_back({std::move(text), random.Uniform(0.8, 1.35)});
    } else {
      SpokenText spoken = espeak.Speak(text);
      Utterance utterance =
          Labelled(std::move(text), "espeak:" + drawn.voice.name, std::move(spoken), table);
      TakeClosures(utterance.labels, utterance.samples, kEnglishStops);
      write(utterance);
    }
  }
  if (!for_festival.empty()) {
    auto spoken = SpeakWithFestival(options.festival, for_festival, options.out + ".festival");
    for (std::size_t i = 0; i < spoken.size(); ++i) {
      write(Labelled(for_festival[i].text, "festival:" + options.festival, std::move(spoken[i]),
                     ArpabetEventTable()));
    }
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
  app.add_option("--flite", options.flite, "speak with this flite voice");
  app.add_option("--festival", options.festival, "speak with this festival voice");
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
