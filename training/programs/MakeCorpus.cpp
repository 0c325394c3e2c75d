// Speaks sentences of a language with espeak-ng, English ones also with flite or festival, and
// writes them with phoneme times.
//
//   make-corpus --words resources/KEN-UTF8Order.txt --count 1000 --seed 1 --out work/a.corpus
//   make-corpus --language ja --words resources/KJP-UTF8Order.txt ...
//
// The same arguments give the same file. espeak-ng is one a process: make large corpora in shards,
// each with its own seed, several processes at a time.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "signal/CWaveFrameDef.h"
#include "training/common/Random.h"
#include "training/corpus/CorpusFile.h"
#include "training/corpus/EnglishTextChooser.h"
#include "training/corpus/EnglishVoices.h"
#include "training/corpus/SentenceSpeaker.h"
#include "training/speech/ArpabetEvents.h"
#include "training/speech/EspeakSpeech.h"
#include "training/speech/FestivalSpeech.h"
#include "training/speech/FliteSpeech.h"
#include "training/speech/LabelledSpeech.h"

namespace veral3::training {
namespace {

struct Options {
  SpeakerOptions speaker;
  std::string language = "en";
  std::string out;
  int count = 0;
  std::uint64_t seed = 1;
  std::string flite;     // voice; empty for espeak-ng
  std::string festival;  // voice; empty for espeak-ng
};

std::unique_ptr<SentenceSpeaker> SpeakerOf(const Options& options) {
  if (options.language == "en") return MakeEnglishSpeaker(options.speaker);
  if (options.language == "zh") return MakeChineseSpeaker(options.speaker);
  if (options.language == "ja") return MakeJapaneseSpeaker(options.speaker);
  throw std::runtime_error("no such language: " + options.language);
}

Random RandomOf(const Options& options, int number) {
  return Random(MixSeed(options.seed, static_cast<std::uint64_t>(number)));
}

// Calls write(utterance) for each utterance of espeak-ng.
template <typename Write>
void SpeakWithEspeak(const Options& options, const Write& write) {
  const std::unique_ptr<SentenceSpeaker> speaker = SpeakerOf(options);
  for (int number = 0; number < options.count; ++number) {
    Random random = RandomOf(options, number);
    write(speaker->Speak(random));
  }
}

// The same for the other synthesisers of English; espeak-ng tells how their texts sound.
template <typename Write>
void SpeakWithOthers(const Options& options, const Write& write) {
  EnglishTextChooser texts(options.speaker);
  EspeakSpeech espeak;
  std::optional<FliteSpeech> flite;
  if (!options.flite.empty()) flite.emplace(options.flite);
  std::vector<FestivalText> for_festival;
  for (int number = 0; number < options.count; ++number) {
    Random random = RandomOf(options, number);
    const EnglishVoice drawn = DrawEnglishVoice(random, options.speaker.held_out);
    espeak.SetVoice(drawn.voice);
    std::string text = texts.Choose(espeak, EnglishEventTable(drawn.accent), random);
    const double stretch = random.Uniform(0.8, 1.35);
    if (!flite) {
      for_festival.push_back({std::move(text), stretch});
      continue;
    }
    SpokenText spoken = flite->Speak(text, stretch, 0.0);
    write(LabelledSpeech(std::move(text), "flite:" + options.flite, std::move(spoken),
                         ArpabetEventTable()));
  }
  if (for_festival.empty()) return;
  auto spoken = SpeakWithFestival(options.festival, for_festival, options.out + ".festival");
  for (std::size_t i = 0; i < spoken.size(); ++i) {
    write(LabelledSpeech(for_festival[i].text, "festival:" + options.festival, std::move(spoken[i]),
                         ArpabetEventTable()));
  }
}

void Run(const Options& options) {
  const bool others = !options.flite.empty() || !options.festival.empty();
  if (others && options.language != "en") {
    throw std::runtime_error("flite and festival speak English only");
  }
  CorpusWriter writer(options.out);
  double seconds = 0.0;
  const auto write = [&](const Utterance& utterance) {
    seconds += static_cast<double>(utterance.samples.size()) / kSampleRate;
    writer.Write(utterance);
  };
  others ? SpeakWithOthers(options, write) : SpeakWithEspeak(options, write);
  writer.Close();
  std::printf("%s: %d utterances, %.2f h\n", options.out.c_str(), options.count, seconds / 3600);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Speaks sentences with espeak-ng and writes them with phoneme times.");
  app.add_option("--language", options.language, "en, zh or ja");
  app.add_option("--words", options.speaker.words, "dictionary whose words fill sentences");
  app.add_option("--out", options.out, "corpus to write")->required();
  app.add_option("--count", options.count, "utterances")->required();
  app.add_option("--seed", options.seed, "a different one, a different corpus");
  app.add_option("--flite", options.flite, "speak with this flite voice");
  app.add_option("--festival", options.festival, "speak with this festival voice");
  app.add_flag("--held-out", options.speaker.held_out,
               "voices and sentences that training never has");
  app.add_flag("--rare", options.speaker.rare,
               "held-out English sentences of words with rare sounds")
      ->needs("--held-out");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-corpus: %s\n", error.what());
    return 1;
  }
  return 0;
}
