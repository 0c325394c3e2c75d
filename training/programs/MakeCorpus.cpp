// Speaks sentences of a language with espeak-ng, or with a recorded voice of flite or festival
// whose phones are near those of the language, and writes them with phoneme times.
//
//   make-corpus --words resources/KEN-UTF8Order.txt --count 1000 --seed 1 --out work/a.corpus
//   make-corpus --language ja --words resources/KJP-UTF8Order.txt ...
//   make-corpus --language ja --festival czech_dita ...    # corpus/RecordedVoices.cpp has the voices
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
#include "training/corpus/RecordedVoices.h"
#include "training/corpus/SentenceSpeaker.h"
#include "training/programs/LanguageOption.h"
#include "training/speech/EnglishEvents.h"
#include "training/speech/EspeakSpeech.h"
#include "training/speech/FestivalSpeech.h"
#include "training/speech/FliteSpeech.h"
#include "training/speech/LabelledSpeech.h"

namespace veral3::training {
namespace {

struct Options {
  SpeakerOptions speaker;
  LanguageType language = kLanguageEnglish;
  std::string out;
  int count = 0;
  std::uint64_t seed = 1;
  std::string flite;     // voice; empty for espeak-ng
  std::string festival;  // voice; empty for espeak-ng
};

std::unique_ptr<SentenceSpeaker> SpeakerOf(const Options& options) {
  switch (options.language) {
    case kLanguageChinese:
      return MakeChineseSpeaker(options.speaker);
    case kLanguageJapanese:
      return MakeJapaneseSpeaker(options.speaker);
    default:
      return MakeEnglishSpeaker(options.speaker);
  }
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

// What a recorded voice spoke, in the symbols of the language.
Utterance LabelledRecording(const RecordedVoice& voice, LanguageType language, std::string text,
                            SpokenText spoken) {
  const PhoneInventory& phones = voice.phones();
  phones.NamePlaces(spoken.events, language);
  const std::string_view synthesiser =
      voice.synthesiser == Synthesiser::kFlite ? "flite:" : "festival:";
  return LabelledSpeech(std::move(text), std::string(synthesiser) + std::string(voice.name),
                        std::move(spoken), phones.TableOf(language));
}

// The same for a recorded voice. English sentences are balanced by how espeak-ng says them.
template <typename Write>
void SpeakWithRecorded(const Options& options, const Write& write) {
  const LanguageType language = options.language;
  const RecordedVoice& voice = options.flite.empty()
                                   ? RecordedVoiceOf(Synthesiser::kFestival, options.festival)
                                   : RecordedVoiceOf(Synthesiser::kFlite, options.flite);
  RequireAllowed(voice, language, options.speaker.held_out);
  std::optional<EnglishTextChooser> texts;
  std::optional<EspeakSpeech> espeak;
  if (!voice.reads) {
    texts.emplace(options.speaker);
    espeak.emplace();
  }
  std::optional<FliteSpeech> flite;
  if (voice.synthesiser == Synthesiser::kFlite) flite.emplace(options.flite);
  std::vector<FestivalText> for_festival;
  for (int number = 0; number < options.count; ++number) {
    Random random = RandomOf(options, number);
    std::string text;
    if (voice.reads) {
      text = DrawForeignText(*voice.reads, random);
    } else {
      const EnglishVoice drawn = DrawEnglishVoice(random, options.speaker.held_out);
      espeak->SetVoice(drawn.voice);
      text = texts->Choose(*espeak, EnglishEventTable(drawn.accent), random);
    }
    const double stretch = random.Uniform(0.8, 1.35);
    if (!flite) {
      for_festival.push_back({std::move(text), stretch});
      continue;
    }
    SpokenText spoken = flite->Speak(text, stretch, 0.0);
    write(LabelledRecording(voice, language, std::move(text), std::move(spoken)));
  }
  if (for_festival.empty()) return;
  auto spoken = SpeakWithFestival(options.festival, std::string(voice.encoding), for_festival,
                                  options.out + ".festival");
  for (std::size_t i = 0; i < spoken.size(); ++i) {
    if (spoken[i].samples.empty()) continue;  // the voice cannot say it
    write(LabelledRecording(voice, language, for_festival[i].text, std::move(spoken[i])));
  }
}

void Run(const Options& options) {
  const bool recorded = !options.flite.empty() || !options.festival.empty();
  CorpusWriter writer(options.out);
  double seconds = 0.0;
  int written = 0;
  const auto write = [&](const Utterance& utterance) {
    seconds += static_cast<double>(utterance.samples.size()) / kSampleRate;
    writer.Write(utterance);
    ++written;
  };
  recorded ? SpeakWithRecorded(options, write) : SpeakWithEspeak(options, write);
  writer.Close();
  std::printf("%s: %d utterances, %.2f h\n", options.out.c_str(), written, seconds / 3600);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Speaks sentences with espeak-ng and writes them with phoneme times.");
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--words", options.speaker.words, "dictionary whose words fill sentences");
  app.add_option("--out", options.out, "corpus to write")->required();
  app.add_option("--count", options.count, "utterances")->required();
  app.add_option("--seed", options.seed, "a different one, a different corpus");
  app.add_option("--flite", options.flite, "speak with this flite voice");
  app.add_option("--festival", options.festival, "speak with this festival voice");
  app.add_flag("--held-out", options.speaker.held_out,
               "voices and sentences that training never has");
  app.add_option("--evenness", options.speaker.evenness,
                 "0: phonemes as often as scores expect them, 1: all alike")
      ->check(CLI::Range(0.0, 1.0));
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
