#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

#include "training/corpus/ChineseTexts.h"
#include "training/corpus/ChineseVoices.h"
#include "training/corpus/PhonemeBalance.h"
#include "training/corpus/SentenceSpeaker.h"
#include "training/speech/EspeakSpeech.h"

namespace veral3::training {
namespace {

class ChineseSpeaker final : public SentenceSpeaker {
 public:
  explicit ChineseSpeaker(const SpeakerOptions& options)
      : m_texts(options.words),
        m_balance(PhonemeFrequencies(kLanguageChinese, options.evenness)),
        m_held_out(options.held_out) {}

  Utterance Speak(Random& random) override {
    const EspeakVoice voice = DrawChineseVoice(random, m_held_out);
    return SpeakChinese(m_espeak, voice, Choose(random));
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
  if (options.rare) throw std::runtime_error("rare sentences are English");
  return std::make_unique<ChineseSpeaker>(options);
}

}  // namespace veral3::training
