#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "training/common/Random.h"
#include "training/speech/JapaneseEvents.h"

namespace veral3::training {

// A word as the dictionary spells it, with the one of its readings that is spoken. A word without a
// reading is a comma: a pause.
struct JapaneseWord {
  std::string text;
  JapaneseReading reading;
};

// Everyday Japanese sentences made of templates, common words and words of the dictionary. The
// held-out ones have templates of their own and content words of their own; only function words are
// shared, and training never draws a held-out content word, nor another that is read like one.
class JapaneseTexts {
 public:
  // `dictionary`: in the engine's format. Throws std::runtime_error when it cannot be read or lacks
  // a word of the templates.
  explicit JapaneseTexts(const std::string& dictionary);

  std::vector<JapaneseWord> Draw(Random& random) const;
  std::vector<JapaneseWord> DrawHeldOut(Random& random) const;

  // The text of a held-out sentence with one content word changed for another of the same kind.
  static std::string WithOneWordChanged(const std::string& held_out_text, Random& random);

  // All readings of a word, the usual one first; empty for an unknown word.
  const std::vector<JapaneseReading>& ReadingsOf(const std::string& word) const;

 private:
  using Words = std::vector<std::string>;

  std::vector<JapaneseWord> Fill(std::string_view pattern, const std::map<char, Words>& slots,
                                 bool held_out, Random& random) const;
  JapaneseWord Read(const std::string& word, Random& random) const;

  std::map<std::string, std::vector<JapaneseReading>> m_dictionary;
  Words m_any;  // words of the dictionary that training may draw
};

// The words with blanks between them, as the engine takes a sentence.
std::string TextOf(const std::vector<JapaneseWord>& words);

// The phonemes of the words in the symbols of the set.
std::string PhonemesOf(const std::vector<JapaneseWord>& words);

}  // namespace veral3::training
