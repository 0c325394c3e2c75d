#pragma once

#include "training/common/Random.h"
#include "training/corpus/EspeakVariants.h"
#include "training/speech/EnglishEvents.h"
#include "training/speech/EspeakSpeech.h"

namespace veral3::training {

struct EnglishVoice {
  EspeakVoice voice;
  EnglishAccent accent;
};

// A voice at random: American four times in five, rate 105 to 230, pitch and range 20 to 80.
EnglishVoice DrawEnglishVoice(Random& random, bool held_out);

}  // namespace veral3::training
