#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "training/corpus/Utterance.h"

// From a synthesiser's phoneme events to the phonemes of a language's set.
//
// A language is one table (EnglishEvents.cpp): for every event name the symbols that it stands for.
// Several symbols share the event's time in given proportions. An event that the table lacks is an
// error that names it, so that no sound is ever mislabelled in silence.
namespace veral3::training {

// What a synthesiser says that it speaks, and from which sample on.
struct PhonemeEvent {
  std::string name;
  std::int32_t start;  // samples
};

// The symbols of an event that is near no phoneme of the set.
inline constexpr std::string_view kUnusedSymbols = "?";
static_assert(kUnusedSymbols[0] == kUnused);

struct EventReading {
  std::string name;          // of the event
  std::string_view symbols;  // "" extends the phoneme before, "-" is a pause
};

// How the time of an event is divided among its symbols, in hundredths: 55/45 for a diphthong,
// 40/30/30 for three, 40/60 for a syllabic consonant (its vowel is short).
std::vector<int> SharesOf(std::string_view symbols);

class EventTable {
 public:
  explicit EventTable(std::vector<EventReading> readings);

  // The symbols of an event; throws std::runtime_error with the name when there is no such event.
  std::string_view SymbolsOf(std::string_view name) const;
  bool Knows(std::string_view name) const;

 private:
  const EventReading* Find(std::string_view name) const;
  std::vector<EventReading> m_readings;  // by name
};

// The labels of a recording of `num_samples` samples. Adjoining pauses become one; what precedes
// the first event is a pause.
std::vector<PhonemeLabel> LabelsFromEvents(std::span<const PhonemeEvent> events,
                                           const EventTable& table, std::int32_t num_samples);

// Moves the start of every stop and affricate in `stops` back over the near-silence before it: the
// synthesiser reports them after their closure. Near-silence stays below 1.5 % of the peak; at most
// 120 ms and 70 % of the phoneme before are taken, at most 50 ms of a pause.
void TakeClosures(std::vector<PhonemeLabel>& labels, std::span<const std::int16_t> samples,
                  std::string_view stops);

}  // namespace veral3::training
