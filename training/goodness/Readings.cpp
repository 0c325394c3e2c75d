#include "training/goodness/Readings.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "signal/CWaveFrameDef.h"

namespace veral3::training {
namespace {

using Samples = std::vector<std::int16_t>;

std::size_t SamplesOf(double seconds) {
  return static_cast<std::size_t>(std::lround(seconds * kSampleRate));
}

std::vector<std::string> WordsOf(const std::string& sentence) {
  std::istringstream stream(sentence);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// ASCII marks at the end say nothing; the texts of the other languages have none.
std::string WithoutMarks(std::string word) {
  while (!word.empty() && std::string_view(".,?!").find(word.back()) != std::string_view::npos) {
    word.pop_back();
  }
  return word;
}

Samples Joined(const Samples& first, double gap, const Samples& second) {
  Samples all = first;
  all.insert(all.end(), SamplesOf(gap), 0);
  all.insert(all.end(), second.begin(), second.end());
  return all;
}

// Where speech begins and ends; the whole recording where the labels do not tell.
std::pair<std::size_t, std::size_t> SpeechOf(const Utterance& utterance) {
  const auto is_speech = [](const PhonemeLabel& label) { return label.symbol != '-'; };
  const auto first = std::ranges::find_if(utterance.labels, is_speech);
  if (first == utterance.labels.end()) return {0, utterance.samples.size()};
  const auto last = utterance.labels.back();
  const std::size_t end =
      last.symbol == '-' ? static_cast<std::size_t>(last.start) : utterance.samples.size();
  return {static_cast<std::size_t>(first->start), end};
}

// The recording up to a place, faded out over 5 ms.
Samples CutAt(const Samples& samples, std::size_t place) {
  Samples cut(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(place));
  const std::size_t fade = std::min(SamplesOf(0.005), cut.size());
  for (std::size_t i = 0; i < fade; ++i) {
    std::int16_t& sample = cut[cut.size() - 1 - i];
    sample = static_cast<std::int16_t>(sample * static_cast<int>(i) / static_cast<int>(fade));
  }
  return cut;
}

Samples SamplesOfLabel(const Utterance& utterance, std::size_t label) {
  const auto begin = utterance.samples.begin() + utterance.labels[label].start;
  const auto end = label + 1 < utterance.labels.size()
                       ? utterance.samples.begin() + utterance.labels[label + 1].start
                       : utterance.samples.end();
  return {begin, end};
}

// Over 2 ms, so that a cut is not heard as a click.
void FadeEnds(Samples& samples) {
  const std::size_t fade = std::min(SamplesOf(0.002), samples.size() / 2);
  for (std::size_t i = 0; i < fade; ++i) {
    for (std::int16_t* x : {&samples[i], &samples[samples.size() - 1 - i]}) {
      *x = static_cast<std::int16_t>(*x * static_cast<int>(i) / static_cast<int>(fade));
    }
  }
}

// A part of a recording: half of it at least.
Samples PartOf(const Utterance& utterance, Random& random) {
  const auto [begin, end] = SpeechOf(utterance);
  const double share = random.Uniform(0.5, 1.0);
  const auto length = static_cast<std::size_t>(share * static_cast<double>(end - begin));
  return CutAt(utterance.samples, begin + length);
}

// Up to three pauses before words. Speech is not faded: stops and vowels may be cut hard, as by
// somebody who hesitates.
Samples WithPauses(const Samples& samples, std::span<const std::int32_t> word_starts,
                   Random& random) {
  std::vector<std::int32_t> places;
  for (std::size_t word = 1; word < word_starts.size(); ++word) {
    if (random.Chance(0.4) && places.size() < 3) places.push_back(word_starts[word]);
  }
  Samples out;
  std::size_t done = 0;
  for (const std::int32_t place : places) {
    const auto until = std::min(static_cast<std::size_t>(place), samples.size());
    out.insert(out.end(), samples.begin() + static_cast<std::ptrdiff_t>(done),
               samples.begin() + static_cast<std::ptrdiff_t>(until));
    out.insert(out.end(), SamplesOf(random.Uniform(0.05, 0.6)), 0);
    done = until;
  }
  out.insert(out.end(), samples.begin() + static_cast<std::ptrdiff_t>(done), samples.end());
  return out;
}

Samples Rounded(std::span<const float> signal) {
  Samples samples;
  for (const float x : signal) {
    samples.push_back(static_cast<std::int16_t>(std::lround(std::clamp(x, -32000.0F, 32000.0F))));
  }
  return samples;
}

std::vector<float> AnyLength(Random& random) {
  return std::vector<float>(SamplesOf(random.Uniform(0.6, 4.5)), 0.0F);
}

// Digital silence, or the faint hiss of an idle input.
Samples Silence(Random& random) {
  std::vector<float> signal = AnyLength(random);
  if (random.Chance(0.7)) AddNoise(signal, random.Uniform(), random.Uniform(0.5, 20.0), random);
  return Rounded(signal);
}

// Steady noise, or noise that comes and goes.
Samples Noise(Random& random) {
  std::vector<float> signal = AnyLength(random);
  AddNoise(signal, random.Uniform(), std::pow(10.0, random.Uniform(1.8, 3.8)), random);
  if (random.Chance(0.5)) {
    const double rate = random.Uniform(0.5, 6.0);  // Hz
    for (std::size_t i = 0; i < signal.size(); ++i) {
      const double turn = 2.0 * std::numbers::pi * rate * static_cast<double>(i) / kSampleRate;
      signal[i] *= static_cast<float>(0.5 - 0.5 * std::cos(turn));
    }
  }
  return Rounded(signal);
}

// One to four tones, held or as beeps, over a little noise.
Samples Tones(Random& random) {
  std::vector<float> signal = AnyLength(random);
  const int count = random.Between(1, 4);
  for (int tone = 0; tone < count; ++tone) {
    const double hz = 80.0 * std::pow(50.0, random.Uniform());
    const double size = std::pow(10.0, random.Uniform(2.5, 3.8));
    const double beeps = random.Chance(0.5) ? random.Uniform(1.0, 8.0) : 0.0;  // a second
    for (std::size_t i = 0; i < signal.size(); ++i) {
      const double seconds = static_cast<double>(i) / kSampleRate;
      if (beeps > 0.0 && std::fmod(seconds * beeps, 1.0) > 0.6) continue;
      signal[i] += static_cast<float>(size * std::sin(2.0 * std::numbers::pi * hz * seconds));
    }
  }
  AddNoise(signal, random.Uniform(), random.Uniform(1.0, 100.0), random);
  return Rounded(signal);
}

}  // namespace

bool IsReading(ReadingKind kind) {
  return kind == ReadingKind::kRight || kind == ReadingKind::kRightWithPauses ||
         kind == ReadingKind::kMispronounced;
}

std::string_view NameOf(ReadingKind kind) {
  switch (kind) {
    case ReadingKind::kRight:
      return "right reading";
    case ReadingKind::kRightWithPauses:
      return "right reading with pauses";
    case ReadingKind::kMispronounced:
      return "right reading with one phoneme in eight exchanged";
    case ReadingKind::kOtherSentence:
      return "unrelated sentence";
    case ReadingKind::kWordsChanged:
      return "one third of the words changed";
    case ReadingKind::kCutOff:
      return "cut off halfway";
    case ReadingKind::kRepeated:
      return "read twice";
    case ReadingKind::kSpeechBefore:
      return "other speech before";
    case ReadingKind::kSpeechAfter:
      return "other speech after";
    case ReadingKind::kSilence:
      return "silence";
    case ReadingKind::kNoise:
      return "noise";
    case ReadingKind::kTones:
      return "tones";
    case ReadingKind::kOtherLanguage:
      return "another language";
  }
  return "";
}

ReadingMaker::ReadingMaker(const CPhonemeSet& set, std::span<const Utterance> utterances,
                           std::span<const Utterance> foreign)
    : m_set(set), m_utterances(utterances), m_foreign(foreign) {
  std::set<std::string> words;
  std::set<std::string> sentences;
  for (const Utterance& utterance : utterances) {
    sentences.insert(utterance.text);
    for (const std::string& word : WordsOf(utterance.text)) {
      if (!WithoutMarks(word).empty()) words.insert(WithoutMarks(word));
    }
  }
  m_words.assign(words.begin(), words.end());
  if (sentences.size() < 2 || m_words.size() < 2) {
    throw std::runtime_error("too few sentences to make wrong readings of");
  }
}

const Utterance& ReadingMaker::AnotherThan(const Utterance& one, Random& random) const {
  for (;;) {
    const Utterance& other = m_utterances[random.Below(m_utterances.size())];
    if (other.text != one.text) return other;
  }
}

std::string ReadingMaker::WithWordsChanged(const std::string& sentence, Random& random) const {
  std::vector<std::string> words = WordsOf(sentence);
  std::vector<std::size_t> places(words.size());
  for (std::size_t i = 0; i < places.size(); ++i) places[i] = i;
  random.Shuffle(std::span(places));
  places.resize(std::max<std::size_t>(1, (words.size() + 1) / 3));
  for (const std::size_t place : places) {
    const std::string old = WithoutMarks(words[place]);
    std::string fresh = old;
    while (fresh == old) fresh = random.Pick(m_words);
    words[place] = fresh;
  }
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

Samples ReadingMaker::Mispronounced(const Utterance& one, Random& random) const {
  const auto is_vowel = [this](char symbol) { return m_set.IsVowel(static_cast<wchar_t>(symbol)); };
  Samples out;
  for (std::size_t i = 0; i < one.labels.size(); ++i) {
    Samples part = SamplesOfLabel(one, i);
    const char symbol = one.labels[i].symbol;
    if (symbol != '-' && random.Chance(1.0 / 8)) {
      constexpr int kTries = 100;  // a corpus may lack another phoneme of the kind
      for (int k = 0; k < kTries; ++k) {
        const Utterance& giver = m_utterances[random.Below(m_utterances.size())];
        if (giver.labels.empty()) continue;
        const std::size_t place = random.Below(giver.labels.size());
        const char other = giver.labels[place].symbol;
        if (other == '-' || other == symbol || is_vowel(other) != is_vowel(symbol)) continue;
        part = SamplesOfLabel(giver, place);
        FadeEnds(part);
        break;
      }
    }
    out.insert(out.end(), part.begin(), part.end());
  }
  return out;
}

Reading ReadingMaker::Make(std::size_t number, ReadingKind kind, const AugmentOptions& augment,
                           Random& random, std::span<const std::int32_t> word_starts) const {
  const Utterance& one = m_utterances[number];
  const auto from = [&](Samples samples) {
    const Utterance clean{
        .text = one.text, .voice = "", .labels = {}, .samples = std::move(samples)};
    return Reading{one.text, Augment(clean, augment, random).samples};
  };
  switch (kind) {
    case ReadingKind::kRight:
      break;
    case ReadingKind::kRightWithPauses:
      return from(WithPauses(one.samples, word_starts, random));
    case ReadingKind::kMispronounced:
      return from(Mispronounced(one, random));
    case ReadingKind::kOtherSentence:
      return from(AnotherThan(one, random).samples);
    case ReadingKind::kWordsChanged: {
      std::string sentence = WithWordsChanged(one.text, random);
      return {std::move(sentence), from(one.samples).samples};
    }
    case ReadingKind::kCutOff: {
      const auto [begin, end] = SpeechOf(one);
      const double share = random.Uniform(0.4, 0.6);
      return from(CutAt(
          one.samples, begin + static_cast<std::size_t>(share * static_cast<double>(end - begin))));
    }
    case ReadingKind::kRepeated:
      return from(Joined(one.samples, random.Uniform(0.0, 0.5), one.samples));
    case ReadingKind::kSpeechBefore:
      return from(
          Joined(PartOf(AnotherThan(one, random), random), random.Uniform(0.0, 0.4), one.samples));
    case ReadingKind::kSpeechAfter:
      return from(
          Joined(one.samples, random.Uniform(0.0, 0.4), PartOf(AnotherThan(one, random), random)));
    case ReadingKind::kSilence:
      return {one.text, Silence(random)};
    case ReadingKind::kNoise:
      return {one.text, Noise(random)};
    case ReadingKind::kTones:
      return {one.text, Tones(random)};
    case ReadingKind::kOtherLanguage:
      if (m_foreign.empty()) throw std::runtime_error("no speech of another language is given");
      return from(m_foreign[random.Below(m_foreign.size())].samples);
  }
  return from(one.samples);
}

}  // namespace veral3::training
