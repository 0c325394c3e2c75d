#include <string>
#include <utility>

#include "training/corpus/EnglishTextChooser.h"
#include "training/corpus/EnglishVoices.h"
#include "training/corpus/SentenceSpeaker.h"
#include "training/speech/EspeakSpeech.h"
#include "training/speech/LabelledSpeech.h"

namespace veral3::training {
namespace {

class EnglishSpeaker final : public SentenceSpeaker {
 public:
  explicit EnglishSpeaker(const SpeakerOptions& options)
      : m_texts(options), m_held_out(options.held_out) {}

  Utterance Speak(Random& random) override {
    const EnglishVoice drawn = DrawEnglishVoice(random, m_held_out);
    m_espeak.SetVoice(drawn.voice);
    const EventTable& table = EnglishEventTable(drawn.accent);
    std::string text = m_texts.Choose(m_espeak, table, random);
    SpokenText spoken = m_espeak.Speak(text);
    Utterance utterance =
        LabelledSpeech(std::move(text), "espeak:" + drawn.voice.name, std::move(spoken), table);
    TakeClosures(utterance.labels, utterance.samples, kEnglishStops);
    return utterance;
  }

 private:
  EnglishTextChooser m_texts;
  EspeakSpeech m_espeak;
  bool m_held_out;
};

}  // namespace

std::unique_ptr<SentenceSpeaker> MakeEnglishSpeaker(const SpeakerOptions& options) {
  return std::make_unique<EnglishSpeaker>(options);
}

}  // namespace veral3::training
