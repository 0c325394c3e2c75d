#include "training/measure/Exchanges.h"

#include <algorithm>
#include <map>
#include <utility>

#include "signal/CWaveFrameDef.h"

namespace veral3::training {
namespace {

// Takes out the samples from `begin` to `end`; what is left meets in silence.
void CutOut(std::vector<std::int16_t>& samples, std::size_t begin, std::size_t end) {
  constexpr std::size_t kFade = kSampleRate / 500;
  const std::size_t before = std::min(kFade, begin);
  for (std::size_t i = 0; i < before; ++i) {
    std::int16_t& sample = samples[begin - 1 - i];
    sample = static_cast<std::int16_t>(sample * static_cast<int>(i) / static_cast<int>(before));
  }
  const std::size_t after = std::min(kFade, samples.size() - end);
  for (std::size_t i = 0; i < after; ++i) {
    std::int16_t& sample = samples[end + i];
    sample = static_cast<std::int16_t>(sample * static_cast<int>(i) / static_cast<int>(after));
  }
  samples.erase(samples.begin() + static_cast<std::ptrdiff_t>(begin),
                samples.begin() + static_cast<std::ptrdiff_t>(end));
}

void Drop(Utterance& utterance, std::size_t label) {
  auto& labels = utterance.labels;
  const std::int32_t begin = labels[label].start;
  const std::int32_t end = label + 1 < labels.size()
                               ? labels[label + 1].start
                               : static_cast<std::int32_t>(utterance.samples.size());
  CutOut(utterance.samples, static_cast<std::size_t>(begin), static_cast<std::size_t>(end));
  for (std::size_t i = label + 1; i < labels.size(); ++i) labels[i].start -= end - begin;
}

}  // namespace

std::vector<Exchange> EveryOtherEquallyOften(std::span<const std::string> phonemes,
                                             std::string_view symbols, std::size_t each,
                                             Random& random) {
  std::vector<std::vector<std::pair<std::size_t, std::size_t>>> places(symbols.size());
  for (std::size_t u = 0; u < phonemes.size(); ++u) {
    for (std::size_t p = 0; p < phonemes[u].size(); ++p) {
      const auto symbol = symbols.find(phonemes[u][p]);
      if (symbol != std::string_view::npos) places[symbol].emplace_back(u, p);
    }
  }
  std::vector<Exchange> exchanges;
  for (std::size_t said = 0; said < symbols.size(); ++said) {
    auto& own = places[said];
    if (each == 0 || own.size() < each) continue;
    random.Shuffle(std::span(own));
    std::size_t next = 0;  // goes round, so that all occurrences are used alike
    for (std::size_t expected = 0; expected < symbols.size(); ++expected) {
      if (expected == said) continue;
      for (std::size_t i = 0; i < each; ++i) {
        const auto& [utterance, phoneme] = own[next++ % own.size()];
        exchanges.push_back({utterance, phoneme, symbols[expected], false, expected});
      }
    }
  }
  return exchanges;
}

std::vector<std::vector<Exchange>> InRounds(std::span<const Exchange> exchanges,
                                            std::size_t distance) {
  std::map<std::size_t, std::vector<std::vector<Exchange>>> of_utterance;
  for (const Exchange& exchange : exchanges) {
    auto& rounds = of_utterance[exchange.utterance];
    const auto has_room = [&](const std::vector<Exchange>& round) {
      return std::ranges::all_of(round, [&](const Exchange& other) {
        return std::max(other.phoneme, exchange.phoneme) -
                   std::min(other.phoneme, exchange.phoneme) >=
               distance;
      });
    };
    auto round = std::ranges::find_if(rounds, has_room);
    if (round == rounds.end()) round = rounds.emplace(rounds.end());
    round->push_back(exchange);
  }
  std::vector<std::vector<Exchange>> all;
  for (auto& [utterance, rounds] : of_utterance) {
    std::ranges::move(rounds, std::back_inserter(all));
  }
  return all;
}

Utterance WithExchanges(const Utterance& utterance, std::span<const Exchange> exchanges) {
  Utterance changed = utterance;
  std::vector<std::size_t> label_of;  // of each phoneme
  for (std::size_t i = 0; i < utterance.labels.size(); ++i) {
    if (utterance.labels[i].symbol != '-') label_of.push_back(i);
  }
  for (const Exchange& exchange : exchanges) {
    const std::size_t label = label_of[exchange.phoneme];
    changed.labels[label].symbol = exchange.expected;
    if (exchange.dropped) Drop(changed, label);
  }
  return changed;
}

}  // namespace veral3::training
