#include "training/augment/Pieces.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <string>
#include <utility>

#include "training/augment/Padding.h"
#include "training/augment/Signal.h"

namespace veral3::training {
namespace {

// Indices of the labels that are phonemes.
std::vector<std::size_t> PhonemeLabels(const Utterance& utterance) {
  std::vector<std::size_t> numbers;
  for (std::size_t i = 0; i < utterance.labels.size(); ++i) {
    if (utterance.labels[i].symbol != '-') numbers.push_back(i);
  }
  return numbers;
}

std::size_t StartOf(const Utterance& utterance, std::size_t label) {
  const std::size_t size = utterance.samples.size();
  if (label >= utterance.labels.size()) return size;
  return std::min(static_cast<std::size_t>(utterance.labels[label].start), size);
}

// What is left beside a piece.
struct Margin {
  std::size_t length = 0;  // samples
  char symbol = '-';
  bool faded = false;
};

// `label`: the one beside the cut, `length` its samples.
Margin MarginOf(char label, std::size_t length, bool may_keep, double keep_chance, Random& random) {
  const double wide = random.Uniform(0.01, 0.04);
  if (label == '-') return {std::min(length, SamplesOf(wide)), '-', false};
  if (may_keep && random.Chance(keep_chance))
    return {std::min(length, SamplesOf(wide)), label, false};
  return {std::min(length, SamplesOf(random.Uniform(0.01, 0.02))), '-', true};
}

// The first `length` samples swell from nothing, by a quarter of a cosine, squared.
void FadeIn(std::span<std::int16_t> samples, std::size_t length) {
  for (std::size_t i = 0; i < std::min(length, samples.size()); ++i) {
    const double turn = std::numbers::pi * static_cast<double>(i) / static_cast<double>(length);
    samples[i] = static_cast<std::int16_t>(std::lround(samples[i] * (0.5 - 0.5 * std::cos(turn))));
  }
}

void FadeOut(std::vector<std::int16_t>& samples, std::size_t length) {
  std::ranges::reverse(samples);
  FadeIn(samples, length);
  std::ranges::reverse(samples);
}

}  // namespace

Utterance PieceOf(const Utterance& utterance, std::span<const WordPlace> words, std::size_t first,
                  std::size_t end, const PieceOptions& options, Random& random) {
  const std::vector<std::size_t> phonemes = PhonemeLabels(utterance);
  const std::size_t first_phoneme = words[first].first;
  const std::size_t end_phoneme = end < words.size() ? words[end].first : phonemes.size();
  const std::size_t first_label = phonemes[first_phoneme];
  const std::size_t end_label = phonemes[end_phoneme - 1] + 1;  // a pause, a phoneme or the end
  const std::size_t begin = StartOf(utterance, first_label);
  const std::size_t stop = StartOf(utterance, end_label);
  const bool may_keep = utterance.tones.empty();

  Margin before;
  if (first_label > 0) {
    before = MarginOf(utterance.labels[first_label - 1].symbol,
                      begin - StartOf(utterance, first_label - 1), may_keep,
                      options.neighbour_chance, random);
  }
  Margin after;
  if (end_label < utterance.labels.size()) {
    after = MarginOf(utterance.labels[end_label].symbol, StartOf(utterance, end_label + 1) - stop,
                     may_keep, options.neighbour_chance, random);
  }

  Utterance piece{.text = {}, .voice = utterance.voice, .labels = {}, .samples = {}};
  for (std::size_t word = first; word < end; ++word) {
    piece.text += (piece.text.empty() ? "" : " ") + words[word].text;
  }
  const std::size_t from = begin - before.length;
  piece.samples.assign(
      utterance.samples.begin() + static_cast<std::ptrdiff_t>(from),
      utterance.samples.begin() + static_cast<std::ptrdiff_t>(stop + after.length));
  constexpr double kClick = 0.002;  // a hard cut is softened, too
  if (before.symbol != '-' || before.faded) {
    FadeIn(piece.samples, before.faded ? before.length : SamplesOf(kClick));
  }
  if (after.symbol != '-' || after.faded) {
    FadeOut(piece.samples, after.faded ? after.length : SamplesOf(kClick));
  }

  if (before.length > 0) piece.labels.push_back({before.symbol, 0});
  for (std::size_t label = first_label; label < end_label; ++label) {
    piece.labels.push_back({utterance.labels[label].symbol,
                            static_cast<std::int32_t>(StartOf(utterance, label) - from)});
  }
  if (after.length > 0) {
    piece.labels.push_back({after.symbol, static_cast<std::int32_t>(stop - from)});
  }
  for (std::size_t i = 0; i < utterance.syllables.size(); ++i) {
    const auto syllable = static_cast<std::size_t>(utterance.syllables[i]);
    if (syllable < first_phoneme || syllable >= end_phoneme) continue;
    piece.tones += utterance.tones[i];
    piece.spoken_tones += utterance.spoken_tones[i];
    piece.syllables.push_back(static_cast<std::int32_t>(syllable - first_phoneme));
  }
  return piece;
}

std::vector<Utterance> CutIntoPieces(const Utterance& utterance, std::span<const WordPlace> words,
                                     const PieceOptions& options, Random& random) {
  std::vector<Utterance> pieces;
  for (std::size_t first = 0; first < words.size();) {
    const auto count =
        static_cast<std::size_t>(random.Between(options.fewest_words, options.most_words));
    const std::size_t end = std::min(first + count, words.size());
    pieces.push_back(PieceOf(utterance, words, first, end, options, random));
    first = end;
  }
  return pieces;
}

Utterance Join(std::span<const Utterance> parts, Random& random) {
  Utterance whole;
  std::size_t phonemes = 0;
  std::size_t half_before = 0;  // of the pause before the part
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const Utterance& part = parts[i];
    const auto [begin, end] = SpeechEnds(part);
    const std::size_t pause = SamplesOf(random.Uniform(0.1, 0.8));
    const std::size_t half_after = pause / 2;
    const Edges edges{.before = i == 0 ? begin : half_before,
                      .after = i + 1 == parts.size() ? part.samples.size() - end : half_after};
    half_before = pause - half_after;
    const Utterance laid = WithEdges(part, edges, random);

    if (i == 0) whole.voice = laid.voice;
    if (!whole.text.empty() && !laid.text.empty()) whole.text += ' ';
    whole.text += laid.text;
    const auto offset = static_cast<std::int32_t>(whole.samples.size());
    for (const PhonemeLabel& label : laid.labels) {
      const bool in_pause =
          label.symbol == '-' && !whole.labels.empty() && whole.labels.back().symbol == '-';
      if (!in_pause) whole.labels.push_back({label.symbol, label.start + offset});
    }
    whole.samples.insert(whole.samples.end(), laid.samples.begin(), laid.samples.end());
    whole.tones += laid.tones;
    whole.spoken_tones += laid.spoken_tones;
    for (const std::int32_t syllable : laid.syllables) {
      whole.syllables.push_back(syllable + static_cast<std::int32_t>(phonemes));
    }
    phonemes += PhonemesOf(laid).size();
  }
  return whole;
}

Utterance Paragraph(std::span<const Utterance> all, std::size_t number, std::size_t most_phonemes,
                    Random& random) {
  std::vector<Utterance> parts = {all[number]};
  std::size_t phonemes = PhonemesOf(all[number]).size();
  std::vector<std::size_t> same_voice;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (i != number && all[i].voice == all[number].voice) same_voice.push_back(i);
  }
  random.Shuffle(std::span(same_voice));
  for (const std::size_t i : same_voice) {
    const std::size_t more = PhonemesOf(all[i]).size();
    if (more == 0 || phonemes + more > most_phonemes) continue;
    parts.push_back(all[i]);
    phonemes += more;
  }
  return Join(parts, random);
}

}  // namespace veral3::training
