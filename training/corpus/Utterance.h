#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace veral3::training {

// The symbol of a stretch of which nothing is learnt: a sound that is near no phoneme of the set.
inline constexpr char kUnused = '?';

// A phoneme (or '-', a pause; or '?', kUnused) that begins at a sample and lasts to the next one's
// start, the last one to the end of the recording.
struct PhonemeLabel {
  char symbol;
  std::int32_t start;  // samples

  friend bool operator==(const PhonemeLabel&, const PhonemeLabel&) = default;
};

// One spoken sentence: 16 bit, mono, 22050 Hz, with what is said when. The labels begin at sample 0
// and ascend.
struct Utterance {
  std::string text;   // as given to the synthesiser
  std::string voice;  // which synthesiser and voice
  std::vector<PhonemeLabel> labels;
  std::vector<std::int16_t> samples;
  // One a syllable where the language has tones, else empty: the digits 1 to 5 that the dictionary
  // marks the syllables with, those that were said, and where in the phonemes without pauses each
  // syllable begins.
  std::string tones = {};
  std::string spoken_tones = {};
  std::vector<std::int32_t> syllables = {};
};

// The phonemes alone; pauses and unused stretches left out.
std::string PhonemesOf(const Utterance& utterance);

}  // namespace veral3::training
