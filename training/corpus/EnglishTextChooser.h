#pragma once

#include <string>

#include "training/common/Random.h"
#include "training/corpus/EnglishTexts.h"
#include "training/corpus/PhonemeBalance.h"
#include "training/corpus/SentenceSpeaker.h"
#include "training/speech/EspeakSpeech.h"
#include "training/speech/PhonemeEvents.h"

namespace veral3::training {

// Draws English texts that espeak-ng's current voice can say, the best balanced of several each
// time; held-out ones as they come.
class EnglishTextChooser {
 public:
  explicit EnglishTextChooser(const SpeakerOptions& options);

  // `table`: the events of the accent that is set.
  std::string Choose(EspeakSpeech& espeak, const EventTable& table, Random& random);

 private:
  EnglishTexts m_texts;
  PhonemeBalance m_balance;
  bool m_held_out;
  bool m_rare;
  std::size_t m_candidates;
};

}  // namespace veral3::training
