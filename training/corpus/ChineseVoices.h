#pragma once

#include "training/common/Random.h"
#include "training/corpus/ChineseTexts.h"
#include "training/corpus/Utterance.h"
#include "training/speech/EspeakSpeech.h"

namespace veral3::training {

// A voice of espeak-ng for Mandarin at random. At espeak-ng's own settings Mandarin is low and
// flat, its falling tones end below what the pitch tracker follows; so most voices are raised and
// given their full range.
EspeakVoice DrawChineseVoice(Random& random, bool held_out);

// One whose tones can be heard: of any pitch that people have, from men of 85 Hz to children, with
// nearly its full range, never one of the variants that have no melody or turn it upside down.
EspeakVoice DrawToneVoice(Random& random, bool held_out);

// The sentence as the voice says it, with phoneme times, tones and syllables. Throws
// std::runtime_error, which names the sentence, where what was spoken is not what it has.
Utterance SpeakChinese(EspeakSpeech& espeak, const EspeakVoice& voice,
                       const ChineseSentence& sentence);

}  // namespace veral3::training
