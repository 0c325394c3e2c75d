#include "training/speech/ChineseEvents.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <string>

namespace veral3::training {
namespace {

// What an event of espeak-ng 1.51's pinyin voice may stand for, the likelier reading first.
struct ChineseReading {
  std::string_view name;
  std::string_view first;
  std::optional<std::string_view> second = std::nullopt;
};

constexpr auto kReadings = std::to_array<ChineseReading>({
    // Consonants.
    {"p", "b"},
    {"ph", "p"},
    {"m", "m"},
    {"f", "f"},
    {"t", "d"},
    {"th", "t"},
    {"n", "n"},
    {"l", "l"},
    {"k", "g"},
    {"kh", "k"},
    {"X", "h"},
    {"tS;", "j"},
    {"tS;h", "q"},
    {"S;", "x"},
    {"ts.", "Z"},
    {"ts.h", "C"},
    {"s.", "S"},
    {"z.", "r"},
    {"ts", "z"},
    {"tsh", "c"},
    {"s", "s"},
    {"N", "M"},
    {"@r", "R"},
    // Vowels.
    {"a", "a"},
    {"A", "a"},
    {"o", "o", "uo"},
    {"o-", "@", ""},
    {"@", "@"},
    {"E", "E"},
    {"ai", "ai"},
    {"ei", "Ei", "@i"},
    {"Au", "au"},
    {"ou", "ou"},
    {"i", "i"},
    {"i.", ")"},
    {"i[", "("},
    {"iE", "iE", "E"},
    {"iA", "ia", "a"},
    {"iou", "iou", "ou"},
    {"io", "io", "o"},
    {"u", "u", "io"},
    {"ua", "ua"},
    {"uo", "uo"},
    {"uai", "uai"},
    {"uei", "u@i"},
    {"u@", "u", "@"},
    {"y", "U", "io"},
    {"yE", "UE"},
    {"y&", "Ua"},
    {"y@", "U"},
    {"yi", "U"},
    {"yu", "io"},
    {"ong", "oM"},
    // Glides.
    {"j", "", "i"},
    {"w", "u", ""},
    {";", ""},
});

constexpr std::array<std::string_view, 3> kPauses = {"_:", "_", "_!"};
constexpr std::string_view kBoundary = "_|";

bool IsPause(const PhonemeEvent& event) {
  return std::ranges::find(kPauses, event.name) != kPauses.end();
}

const ChineseReading& ReadingOf(const PhonemeEvent& event) {
  const auto reading = std::ranges::find(kReadings, event.name, &ChineseReading::name);
  if (reading == kReadings.end()) {
    throw std::runtime_error("no phoneme is known for the event [" + event.name + "]");
  }
  return *reading;
}

// Which symbols of the wanted phonemes each event takes: by trying readings, first ones first, and
// going back where the rest does not fit. What failed once is not tried again.
class Matcher {
 public:
  Matcher(std::span<const PhonemeEvent* const> events, const SpokenSyllables& spoken)
      : m_events(events),
        m_spoken(spoken),
        m_failed((events.size() + 1) * (spoken.phonemes.size() + 1), 0) {}

  // The symbols of every event; throws where there is no way.
  std::vector<std::string_view> Match() {
    std::vector<std::string_view> taken;
    if (!MatchFrom(0, 0, taken)) {
      const std::string event = m_furthest < m_events.size() ? m_events[m_furthest]->name : "end";
      throw std::runtime_error("the event [" + event + "], number " + std::to_string(m_furthest) +
                               ", does not fit the phonemes [" + std::string(m_spoken.phonemes) +
                               "]");
    }
    return taken;
  }

 private:
  bool MatchFrom(std::size_t event, std::size_t place, std::vector<std::string_view>& taken) {
    m_furthest = std::max(m_furthest, event);
    const std::string_view rest = m_spoken.phonemes.substr(place);
    if (event == m_events.size()) return rest.empty();
    char& failed = m_failed[event * (m_spoken.phonemes.size() + 1) + place];
    if (failed != 0) return false;
    const ChineseReading& reading = ReadingOf(*m_events[event]);
    const auto fits = [&](std::string_view symbols) {
      if (!rest.starts_with(symbols) || CrossesSyllable(place, symbols.size())) return false;
      taken.push_back(symbols);
      if (MatchFrom(event + 1, place + symbols.size(), taken)) return true;
      taken.pop_back();
      return false;
    };
    if (fits(reading.first) || (reading.second && fits(*reading.second))) return true;
    failed = 1;
    return false;
  }

  // An event belongs to one syllable.
  bool CrossesSyllable(std::size_t place, std::size_t length) const {
    return std::ranges::any_of(m_spoken.starts, [&](std::int32_t start) {
      const auto boundary = static_cast<std::size_t>(start);
      return boundary > place && boundary < place + length;
    });
  }

  std::span<const PhonemeEvent* const> m_events;
  const SpokenSyllables& m_spoken;
  std::vector<char> m_failed;
  std::size_t m_furthest = 0;
};

}  // namespace

std::vector<PhonemeLabel> ChineseLabels(std::span<const PhonemeEvent> events,
                                        const SpokenSyllables& spoken, std::int32_t num_samples) {
  std::vector<const PhonemeEvent*> sounds;
  for (const PhonemeEvent& event : events) {
    if (!IsPause(event) && event.name != kBoundary) sounds.push_back(&event);
  }
  const std::vector<std::string_view> symbols_of = Matcher(sounds, spoken).Match();

  std::vector<PhonemeLabel> labels = {{'-', 0}};
  const auto append = [&](char symbol, std::int32_t start) {
    if (labels.back().symbol == '-' && (symbol == '-' || labels.back().start >= start)) {
      labels.back().symbol = symbol;  // a pause goes on, or has no length
    } else {
      labels.push_back({symbol, start});
    }
  };
  std::size_t sound = 0;
  std::int32_t place = 0;              // in the phonemes
  std::int32_t waiting = num_samples;  // where time begins that belongs to the next phoneme
  for (std::size_t i = 0; i < events.size(); ++i) {
    const PhonemeEvent& event = events[i];
    if (IsPause(event)) {
      waiting = num_samples;
      append('-', event.start);
      continue;
    }
    if (event.name == kBoundary) {
      waiting = std::min(waiting, event.start);
      continue;
    }
    const std::string_view symbols = symbols_of[sound++];
    if (symbols.empty()) {
      if (std::ranges::binary_search(spoken.starts, place))
        waiting = std::min(waiting, event.start);
      continue;
    }
    const std::int32_t start = std::min(waiting, event.start);
    const std::int32_t end = i + 1 < events.size() ? events[i + 1].start : num_samples;
    waiting = num_samples;
    const std::vector<int> shares = SharesOf(symbols);
    int before = 0;
    for (std::size_t k = 0; k < symbols.size(); ++k) {
      append(symbols[k],
             start + static_cast<std::int32_t>(std::int64_t{end - start} * before / 100));
      before += shares[k];
    }
    place += static_cast<std::int32_t>(symbols.size());
  }
  return labels;
}

}  // namespace veral3::training
