#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/LanguageType.h"
#include "training/speech/EspeakSpeech.h"

// Readings with one known fault each, to see whether grading finds that fault and no other. A
// synthesiser can read a sentence twice in the same way but for one thing, which no person can.
//
//   EspeakSpeech espeak;
//   SenseReadings readings(kLanguageEnglish, espeak);
//   for (const SenseFault fault : readings.Faults()) {
//     auto samples = readings.Speak(sentence, voice, fault);
//   }
namespace veral3::training {

enum class SenseFault {
  kNone,           // as the tutor reads it
  kOtherVoice,     // no fault, another speaker
  kConsonants,     // several consonants are others
  kFlat,           // pitch without movement
  kPause,          // 0.9 s of silence before a word in the middle
  kOtherSentence,  // another sentence is read
  kTones,          // Chinese: every tone is another
  kShortVowels,    // Japanese: a long vowel is short
};

std::string_view NameOf(SenseFault fault);  // "flat pitch"

struct SenseSentence {
  std::string text;  // as the engine is given it
  // What is spoken, as the synthesiser takes it: right, and with a fault; empty where there is
  // none.
  std::string spoken;
  std::string consonants;
  std::string tones;
  std::string short_vowels;
};

// Silence of `seconds` before the sample `place`; both sides are faded over 5 ms.
std::vector<std::int16_t> WithSilence(std::span<const std::int16_t> samples, std::size_t place,
                                      double seconds);

class SenseReadings {
 public:
  // Throws std::runtime_error for an unknown language. The synthesiser must outlive the object.
  SenseReadings(LanguageType language, EspeakSpeech& espeak);

  std::span<const SenseSentence> Sentences() const { return m_sentences; }
  std::size_t NumVoices() const;  // none of them heard in training
  std::string VoiceName(std::size_t voice, SenseFault fault) const;
  std::vector<SenseFault> Faults() const;  // that the language has

  // 16 bit, 22050 Hz, 0.2 s of silence at both ends. kPause needs the engine (Engine.h), which
  // tells where words begin.
  std::vector<std::int16_t> Speak(std::size_t sentence, std::size_t voice, SenseFault fault) const;

 private:
  std::vector<std::int16_t> SpeakOnce(const std::string& spoken) const;

  LanguageType m_language;
  std::span<const SenseSentence> m_sentences;
  EspeakSpeech& m_espeak;
};

}  // namespace veral3::training
