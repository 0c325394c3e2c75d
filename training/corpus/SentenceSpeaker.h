#pragma once

#include <memory>
#include <string>

#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// Where the sentences of a corpus come from, one maker a language:
//
//   auto speaker = MakeJapaneseSpeaker({.words = "resources/KJP-UTF8Order.txt"});
//   Random random(MixSeed(seed, number));
//   Utterance utterance = speaker->Speak(random);
//
// espeak-ng is one a process, so is a speaker. All throw std::runtime_error where the synthesiser
// or the dictionary is missing, or where something was spoken that is not what the text says.
namespace veral3::training {

// Speaks sentences of one language, each with its phonemes and their times.
class SentenceSpeaker {
 public:
  virtual ~SentenceSpeaker() = default;
  // Draws a voice and a sentence and speaks it. The same random numbers, asked for in the same
  // order, give the same utterances: the choice of a text looks at those before.
  virtual Utterance Speak(Random& random) = 0;
};

struct SpeakerOptions {
  std::string words;      // dictionary file whose words fill sentences
  bool held_out = false;  // voices and sentences that training never has
  bool rare = false;      // held-out English sentences of words with rare sounds
  double evenness = 0.0;  // of phonemes, 0 to 1: as often as scores expect them, to all alike
};

std::unique_ptr<SentenceSpeaker> MakeEnglishSpeaker(const SpeakerOptions& options);
std::unique_ptr<SentenceSpeaker> MakeChineseSpeaker(const SpeakerOptions& options);
std::unique_ptr<SentenceSpeaker> MakeJapaneseSpeaker(const SpeakerOptions& options);

}  // namespace veral3::training
