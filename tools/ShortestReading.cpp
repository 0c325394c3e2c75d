#include "tools/ShortestReading.h"

#include <algorithm>

#include "common/Unicode.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/DecodingNetwork.h"
#include "recognition/Dictionaries.h"
#include "signal/CWaveFrameDef.h"
#include "tools/EngineMessages.h"

namespace veral3::tools {
namespace {

constexpr int kFramesOfPhoneme = 3;  // one a state

// Phonemes of the word's shortest usable pronunciation, 0 where there is none.
int ShortestPronunciation(const WordEntry& word, const CPhonemeSet& set) {
  std::size_t shortest = 0;
  for (const Pronunciation& pronunciation : word.pronunciations) {
    const bool usable = CanBeAligned(pronunciation) &&
                        std::ranges::all_of(pronunciation.phonemes, [&](char phoneme) {
                          return set.GetPhonemeIndex(phoneme) >= 0;
                        });
    if (!usable) continue;
    const std::size_t length = pronunciation.phonemes.size();
    shortest = shortest == 0 ? length : std::min(shortest, length);
  }
  return static_cast<int>(shortest);
}

}  // namespace

std::optional<int> LeastFrames(const WordSequence& words, const CPhonemeSet& set) {
  int frames = 1;
  for (int i = 0; i < words.Count(); ++i) {
    const int phonemes = ShortestPronunciation(words[i], set);
    if (phonemes == 0) return std::nullopt;
    frames += kFramesOfPhoneme * phonemes;
  }
  return frames;
}

std::optional<int> LeastFramesOfSentence(const std::string& prepared, LanguageType language) {
  const auto dictionary = DictionaryOf(language);
  const CPhonemeSet* const set = PhonemeSetOf(language);
  if (dictionary == nullptr || set == nullptr) return std::nullopt;
  const EngineMessages told_before;
  WordSequence words;
  if (dictionary->LookupSentence(WideFromUtf8(prepared), words) < 0) return std::nullopt;
  return LeastFrames(words, *set);
}

int SamplesOfFrames(int frames) { return (frames - 1) * kFrameShift + kFrameLength; }

}  // namespace veral3::tools
