#include "training/speech/PhonemeEvents.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "signal/CWaveFrameDef.h"

namespace veral3::training {
namespace {

constexpr std::string_view kSyllabic = "lnm";  // consonants that carry a syllable after '@'

// The largest magnitude of a stretch.
int PeakOf(std::span<const std::int16_t> samples) {
  int peak = 0;
  for (const std::int16_t sample : samples) peak = std::max(peak, std::abs(int{sample}));
  return peak;
}

}  // namespace

std::vector<int> SharesOf(std::string_view symbols) {
  switch (symbols.size()) {
    case 0:
      return {};
    case 1:
      return {100};
    case 2:
      if (symbols[0] == '@' && kSyllabic.find(symbols[1]) != std::string_view::npos) {
        return {40, 60};
      }
      return {55, 45};
    default: {
      std::vector<int> shares(symbols.size(), 60 / static_cast<int>(symbols.size() - 1));
      shares[0] = 40;
      return shares;
    }
  }
}

EventTable::EventTable(std::vector<EventReading> readings) : m_readings(std::move(readings)) {
  std::ranges::sort(m_readings, {}, &EventReading::name);
  const auto twice = std::ranges::adjacent_find(m_readings, {}, &EventReading::name);
  if (twice != m_readings.end()) {
    throw std::runtime_error("event [" + twice->name + "] stands twice in its table");
  }
}

const EventReading* EventTable::Find(std::string_view name) const {
  const auto place = std::ranges::lower_bound(m_readings, name, {}, &EventReading::name);
  return place != m_readings.end() && place->name == name ? &*place : nullptr;
}

bool EventTable::Knows(std::string_view name) const { return Find(name) != nullptr; }

std::string_view EventTable::SymbolsOf(std::string_view name) const {
  const EventReading* reading = Find(name);
  if (reading == nullptr) {
    throw std::runtime_error("no phoneme is known for the event [" + std::string(name) + "]");
  }
  return reading->symbols;
}

std::vector<PhonemeLabel> LabelsFromEvents(std::span<const PhonemeEvent> events,
                                           const EventTable& table, std::int32_t num_samples) {
  std::vector<PhonemeLabel> labels = {{'-', 0}};
  const auto append = [&](char symbol, std::int32_t start) {
    if (labels.back().symbol == '-' && (symbol == '-' || labels.back().start >= start)) {
      labels.back().symbol = symbol;  // a pause goes on, or has no length
    } else {
      labels.push_back({symbol, start});
    }
  };
  for (std::size_t i = 0; i < events.size(); ++i) {
    std::string_view symbols = table.SymbolsOf(events[i].name);
    const std::int32_t start = events[i].start;
    const std::int32_t end = i + 1 < events.size() ? events[i + 1].start : num_samples;
    // Before an r the rhotic vowel's own colouring is that r.
    if (symbols.size() > 1 && symbols.back() == 'c' && i + 1 < events.size() &&
        table.SymbolsOf(events[i + 1].name) == "r") {
      symbols.remove_suffix(1);
    }
    const std::vector<int> shares = SharesOf(symbols);
    int before = 0;
    for (std::size_t k = 0; k < symbols.size(); ++k) {
      append(symbols[k],
             start + static_cast<std::int32_t>(std::int64_t{end - start} * before / 100));
      before += shares[k];
    }
  }
  return labels;
}

void TakeClosures(std::vector<PhonemeLabel>& labels, std::span<const std::int16_t> samples,
                  std::string_view stops) {
  constexpr std::int32_t kStep = kSampleRate / 1000;  // 1 ms
  const double silence = 0.015 * PeakOf(samples);
  for (std::size_t i = 1; i < labels.size(); ++i) {
    if (stops.find(labels[i].symbol) == std::string_view::npos) continue;
    const PhonemeLabel& before = labels[i - 1];
    const std::int32_t length = labels[i].start - before.start;
    const std::int32_t most = before.symbol == '-'
                                  ? std::min(length, 50 * kSampleRate / 1000)
                                  : std::min(length * 7 / 10, 120 * kSampleRate / 1000);
    std::int32_t moved = 0;
    while (moved + kStep <= most &&
           PeakOf(samples.subspan(static_cast<std::size_t>(labels[i].start - moved - kStep),
                                  static_cast<std::size_t>(kStep))) < silence) {
      moved += kStep;
    }
    labels[i].start -= moved;
  }
}

}  // namespace veral3::training
