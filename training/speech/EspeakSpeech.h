#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "training/speech/PhonemeEvents.h"

// Speech of espeak-ng with the sample at which each phoneme begins.
//
//   EspeakSpeech espeak;                        // the process's one synthesiser
//   espeak.SetVoice({"en-us+f1", 150, 50, 50}); // throws where the voice does not exist
//   SpokenText spoken = espeak.Speak("The cat sat down.");
namespace veral3::training {

struct EspeakVoice {
  std::string name;  // language, '+', variant
  int rate = 175;    // words a minute
  int pitch = 50;    // 0 to 100
  int range = 50;    // 0 to 100, how far the pitch moves
  int word_gap = 0;  // 10 ms each, pause between words
};

struct SpokenText {
  std::vector<std::int16_t> samples;  // 22050 Hz
  std::vector<PhonemeEvent> events;
};

// espeak-ng keeps its state in the process: one object at a time, one thread. What was spoken
// before may leave a trace of a few samples in what is spoken next, so only whole runs repeat
// exactly.
class EspeakSpeech {
 public:
  EspeakSpeech();  // throws std::runtime_error where espeak-ng or its data is missing
  EspeakSpeech(const EspeakSpeech&) = delete;
  EspeakSpeech& operator=(const EspeakSpeech&) = delete;

  // Throws std::runtime_error with the name when language or variant does not exist: espeak-ng
  // itself falls back in silence on a language it knows.
  void SetVoice(const EspeakVoice& voice);

  // Plain text, or phonemes where it has [[...]].
  SpokenText Speak(const std::string& text);

  // Event names that a text would give, without speaking: quick, and near enough to choose texts.
  std::vector<std::string> PhonemeNames(const std::string& text);
};

}  // namespace veral3::training
