#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "training/corpus/Utterance.h"
#include "training/speech/PhonemeEvents.h"

// Japanese pronunciations as espeak-ng's voice "ja" takes them in phonemes ([[...]]), and its
// events back as symbols of the Japanese set. Text is never fed: that voice misreads one written
// word in six.
//
//   auto units = JapaneseUnits({"gakkoo", {0, 3}});
//   espeak.Speak("[[" + JapaneseFeed(units) + "]]");       // [[gakko:]]
//   auto labels = JapaneseLabels(spoken.events, units, num_samples);
namespace veral3::training {

// A pronunciation as the dictionary has it: compact, moraic nasals N and M, and where its syllables
// start in it.
struct JapaneseReading {
  std::string compact;
  std::vector<int> starts;
};

// What is one event of the synthesiser: a phoneme, or both halves of a long vowel.
struct JapaneseUnit {
  std::string feed;           // in espeak-ng's names
  std::string symbols;        // of the set; two equal ones for a long vowel
  bool ends_word = false;     // last one of its word
  bool first_of_two = false;  // first half of a doubled consonant
};

// Throws std::runtime_error, which names it, for a symbol that Japanese pronunciations don't have.
std::vector<JapaneseUnit> JapaneseUnits(const JapaneseReading& reading);

// The units in the synthesiser's notation, words apart by blanks.
std::string JapaneseFeed(std::span<const JapaneseUnit> units);

// The labels of a recording in which the units were spoken, a long vowel's halves of equal length.
// Throws std::runtime_error where the events are not those of the units.
std::vector<PhonemeLabel> JapaneseLabels(std::span<const PhonemeEvent> events,
                                         std::span<const JapaneseUnit> units,
                                         std::int32_t num_samples);

// Index of the (first) label of every unit.
std::vector<std::size_t> LabelsOfUnits(std::span<const PhonemeLabel> labels,
                                       std::span<const JapaneseUnit> units);

// Puts the start of a long vowel's second half in its middle: a closure may have taken of its end.
void HalveLongVowels(Utterance& utterance, std::span<const JapaneseUnit> units);

// Phonemes whose closure espeak-ng leaves with the phoneme before.
inline constexpr std::string_view kJapaneseStops = "pbtdkgXYZ";

}  // namespace veral3::training
