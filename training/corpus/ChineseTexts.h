#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "recognition/DictionaryFile.h"
#include "training/common/Random.h"

namespace veral3::training {

// A Chinese sentence with what is to be heard of it.
struct ChineseSentence {
  std::string text;                  // the dictionary's words, separated by blanks
  std::string pinyin;                // as espeak-ng's pinyin voice is fed
  std::string phonemes;              // expanded
  std::vector<std::int32_t> starts;  // in the phonemes, one a syllable
  std::string tones;                 // the dictionary's marks, one digit a syllable
  std::string spoken_tones;          // what the voice says
};

// The tones that are said where the dictionary has `marks`: a third tone before a third is a second
// one, and bu before a fourth tone too. `bu[i]`: syllable i is the word bu alone; `pause_after[i]`:
// nothing carries over from syllable i to the next.
std::string SpokenTones(std::string_view marks, const std::vector<bool>& bu,
                        const std::vector<bool>& pause_after);

// The same sentence said in other tones, a digit a syllable; its text and marks stay.
ChineseSentence WithSpokenTones(ChineseSentence sentence, std::string_view tones);

// Chinese sentences made of templates, common words and words of the dictionary, in everyday
// Mandarin of Taiwan. The held-out ones have templates of their own and content words of their own;
// only function words are shared.
class ChineseTexts {
 public:
  // Throws std::runtime_error when the dictionary at `path` has no words.
  explicit ChineseTexts(const std::string& path);

  ChineseSentence Draw(Random& random) const;         // for training
  ChineseSentence DrawHeldOut(Random& random) const;  // for measuring; common words only

  // What is heard of words, "," between them a pause. A word of several pronunciations is said in
  // its first one, now and then in another. Throws std::runtime_error for a word that the
  // dictionary lacks.
  ChineseSentence Read(std::span<const std::string> words, Random& random) const;

  // The text of a held-out sentence with one content word changed for another of the same kind.
  static std::string WithOneWordChanged(const std::string& held_out_text, Random& random);

 private:
  ChineseSentence DrawFrom(std::string_view pattern, bool held_out, Random& random) const;
  std::string AnyWord(Random& random) const;

  DictionaryFile m_dictionary;
  std::unordered_map<std::string_view, std::size_t> m_places;
};

// The templates and vocabularies, with which the dictionary is checked.
std::vector<std::string> ChineseTemplateWords();

}  // namespace veral3::training
