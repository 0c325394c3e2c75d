#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// Speech whose words are known, of any number of words: recordings cut to a few of their words, or
// several by one voice joined.
//
//   const PassageDrawer drawer(recordings);    // one Passage each, see SpokenWordsOf in Judgement.h
//   const Passage passage = drawer.Draw(12, random);
namespace veral3::training {

struct SpokenWord {
  std::string text;
  std::vector<PhonemeLabel> phonemes;  // at least one; pauses left out
  std::int32_t end;                    // first sample behind the last phoneme

  std::int32_t Start() const { return phonemes.front().start; }
};

struct Passage {
  std::string voice;
  std::vector<SpokenWord> words;  // in the order in which they are said
  std::vector<std::int16_t> samples;
};

std::string TextOf(const Passage& passage);  // words between blanks
int CountPhonemes(std::span<const SpokenWord> words);

// Words `first` to `first + count - 1` as a recording of their own, with up to 50 ms of the pauses
// around them. They must be there.
Passage PieceOf(const Passage& passage, std::size_t first, std::size_t count);

// Puts `next` behind a passage after `gap` seconds of silence.
void Append(Passage& passage, const Passage& next, double gap);

class PassageDrawer {
 public:
  static constexpr int kMostPhonemes = 500;

  // `recordings` must outlive the drawer. Throws std::runtime_error where there are none, or one is
  // without words.
  explicit PassageDrawer(std::span<const Passage> recordings);

  // A passage of `words` words, of fewer where they would have more than kMostPhonemes phonemes: a
  // piece of a recording, a whole one, or some by the same voice joined with up to 0.4 s between.
  Passage Draw(int words, Random& random) const;

  // The same by a given voice, by any where that one has no recordings.
  Passage DrawBy(std::string_view voice, int words, Random& random) const;

  // How many words have so many phonemes, as the recordings have them on average.
  double WordsOf(int phonemes) const;

  std::span<const Passage> Recordings() const { return m_recordings; }

 private:
  Passage DrawFrom(std::span<const std::size_t> choices, int words, Random& random) const;

  std::span<const Passage> m_recordings;
  std::vector<std::size_t> m_all;
  std::map<std::string, std::vector<std::size_t>, std::less<>> m_of_voice;
};

}  // namespace veral3::training
