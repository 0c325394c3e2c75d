#include "training/corpus/ChineseVoices.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <utility>

#include "training/corpus/EspeakVariants.h"
#include "training/speech/ChineseEvents.h"

namespace veral3::training {
namespace {

// Their files end the pitch range at or below its beginning, or a semitone above.
constexpr auto kWithoutMelody = std::to_array<std::string_view>({"Alex", "aunty"});

// Name and rate.
EspeakVoice DrawVariant(Random& random, bool held_out) {
  const std::string_view variant =
      held_out ? random.Pick(kHeldOutVariants) : random.Pick(kTrainingVariants);
  EspeakVoice voice;
  voice.name = "cmn-latn-pinyin+" + std::string(variant);
  voice.rate = random.Between(105, 230);
  return voice;
}

// So low that espeak-ng ends the process at a low setting.
constexpr std::string_view kLowest = "rob";

std::string_view VariantOf(const EspeakVoice& voice) {
  return std::string_view(voice.name).substr(voice.name.rfind('+') + 1);
}

bool HasMelody(const EspeakVoice& voice) {
  return std::ranges::find(kWithoutMelody, VariantOf(voice)) == kWithoutMelody.end();
}

}  // namespace

EspeakVoice DrawChineseVoice(Random& random, bool held_out) {
  EspeakVoice voice = DrawVariant(random, held_out);
  const bool raised = random.Chance(0.8);
  voice.pitch = raised ? random.Between(65, 99) : random.Between(30, 70);
  voice.range = raised ? random.Between(80, 100) : random.Between(40, 100);
  return voice;
}

EspeakVoice DrawToneVoice(Random& random, bool held_out) {
  EspeakVoice voice = DrawVariant(random, held_out);
  while (!HasMelody(voice)) voice = DrawVariant(random, held_out);
  voice.pitch = random.Between(VariantOf(voice) == kLowest ? 65 : 20, 99);
  voice.range = random.Between(85, 100);
  return voice;
}

Utterance SpeakChinese(EspeakSpeech& espeak, const EspeakVoice& voice,
                       const ChineseSentence& sentence) {
  espeak.SetVoice(voice);
  SpokenText spoken = espeak.Speak(sentence.pinyin);
  Utterance utterance;
  utterance.text = sentence.text;
  utterance.voice = "espeak:" + voice.name;
  try {
    utterance.labels = ChineseLabels(spoken.events, {sentence.phonemes, sentence.starts},
                                     static_cast<std::int32_t>(spoken.samples.size()));
  } catch (const std::exception& error) {
    throw std::runtime_error(std::string(error.what()) + " in \"" + sentence.pinyin + "\"");
  }
  TakeClosures(utterance.labels, spoken.samples, kChineseStops);
  utterance.samples = std::move(spoken.samples);
  utterance.tones = sentence.tones;
  utterance.spoken_tones = sentence.spoken_tones;
  utterance.syllables = sentence.starts;
  return utterance;
}

}  // namespace veral3::training
