#include "training/speech/PhoneInventory.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <utility>

#include "training/common/LanguageName.h"
namespace veral3::training {
namespace {

std::string_view SymbolsIn(LanguageType language, const PhoneReading& reading) {
  switch (language) {
    case kLanguageEnglish:
      return reading.english;
    case kLanguageChinese:
      return reading.chinese;
    case kLanguageJapanese:
      return reading.japanese;
  }
  throw std::runtime_error("no such language");
}

// The reading of the first of two equal phones: Japanese doubles p, t, k, s and n.
std::string_view DoubledIn(LanguageType language, std::span<const PhoneReading> readings,
                           const PhoneReading& phone) {
  constexpr std::string_view kDoubled = "ptksn";
  if (language != kLanguageJapanese) return kUnusedSymbols;
  const auto onset =
      std::ranges::find(readings, std::string(phone.name) + "_onset", &PhoneReading::name);
  const std::string_view symbols = onset != readings.end() ? onset->japanese : phone.japanese;
  const bool doubles = symbols.size() == 1 && kDoubled.find(symbols) != std::string_view::npos;
  return doubles ? symbols : kUnusedSymbols;
}

bool IsConsonant(PhoneKind kind) {
  return kind != PhoneKind::kPause && kind != PhoneKind::kVowel && kind != PhoneKind::kPlace;
}

EventTable TableIn(LanguageType language, std::span<const PhoneReading> readings,
                   std::optional<LanguageType> native) {
  std::vector<EventReading> events;
  for (const PhoneReading& reading : readings) {
    const std::string_view symbols = SymbolsIn(language, reading);
    events.push_back({std::string(reading.name), symbols});
    if (language == native || !IsConsonant(reading.kind)) continue;
    events.push_back(
        {std::string(reading.name) + "_double", DoubledIn(language, readings, reading)});
  }
  return EventTable(std::move(events));
}

// The names of the place of `kind` between its neighbours, the most particular first.
std::vector<std::string_view> PlacesOf(PhoneKind before, PhoneKind kind, PhoneKind after) {
  using enum PhoneKind;
  const bool into_vowel = after == kVowel || after == kGlide;
  switch (kind) {
    case kVoicelessPlosive:
      if (before == kSibilant || !(into_vowel || after == kLateral || after == kRhotic)) return {};
      if (before == kVowel) return {"_medial", "_onset"};
      return {"_onset"};
    case kRhotic:
      if (after != kVowel) return {"_coda"};
      if (before == kVowel) return {"_flap"};
      return {};
    case kGlide:
    case kGlottal:
      if (after != kVowel) return {"_coda"};
      return {};
    case kNasal:
    case kLateral:
      if (!into_vowel) return {"_coda"};
      return {};
    default:
      return {};
  }
}

}  // namespace

PhoneInventory::PhoneInventory(std::vector<PhoneReading> readings,
                               std::optional<LanguageType> native)
    : m_readings(std::move(readings)) {
  std::ranges::sort(m_readings, {}, &PhoneReading::name);
  for (const LanguageRow& row : Languages()) {
    m_tables.push_back(TableIn(row.language, m_readings, native));
  }
}

const EventTable& PhoneInventory::TableOf(LanguageType language) const {
  return m_tables[PlaceOf(RowOf(language))];
}

PhoneKind PhoneInventory::KindOf(std::string_view name) const {
  const auto place = std::ranges::lower_bound(m_readings, name, {}, &PhoneReading::name);
  if (place == m_readings.end() || place->name != name) {
    throw std::runtime_error("no phoneme is known for the event [" + std::string(name) + "]");
  }
  return place->kind;
}

void PhoneInventory::NamePlaces(std::vector<PhonemeEvent>& events, LanguageType language) const {
  const EventTable& table = TableOf(language);
  std::vector<PhoneKind> kinds = {PhoneKind::kPause};
  for (const PhonemeEvent& event : events) kinds.push_back(KindOf(event.name));
  kinds.push_back(PhoneKind::kPause);
  for (std::size_t i = 0; i < events.size(); ++i) {
    std::string& name = events[i].name;
    const bool doubled = i + 1 < events.size() && events[i + 1].name == name;
    std::vector<std::string_view> places = PlacesOf(kinds[i], kinds[i + 1], kinds[i + 2]);
    if (doubled) places.insert(places.begin(), "_double");
    const auto place = std::ranges::find_if(
        places, [&](std::string_view p) { return table.Knows(name + std::string(p)); });
    if (place != places.end()) name += *place;
  }
}

}  // namespace veral3::training
