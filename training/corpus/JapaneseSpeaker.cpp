#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Lengthen.h"
#include "training/corpus/EspeakVariants.h"
#include "training/corpus/JapaneseTexts.h"
#include "training/corpus/PhonemeBalance.h"
#include "training/corpus/SentenceSpeaker.h"
#include "training/speech/EspeakSpeech.h"
#include "training/speech/JapaneseEvents.h"

namespace veral3::training {
namespace {

EspeakVoice DrawVoice(Random& random, bool held_out) {
  EspeakVoice voice;
  voice.name = "ja+" + std::string(held_out ? random.Pick(kHeldOutVariants)
                                            : random.Pick(kTrainingVariants));
  voice.rate = random.Between(100, 220);
  voice.pitch = random.Between(20, 80);
  voice.range = random.Between(20, 80);
  // Some speak word by word, so that the start and end of every phoneme is heard beside a pause.
  if (random.Chance(0.15)) voice.word_gap = random.Between(1, 12);
  return voice;
}

// espeak-ng's phonemes of the words, a pause at every comma, and the units they are made of.
std::string FeedOf(const std::vector<JapaneseWord>& words, std::vector<JapaneseUnit>& units) {
  std::string feed;
  std::vector<JapaneseUnit> phrase;
  const auto end_phrase = [&](const char* after) {
    if (phrase.empty()) return;
    feed += "[[" + JapaneseFeed(phrase) + "]]" + after;
    units.insert(units.end(), phrase.begin(), phrase.end());
    phrase.clear();
  };
  for (const JapaneseWord& word : words) {
    if (word.reading.compact.empty()) end_phrase(", ");
    const std::vector<JapaneseUnit> own = JapaneseUnits(word.reading);
    phrase.insert(phrase.end(), own.begin(), own.end());
  }
  end_phrase("");
  return feed;
}

// espeak-ng's long vowels are hardly longer than its short ones: gives them the length, up to twice
// their own, that people give them.
void LengthenLongVowels(Utterance& utterance, const std::vector<JapaneseUnit>& units,
                        Random& random) {
  const std::vector<std::size_t> places = LabelsOfUnits(utterance.labels, units);
  const double most = random.Uniform(0.2, 1.0);
  for (std::size_t u = 0; u < units.size(); ++u) {
    if (units[u].symbols.size() != 2) continue;
    const std::size_t label = places[u];
    const std::int32_t start = utterance.labels[label].start;
    const std::int32_t end = label + 2 < utterance.labels.size()
                                 ? utterance.labels[label + 2].start
                                 : static_cast<std::int32_t>(utterance.samples.size());
    const double part = most * random.Uniform(0.7, 1.0);
    const std::int32_t added =
        Lengthen(utterance.samples, start, end, static_cast<std::int32_t>(part * (end - start)));
    for (std::size_t i = label + 1; i < utterance.labels.size(); ++i) {
      utterance.labels[i].start += added;
    }
  }
  HalveLongVowels(utterance, units);
}

// espeak-ng releases both halves of a doubled stop; people hold the first. Silences its release.
void HoldDoubledStops(Utterance& utterance, const std::vector<JapaneseUnit>& units) {
  constexpr std::int32_t kFade = kSampleRate / 500;  // 2 ms
  const std::vector<std::size_t> places = LabelsOfUnits(utterance.labels, units);
  for (std::size_t u = 0; u + 1 < units.size(); ++u) {
    if (!units[u].first_of_two || kJapaneseStops.find(units[u].symbols) == std::string_view::npos) {
      continue;
    }
    const std::int32_t start = utterance.labels[places[u]].start;
    const std::int32_t end = utterance.labels[places[u] + 1].start;
    for (std::int32_t i = start; i < end; ++i) {
      auto& sample = utterance.samples[static_cast<std::size_t>(i)];
      const std::int32_t left = kFade - (i - start);
      sample = left > 0 ? static_cast<std::int16_t>(sample * left / kFade) : std::int16_t{0};
    }
  }
}

class JapaneseSpeaker final : public SentenceSpeaker {
 public:
  explicit JapaneseSpeaker(const SpeakerOptions& options)
      : m_texts(options.words),
        m_balance(PhonemeFrequencies(kLanguageJapanese, options.evenness)),
        m_held_out(options.held_out) {}

  Utterance Speak(Random& random) override {
    const EspeakVoice voice = DrawVoice(random, m_held_out);
    const std::vector<JapaneseWord> words = Choose(random);
    std::vector<JapaneseUnit> units;
    const std::string feed = FeedOf(words, units);
    m_espeak.SetVoice(voice);
    SpokenText spoken = m_espeak.Speak(feed);
    Utterance utterance;
    utterance.text = TextOf(words);
    utterance.voice = "espeak:" + voice.name;
    try {
      utterance.labels =
          JapaneseLabels(spoken.events, units, static_cast<std::int32_t>(spoken.samples.size()));
    } catch (const std::exception& error) {
      throw std::runtime_error(std::string(error.what()) + " in \"" + utterance.text + "\"");
    }
    utterance.samples = std::move(spoken.samples);
    TakeClosures(utterance.labels, utterance.samples, kJapaneseStops);
    HalveLongVowels(utterance, units);
    if (random.Chance(0.5)) HoldDoubledStops(utterance, units);
    if (random.Chance(0.7)) LengthenLongVowels(utterance, units, random);
    return utterance;
  }

 private:
  // The best balanced of five texts; held-out ones as they come.
  std::vector<JapaneseWord> Choose(Random& random) {
    if (m_held_out) return m_texts.DrawHeldOut(random);
    constexpr std::size_t kCandidates = 5;
    std::array<std::vector<JapaneseWord>, kCandidates> candidates;
    std::array<std::string, kCandidates> phonemes;
    for (std::size_t i = 0; i < kCandidates; ++i) {
      candidates[i] = m_texts.Draw(random);
      phonemes[i] = PhonemesOf(candidates[i]);
    }
    const std::size_t chosen = m_balance.Choose(phonemes);
    m_balance.Count(phonemes[chosen]);
    return candidates[chosen];
  }

  JapaneseTexts m_texts;
  PhonemeBalance m_balance;
  EspeakSpeech m_espeak;
  bool m_held_out;
};

}  // namespace

std::unique_ptr<SentenceSpeaker> MakeJapaneseSpeaker(const SpeakerOptions& options) {
  if (options.rare) throw std::runtime_error("rare sentences are English");
  return std::make_unique<JapaneseSpeaker>(options);
}

}  // namespace veral3::training
