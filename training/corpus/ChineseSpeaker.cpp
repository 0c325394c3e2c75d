#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

#include "training/corpus/ChineseTexts.h"
#include "training/corpus/EspeakVariants.h"
#include "training/corpus/PhonemeBalance.h"
#include "training/corpus/SentenceSpeaker.h"
#include "training/speech/ChineseEvents.h"
#include "training/speech/EspeakSpeech.h"

namespace veral3::training {
namespace {

// A voice at random. At espeak-ng's own settings Mandarin is low and flat, its falling tones end
// below what the pitch tracker follows; so most voices are raised and given their full range.
EspeakVoice DrawVoice(Random& random, bool held_out) {
  const std::string_view variant =
      held_out ? random.Pick(kHeldOutVariants) : random.Pick(kTrainingVariants);
  EspeakVoice voice;
  voice.name = "cmn-latn-pinyin+" + std::string(variant);
  voice.rate = random.Between(105, 230);
  const bool raised = random.Chance(0.8);
  voice.pitch = raised ? random.Between(65, 99) : random.Between(30, 70);
  voice.range = raised ? random.Between(80, 100) : random.Between(40, 100);
  return voice;
}

class ChineseSpeaker final : public SentenceSpeaker {
 public:
  explicit ChineseSpeaker(const SpeakerOptions& options)
      : m_texts(options.words),
        m_balance(PhonemeFrequencies(kLanguageChinese)),
        m_held_out(options.held_out) {}

  Utterance Speak(Random& random) override {
    const EspeakVoice voice = DrawVoice(random, m_held_out);
    m_espeak.SetVoice(voice);
    ChineseSentence sentence = Choose(random);
    SpokenText spoken = m_espeak.Speak(sentence.pinyin);
    Utterance utterance;
    utterance.text = std::move(sentence.text);
    utterance.voice = "espeak:" + voice.name;
    try {
      utterance.labels = ChineseLabels(spoken.events, {sentence.phonemes, sentence.starts},
                                       static_cast<std::int32_t>(spoken.samples.size()));
    } catch (const std::exception& error) {
      throw std::runtime_error(std::string(error.what()) + " in \"" + sentence.pinyin + "\"");
    }
    TakeClosures(utterance.labels, spoken.samples, kChineseStops);
    utterance.samples = std::move(spoken.samples);
    utterance.tones = std::move(sentence.tones);
    utterance.spoken_tones = std::move(sentence.spoken_tones);
    utterance.syllables = std::move(sentence.starts);
    return utterance;
  }

 private:
  // The best balanced of a few texts.
  ChineseSentence Choose(Random& random) {
    if (m_held_out) return m_texts.DrawHeldOut(random);
    constexpr std::size_t kCandidates = 5;
    std::array<ChineseSentence, kCandidates> candidates;
    std::array<std::string, kCandidates> phonemes;
    for (std::size_t i = 0; i < kCandidates; ++i) {
      candidates[i] = m_texts.Draw(random);
      phonemes[i] = candidates[i].phonemes;
    }
    const std::size_t chosen = m_balance.Choose(phonemes);
    m_balance.Count(phonemes[chosen]);
    return std::move(candidates[chosen]);
  }

  ChineseTexts m_texts;
  PhonemeBalance m_balance;
  EspeakSpeech m_espeak;
  bool m_held_out;
};

}  // namespace

std::unique_ptr<SentenceSpeaker> MakeChineseSpeaker(const SpeakerOptions& options) {
  return std::make_unique<ChineseSpeaker>(options);
}

}  // namespace veral3::training
