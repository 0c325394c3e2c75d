#include "training/speech/JapaneseEvents.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace veral3::training {
namespace {

constexpr std::string_view kVowels = "aeiou";

// A compact symbol that espeak-ng 1.51 calls otherwise. All others have their own name.
struct Spelling {
  char symbol;
  std::string_view feed;
};
constexpr auto kSpellings = std::to_array<Spelling>({
    {'X', "t_s"},
    {'Y', "t_s\\"},
    {'f', "p\\"},
    {'c', "C"},
    {'C', "s\\"},
    {'r', "r`"},
    {'Z', "d_z\\"},
});
constexpr std::string_view kUnchanged = "aeioubpdtkghsmnwz";

// What espeak-ng makes of a moraic nasal, depending on what follows.
constexpr auto kNasalEvents = std::to_array<std::string_view>({"N\\", "N", "n", "m", "u~", "i~"});

bool IsVowel(char symbol) { return kVowels.find(symbol) != std::string_view::npos; }
bool IsNasal(char symbol) { return symbol == 'N' || symbol == 'M'; }

std::string FeedOf(std::string_view compact, std::size_t place) {
  const char symbol = compact[place];
  const char next = place + 1 < compact.size() ? compact[place + 1] : '\0';
  if (symbol == 'M') return "m";
  if (symbol == 'N') {
    constexpr std::string_view kDental = "tdnrXYZz";
    return next != '\0' && kDental.find(next) != std::string_view::npos ? "n" : "N\\";
  }
  if (symbol == 'j') {
    const bool glide = place > 0 && !IsVowel(compact[place - 1]) && !IsNasal(compact[place - 1]);
    return glide ? "_j" : "j";
  }
  const auto spelling = std::ranges::find(kSpellings, symbol, &Spelling::symbol);
  if (spelling != kSpellings.end()) return std::string(spelling->feed);
  if (kUnchanged.find(symbol) != std::string_view::npos) return std::string(1, symbol);
  throw std::runtime_error("no Japanese phoneme [" + std::string(1, symbol) + "] in [" +
                           std::string(compact) + "]");
}

bool Speaks(std::string_view event, const JapaneseUnit& unit) {
  // A long vowel's event bears the name of the short one.
  const std::string_view feed = unit.feed;
  if (event == feed || (feed.ends_with(':') && event == feed.substr(0, feed.size() - 1))) {
    return true;
  }
  if (event == "v" && feed == "b") return true;
  return unit.symbols == "n" && std::ranges::find(kNasalEvents, event) != kNasalEvents.end();
}

bool IsPause(std::string_view event) { return event == "_" || event == "_:" || event == "_!"; }

// Whether nothing was spoken: the event lengthens the phoneme before.
bool IsMark(std::string_view event) { return event == "|" || event == "_|" || event == ";"; }

}  // namespace

std::vector<JapaneseUnit> JapaneseUnits(const JapaneseReading& reading) {
  const std::string& compact = reading.compact;
  std::vector<JapaneseUnit> units;
  for (std::size_t i = 0; i < compact.size(); ++i) {
    const char symbol = compact[i];
    JapaneseUnit unit{FeedOf(compact, i), std::string(1, IsNasal(symbol) ? 'n' : symbol)};
    const bool twice = i + 1 < compact.size() && compact[i + 1] == symbol;
    const bool same_syllable =
        std::ranges::find(reading.starts, static_cast<int>(i + 1)) == reading.starts.end();
    if (twice && IsVowel(symbol) && same_syllable) {
      unit.feed += ':';
      unit.symbols += symbol;
      ++i;
    } else if (twice && !IsVowel(symbol) && !IsNasal(symbol)) {
      unit.first_of_two = true;
    }
    units.push_back(std::move(unit));
  }
  if (!units.empty()) units.back().ends_word = true;
  return units;
}

std::string JapaneseFeed(std::span<const JapaneseUnit> units) {
  std::string feed;
  for (std::size_t i = 0; i < units.size(); ++i) {
    feed += units[i].feed;
    if (i + 1 == units.size()) break;
    const bool plosive = units[i].feed == "t" || units[i].feed == "d";
    if (units[i].ends_word) {
      feed += ' ';
    } else if (plosive && !IsVowel(units[i + 1].feed[0]) && units[i + 1].feed[0] != '_') {
      feed += '|';  // t and s would spell an affricate
    }
  }
  return feed;
}

std::vector<PhonemeLabel> JapaneseLabels(std::span<const PhonemeEvent> events,
                                         std::span<const JapaneseUnit> units,
                                         std::int32_t num_samples) {
  std::vector<PhonemeLabel> labels = {{'-', 0}};
  const auto append = [&](char symbol, std::int32_t start) {
    if (labels.back().symbol == '-' && (symbol == '-' || labels.back().start >= start)) {
      labels.back().symbol = symbol;  // a pause goes on, or has no length
    } else {
      labels.push_back({symbol, start});
    }
  };
  std::size_t unit = 0;
  for (std::size_t i = 0; i < events.size(); ++i) {
    const PhonemeEvent& event = events[i];
    if (IsMark(event.name)) continue;
    if (IsPause(event.name)) {
      append('-', event.start);
      continue;
    }
    if (unit == units.size() || !Speaks(event.name, units[unit])) {
      throw std::runtime_error("[" + event.name + "] was spoken where [" +
                               (unit == units.size() ? "nothing" : units[unit].feed) +
                               "] was asked for");
    }
    const std::string& symbols = units[unit++].symbols;
    const std::int32_t end = i + 1 < events.size() ? events[i + 1].start : num_samples;
    append(symbols[0], event.start);
    if (symbols.size() == 2) append(symbols[1], event.start + (end - event.start) / 2);
  }
  if (unit != units.size()) throw std::runtime_error("[" + units[unit].feed + "] was not spoken");
  return labels;
}

std::vector<std::size_t> LabelsOfUnits(std::span<const PhonemeLabel> labels,
                                       std::span<const JapaneseUnit> units) {
  std::vector<std::size_t> places;
  std::size_t label = 0;
  for (const JapaneseUnit& unit : units) {
    while (label < labels.size() && labels[label].symbol == '-') ++label;
    places.push_back(label);
    label += unit.symbols.size();
  }
  return places;
}

void HalveLongVowels(Utterance& utterance, std::span<const JapaneseUnit> units) {
  const std::vector<std::size_t> places = LabelsOfUnits(utterance.labels, units);
  for (std::size_t u = 0; u < units.size(); ++u) {
    if (units[u].symbols.size() != 2) continue;
    const std::size_t label = places[u];
    const std::int32_t end = label + 2 < utterance.labels.size()
                                 ? utterance.labels[label + 2].start
                                 : static_cast<std::int32_t>(utterance.samples.size());
    const std::int32_t start = utterance.labels[label].start;
    utterance.labels[label + 1].start = start + (end - start) / 2;
  }
}

}  // namespace veral3::training
