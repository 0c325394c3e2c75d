#include "training/goodness/Readings.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include "signal/CWaveFrameDef.h"
#include "training/goodness/NoSpeech.h"

namespace veral3::training {
namespace {

using Samples = std::vector<std::int16_t>;
using Words = std::vector<SpokenWord>;

std::size_t SamplesOf(double seconds) {
  return static_cast<std::size_t>(std::lround(seconds * kSampleRate));
}

Samples SamplesBetween(const Passage& passage, std::int32_t begin, std::int32_t end) {
  return {passage.samples.begin() + begin, passage.samples.begin() + end};
}

Samples Joined(const Samples& first, double gap, const Samples& second) {
  Samples all = first;
  all.insert(all.end(), SamplesOf(gap), 0);
  all.insert(all.end(), second.begin(), second.end());
  return all;
}

// Over a few ms, so that a cut is not heard as a click.
void FadeIn(Samples& samples, double seconds) {
  const std::size_t fade = std::min(SamplesOf(seconds), samples.size());
  for (std::size_t i = 0; i < fade; ++i) {
    samples[i] =
        static_cast<std::int16_t>(samples[i] * static_cast<int>(i) / static_cast<int>(fade));
  }
}

void FadeOut(Samples& samples, double seconds) {
  std::ranges::reverse(samples);
  FadeIn(samples, seconds);
  std::ranges::reverse(samples);
}

std::int32_t EndOf(const Passage& passage) { return passage.words.back().end; }

// How many of `count` words a share is, one at least.
std::size_t PartOf(std::size_t count, double share) {
  const auto part = std::lround(share * static_cast<double>(count));
  return std::clamp<std::size_t>(static_cast<std::size_t>(std::max(part, 1L)), 1, count);
}

// `count` of the numbers below `all`, in ascending order: side by side, or anywhere.
std::vector<std::size_t> DrawPlaces(std::size_t count, std::size_t all, Random& random) {
  std::vector<std::size_t> places(all);
  const std::size_t first = random.Below(all - count + 1);
  for (std::size_t i = 0; i < all; ++i) places[i] = i;
  if (random.Chance(0.5)) {
    return {places.begin() + static_cast<std::ptrdiff_t>(first),
            places.begin() + static_cast<std::ptrdiff_t>(first + count)};
  }
  random.Shuffle(std::span(places));
  places.resize(count);
  std::ranges::sort(places);
  return places;
}

std::string TextOf(std::span<const std::string> words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<std::string> TextsOf(const Words& words) {
  std::vector<std::string> texts;
  for (const SpokenWord& word : words) texts.push_back(word.text);
  return texts;
}

int PhonemesAt(const Words& words, std::span<const std::size_t> places) {
  int count = 0;
  for (const std::size_t place : places) count += CountPhonemes(std::span(words).subspan(place, 1));
  return count;
}

double Share(int part, int all) { return all == 0 ? 0.0 : double(part) / all; }

// Up to three pauses before words. Speech is not faded: stops and vowels may be cut hard, as by
// somebody who hesitates.
Samples WithPauses(const Passage& passage, Random& random) {
  Samples out;
  std::int32_t done = 0;
  int pauses = 0;
  for (std::size_t word = 1; word < passage.words.size() && pauses < 3; ++word) {
    if (!random.Chance(0.4)) continue;
    out = Joined(out, 0.0, SamplesBetween(passage, done, passage.words[word].Start()));
    out.insert(out.end(), SamplesOf(random.Uniform(0.05, 0.6)), 0);
    done = passage.words[word].Start();
    ++pauses;
  }
  return Joined(out, 0.0,
                SamplesBetween(passage, done, static_cast<std::int32_t>(passage.samples.size())));
}

// As by a recorder that starts late and stops at once. A fifth of the speech at most is lost.
Samples Trimmed(const Passage& passage, Random& random) {
  const std::int32_t start = passage.words.front().Start();
  const double most = std::min(0.1 * kSampleRate, 0.2 * (EndOf(passage) - start));
  const auto lost = static_cast<std::int32_t>(random.Uniform(0.0, most));
  Samples samples = SamplesBetween(passage, start + lost, EndOf(passage));
  FadeIn(samples, 0.002);
  FadeOut(samples, 0.002);
  return samples;
}

// The words that stand there without some that are said.
Reading Inserted(const Passage& passage, double share, Random& random) {
  if (passage.words.size() < 2) throw std::logic_error("one word cannot be one too many");
  const std::size_t count = std::min(PartOf(passage.words.size(), share), passage.words.size() - 1);
  const auto places = DrawPlaces(count, passage.words.size(), random);
  std::vector<std::string> texts = TextsOf(passage.words);
  for (auto place = places.rbegin(); place != places.rend(); ++place) {
    texts.erase(texts.begin() + static_cast<std::ptrdiff_t>(*place));
  }
  return {TextOf(texts), passage.samples,
          Share(PhonemesAt(passage.words, places), CountPhonemes(passage.words))};
}

Reading Swapped(const Passage& passage, double share, Random& random) {
  const Words& words = passage.words;
  if (words.size() < 2) throw std::logic_error("one word cannot change its place");
  std::vector<std::string> texts = TextsOf(words);
  const std::size_t pairs = words.size() / 2;
  const std::size_t offset = random.Below(words.size() - 2 * pairs + 1);
  const std::size_t count = std::min(PartOf(words.size(), share), pairs);
  int exchanged = 0;  // phonemes of both words
  for (const std::size_t pair : DrawPlaces(count, pairs, random)) {
    const std::size_t first = offset + 2 * pair;
    if (texts[first] == texts[first + 1]) continue;
    std::swap(texts[first], texts[first + 1]);
    exchanged += CountPhonemes(std::span(words).subspan(first, 2));
  }
  return {TextOf(texts), passage.samples, Share(exchanged, CountPhonemes(words)) / 2.0};
}

// The recording ends, or begins, where a share of its phonemes is lost.
Reading Cut(const Passage& passage, bool at_end, double share, Random& random) {
  std::vector<PhonemeLabel> phonemes;
  for (const SpokenWord& word : passage.words) {
    phonemes.insert(phonemes.end(), word.phonemes.begin(), word.phonemes.end());
  }
  const std::size_t lost = std::min(PartOf(phonemes.size(), share), phonemes.size() - 1);
  Reading reading;
  reading.sentence = TextOf(passage);
  reading.wrong = Share(static_cast<int>(lost), static_cast<int>(phonemes.size()));
  if (at_end) {
    const std::int32_t place = phonemes[phonemes.size() - lost].start;
    reading.samples = SamplesBetween(passage, 0, place);
    FadeOut(reading.samples, random.Uniform(0.001, 0.01));
  } else {
    reading.samples = SamplesBetween(passage, phonemes[lost].start,
                                     static_cast<std::int32_t>(passage.samples.size()));
    FadeIn(reading.samples, random.Uniform(0.001, 0.01));
  }
  return reading;
}

}  // namespace

std::string_view NameOf(ReadingKind kind) {
  switch (kind) {
    case ReadingKind::kRight:
      return "right reading";
    case ReadingKind::kRightWithPauses:
      return "right reading with pauses";
    case ReadingKind::kTrimmed:
      return "right reading begun up to 100 ms late";
    case ReadingKind::kMispronounced:
      return "right reading with one phoneme in eight exchanged";
    case ReadingKind::kReplaced:
      return "words replaced";
    case ReadingKind::kOmitted:
      return "words left out";
    case ReadingKind::kInserted:
      return "words too many";
    case ReadingKind::kSwapped:
      return "words swapped";
    case ReadingKind::kCutOff:
      return "cut off";
    case ReadingKind::kBegunLate:
      return "begun late";
    case ReadingKind::kRepeated:
      return "read twice";
    case ReadingKind::kSpeechBefore:
      return "other speech before";
    case ReadingKind::kSpeechAfter:
      return "other speech after";
    case ReadingKind::kOtherSentence:
      return "unrelated sentence";
    case ReadingKind::kOtherLanguage:
      return "another language";
    case ReadingKind::kSilence:
      return "silence";
    case ReadingKind::kNoise:
      return "noise";
    case ReadingKind::kTones:
      return "tones";
  }
  return "";
}

bool IsGraded(ReadingKind kind) {
  return (kind >= ReadingKind::kReplaced && kind <= ReadingKind::kBegunLate) ||
         kind == ReadingKind::kSpeechBefore || kind == ReadingKind::kSpeechAfter;
}

Utterance RecordingOf(const Reading& reading, ReadingKind kind, const std::string& voice) {
  Utterance recording{reading.sentence, voice, {}, reading.samples};
  if (kind >= ReadingKind::kSilence) return recording;
  int peak = 0;
  for (const std::int16_t x : reading.samples) peak = std::max(peak, std::abs(int{x}));
  const auto is_loud = [peak](std::int16_t x) { return 100 * std::abs(int{x}) > peak; };
  const auto first = std::ranges::find_if(reading.samples, is_loud);
  if (first == reading.samples.end()) return recording;
  const auto last = std::find_if(reading.samples.rbegin(), reading.samples.rend(), is_loud).base();
  const auto begin = static_cast<std::int32_t>(first - reading.samples.begin());
  const auto end = static_cast<std::int32_t>(last - reading.samples.begin());
  if (begin > 0) recording.labels.push_back({'-', 0});
  recording.labels.push_back({'A', begin});
  if (last != reading.samples.end()) recording.labels.push_back({'-', end});
  return recording;
}

double WantedProbability(double wrong) { return std::exp(-std::pow(wrong / 0.27, 1.5)); }

ReadingMaker::ReadingMaker(const CPhonemeSet& set, const PassageDrawer& drawer,
                           std::span<const Utterance> foreign)
    : m_set(set), m_drawer(drawer), m_foreign(foreign) {
  std::map<std::string, int> words;
  for (const Passage& recording : drawer.Recordings()) {
    for (const SpokenWord& word : recording.words) {
      words.try_emplace(word.text, static_cast<int>(word.phonemes.size()));
    }
  }
  for (const auto& [text, phonemes] : words) m_words.push_back({text, phonemes});
  const auto& first = drawer.Recordings().front();
  const bool alike = std::ranges::all_of(drawer.Recordings(), [&](const Passage& recording) {
    return training::TextOf(recording) == training::TextOf(first);
  });
  if (alike || m_words.size() < 2) {
    throw std::runtime_error("too few sentences to make wrong readings of");
  }
}

ReadingMaker::Word ReadingMaker::AnotherThan(const std::string& text, Random& random) const {
  for (;;) {
    const Word& word = random.Pick(m_words);
    if (word.text != text) return word;
  }
}

// By the same voice where it has said anything else.
Passage ReadingMaker::OtherSpeech(const Passage& passage, int words, Random& random) const {
  constexpr int kTries = 20;
  const std::string text = training::TextOf(passage);
  for (int i = 0;; ++i) {
    Passage other =
        i < kTries ? m_drawer.DrawBy(passage.voice, words, random) : m_drawer.Draw(words, random);
    const std::string said = training::TextOf(other);
    if (text.find(said) == std::string::npos && said.find(text) == std::string::npos) return other;
    if (i == 50 * kTries) throw std::runtime_error("too few sentences to read another one");
  }
}

Reading ReadingMaker::Replaced(const Passage& passage, double share, Random& random) const {
  const auto places = DrawPlaces(PartOf(passage.words.size(), share), passage.words.size(), random);
  std::vector<std::string> texts = TextsOf(passage.words);
  for (const std::size_t place : places) texts[place] = AnotherThan(texts[place], random).text;
  return {TextOf(texts), passage.samples,
          Share(PhonemesAt(passage.words, places), CountPhonemes(passage.words))};
}

// More words stand there than are said.
Reading ReadingMaker::Omitted(const Passage& passage, double share, Random& random) const {
  const auto said = static_cast<double>(passage.words.size());
  const double most = std::min(share, 0.8);  // of what stands there
  const auto count =
      static_cast<std::size_t>(std::max(1L, std::lround(said * most / (1.0 - most))));
  std::vector<std::string> texts = TextsOf(passage.words);
  int phonemes = 0;
  for (const std::size_t place : DrawPlaces(count, passage.words.size() + count, random)) {
    const Word word = AnotherThan("", random);
    texts.insert(texts.begin() + static_cast<std::ptrdiff_t>(std::min(place, texts.size())),
                 word.text);
    phonemes += word.phonemes;
  }
  return {TextOf(texts), passage.samples, Share(phonemes, CountPhonemes(passage.words) + phonemes)};
}

Reading ReadingMaker::WithSpeech(const Passage& passage, bool before, double share,
                                 Random& random) const {
  const auto own = static_cast<double>(passage.words.size());
  const double most = std::min(share, 0.7);  // of what is said
  const auto count = static_cast<int>(std::max(1L, std::lround(own * most / (1.0 - most))));
  const Passage other = OtherSpeech(passage, count, random);
  const double gap = random.Uniform(0.0, 0.4);
  const int phonemes = CountPhonemes(other.words);
  return {training::TextOf(passage),
          before ? Joined(other.samples, gap, passage.samples)
                 : Joined(passage.samples, gap, other.samples),
          Share(phonemes, phonemes + CountPhonemes(passage.words))};
}

Samples ReadingMaker::Mispronounced(const Passage& passage, Random& random) const {
  const auto is_vowel = [this](char symbol) { return m_set.IsVowel(static_cast<wchar_t>(symbol)); };
  const auto end_of = [](const SpokenWord& word, std::size_t phoneme) {
    return phoneme + 1 < word.phonemes.size() ? word.phonemes[phoneme + 1].start : word.end;
  };
  Samples out;
  std::int32_t done = 0;
  for (const SpokenWord& word : passage.words) {
    for (std::size_t i = 0; i < word.phonemes.size(); ++i) {
      if (!random.Chance(1.0 / 8)) continue;
      const char symbol = word.phonemes[i].symbol;
      constexpr int kTries = 100;  // a corpus may lack another phoneme of the kind
      for (int k = 0; k < kTries; ++k) {
        const Passage& giver = random.Pick(m_drawer.Recordings());
        const SpokenWord& donor = random.Pick(giver.words);
        const std::size_t place = random.Below(donor.phonemes.size());
        const char other = donor.phonemes[place].symbol;
        if (other == symbol || is_vowel(other) != is_vowel(symbol)) continue;
        Samples part = SamplesBetween(giver, donor.phonemes[place].start, end_of(donor, place));
        FadeIn(part, 0.002);
        FadeOut(part, 0.002);
        out = Joined(out, 0.0, SamplesBetween(passage, done, word.phonemes[i].start));
        out.insert(out.end(), part.begin(), part.end());
        done = end_of(word, i);
        break;
      }
    }
  }
  return Joined(out, 0.0,
                SamplesBetween(passage, done, static_cast<std::int32_t>(passage.samples.size())));
}

Reading ReadingMaker::Make(const Passage& passage, ReadingKind kind, double share,
                           Random& random) const {
  const std::string text = training::TextOf(passage);
  const auto count = static_cast<int>(passage.words.size());
  const double seconds = static_cast<double>(passage.samples.size()) / kSampleRate;
  const auto about_as_long = [&] { return seconds * random.Uniform(0.6, 1.6); };
  switch (kind) {
    case ReadingKind::kRight:
      return {text, passage.samples, 0.0};
    case ReadingKind::kRightWithPauses:
      return {text, WithPauses(passage, random), 0.0};
    case ReadingKind::kTrimmed:
      return {text, Trimmed(passage, random), 0.0};
    case ReadingKind::kMispronounced:
      return {text, Mispronounced(passage, random), 0.0};
    case ReadingKind::kReplaced:
      return Replaced(passage, share, random);
    case ReadingKind::kOmitted:
      return Omitted(passage, share, random);
    case ReadingKind::kInserted:
      return Inserted(passage, share, random);
    case ReadingKind::kSwapped:
      return Swapped(passage, share, random);
    case ReadingKind::kCutOff:
    case ReadingKind::kBegunLate:
      return Cut(passage, kind == ReadingKind::kCutOff, share, random);
    case ReadingKind::kRepeated:
      return {text, Joined(passage.samples, random.Uniform(0.0, 0.5), passage.samples), 0.5};
    case ReadingKind::kSpeechBefore:
    case ReadingKind::kSpeechAfter:
      return WithSpeech(passage, kind == ReadingKind::kSpeechBefore, share, random);
    case ReadingKind::kOtherSentence: {
      const auto words = static_cast<int>(std::lround(count * random.Uniform(0.6, 1.6)));
      return {text, OtherSpeech(passage, std::max(words, 1), random).samples, 1.0};
    }
    case ReadingKind::kOtherLanguage:
      if (m_foreign.empty()) throw std::runtime_error("no speech of another language is given");
      return {text, random.Pick(m_foreign).samples, 1.0};
    case ReadingKind::kSilence:
      return {text, Silence(about_as_long(), random), 1.0};
    case ReadingKind::kNoise:
      return {text, Noise(about_as_long(), random), 1.0};
    case ReadingKind::kTones:
      return {text, Tones(about_as_long(), random), 1.0};
  }
  return {};
}

}  // namespace veral3::training
