#include "training/grading/SenseReadings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Lengthen.h"
#include "training/corpus/Utterance.h"
#include "training/goodness/Judgement.h"
#include "training/grading/SenseSentences.h"
#include "training/speech/JapaneseEvents.h"

namespace veral3::training {
namespace {

using Samples = std::vector<std::int16_t>;

std::size_t SamplesOf(double seconds) {
  return static_cast<std::size_t>(std::lround(seconds * kSampleRate));
}

struct VoicePair {
  const char* variant;
  int pitch;
  const char* other;  // of another speaker
  int other_pitch;
};

// None of these is ever trained on.
constexpr std::array<VoicePair, 4> kVoices = {{
    {"f4", 60, "m4", 45},
    {"m8", 45, "linda", 55},
    {"steph2", 60, "Michael", 45},
    {"Andrea", 55, "travis", 45},
}};

const char* EspeakLanguage(LanguageType language) {
  switch (language) {
    case kLanguageEnglish:
      return "en-us";
    case kLanguageChinese:
      return "cmn-latn-pinyin";
    case kLanguageJapanese:
      return "ja";
  }
  throw std::runtime_error("no such language");
}

}  // namespace

std::string_view NameOf(SenseFault fault) {
  switch (fault) {
    case SenseFault::kNone:
      return "the tutor's own recording";
    case SenseFault::kOtherVoice:
      return "another voice";
    case SenseFault::kConsonants:
      return "substituted consonants";
    case SenseFault::kFlat:
      return "flat pitch";
    case SenseFault::kPause:
      return "a long pause";
    case SenseFault::kOtherSentence:
      return "another sentence";
    case SenseFault::kTones:
      return "other tones";
    case SenseFault::kShortVowels:
      return "a shortened long vowel";
  }
  return "";
}

std::vector<std::int16_t> WithSilence(std::span<const std::int16_t> samples, std::size_t place,
                                      double seconds) {
  place = std::min(place, samples.size());
  Samples out(samples.begin(), samples.end());
  const std::size_t fade = SamplesOf(0.005);
  for (std::size_t i = 0; i < fade; ++i) {
    const auto scaled = [&](std::int16_t x) {
      return static_cast<std::int16_t>(x * static_cast<int>(i) / static_cast<int>(fade));
    };
    if (i < place) out[place - 1 - i] = scaled(out[place - 1 - i]);
    if (place + i < out.size()) out[place + i] = scaled(out[place + i]);
  }
  out.insert(out.begin() + static_cast<std::ptrdiff_t>(place), SamplesOf(seconds), 0);
  return out;
}

SenseReadings::SenseReadings(LanguageType language, EspeakSpeech& espeak)
    : m_language(language), m_sentences(SenseSentencesOf(language)), m_espeak(espeak) {}

std::size_t SenseReadings::NumVoices() const { return kVoices.size(); }

std::string SenseReadings::VoiceName(std::size_t voice, SenseFault fault) const {
  const VoicePair& pair = kVoices.at(voice);
  return std::string(EspeakLanguage(m_language)) + "+" +
         (fault == SenseFault::kOtherVoice ? pair.other : pair.variant);
}

std::vector<SenseFault> SenseReadings::Faults() const {
  std::vector<SenseFault> faults = {SenseFault::kNone,       SenseFault::kOtherVoice,
                                    SenseFault::kConsonants, SenseFault::kFlat,
                                    SenseFault::kPause,      SenseFault::kOtherSentence};
  if (m_language == kLanguageChinese) faults.push_back(SenseFault::kTones);
  if (m_language == kLanguageJapanese) faults.push_back(SenseFault::kShortVowels);
  return faults;
}

std::vector<std::int16_t> SenseReadings::SpeakOnce(const std::string& spoken) const {
  if (m_language != kLanguageJapanese) return m_espeak.Speak(spoken).samples;
  std::vector<JapaneseUnit> units;
  std::istringstream words(spoken);
  for (std::string word; words >> word;) {
    const auto own = JapaneseUnits({word, {0}});
    units.insert(units.end(), own.begin(), own.end());
  }
  SpokenText speech = m_espeak.Speak("[[" + JapaneseFeed(units) + "]]");
  const auto labels =
      JapaneseLabels(speech.events, units, static_cast<std::int32_t>(speech.samples.size()));
  const auto places = LabelsOfUnits(labels, units);
  // The synthesiser's long vowels are hardly longer than its short ones: made twice as long, from
  // the last to the first, so that the labels before stay true.
  for (std::size_t u = units.size(); u-- > 0;) {
    if (units[u].symbols.size() != 2) continue;
    const std::size_t next = places[u] + 2;
    const std::int32_t start = labels[places[u]].start;
    const std::int32_t end = next < labels.size()
                                 ? labels[next].start
                                 : static_cast<std::int32_t>(speech.samples.size());
    Lengthen(speech.samples, start, end, end - start);
  }
  return std::move(speech.samples);
}

std::vector<std::int16_t> SenseReadings::Speak(std::size_t sentence, std::size_t voice,
                                               SenseFault fault) const {
  const SenseSentence& right = m_sentences[sentence];
  const VoicePair& pair = kVoices.at(voice);
  std::string spoken = right.spoken;
  if (fault == SenseFault::kConsonants) spoken = right.consonants;
  if (fault == SenseFault::kTones) spoken = right.tones;
  if (fault == SenseFault::kShortVowels) spoken = right.short_vowels;
  if (fault == SenseFault::kOtherSentence) {
    spoken = m_sentences[(sentence + 1) % m_sentences.size()].spoken;
  }
  const bool other = fault == SenseFault::kOtherVoice;
  // Chinese tones come out flat unless the range is wide.
  const int range = m_language == kLanguageChinese ? 100 : 55;
  const int pitch =
      (other ? pair.other_pitch : pair.pitch) + (m_language == kLanguageChinese ? 20 : 0);
  m_espeak.SetVoice({.name = VoiceName(voice, fault),
                     .rate = other ? 155 : 145,
                     .pitch = pitch,
                     .range = fault == SenseFault::kFlat ? 0 : range,
                     .word_gap = 0});
  Samples samples = SpeakOnce(spoken);
  samples.insert(samples.begin(), SamplesOf(0.2), 0);
  samples.insert(samples.end(), SamplesOf(0.2), 0);
  if (fault != SenseFault::kPause) return samples;
  const auto starts = WordStarts(m_language, {right.text, "", {}, samples});
  if (starts.size() < 2) throw std::runtime_error("no two words in \"" + right.text + "\"");
  return WithSilence(samples, static_cast<std::size_t>(starts[starts.size() / 2]), 0.9);
}

}  // namespace veral3::training
