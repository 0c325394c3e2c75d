#pragma once

#include <string>
#include <vector>

#include "training/common/Random.h"

namespace veral3::training {

// English sentences made of templates, common words and words of the dictionary. The held-out ones
// have templates of their own and common words of their own; only function words are shared.
class EnglishTexts {
 public:
  // `dictionary_words`: lower case, any order the same on every run; may be empty.
  explicit EnglishTexts(std::vector<std::string> dictionary_words);

  std::string Draw(Random& random) const;         // for training
  std::string DrawHeldOut(Random& random) const;  // for measuring; common words only
  // For measuring too: words with sounds that the held-out sentences hardly have, such as the one
  // in "seizure" or an f at the end of a word.
  static std::string DrawRare(Random& random);

  // The sentence with one content word changed for another of the same kind.
  static std::string WithOneWordChanged(const std::string& held_out_sentence, Random& random);

 private:
  std::vector<std::string> m_dictionary_words;
};

// Words of a dictionary file in the engine's format (or of any file with a word a line): the first
// token of every line that begins with a letter (the header's, too), lower case, letters and inner
// apostrophes only, at least two.
// Throws std::runtime_error when the file cannot be read.
std::vector<std::string> ReadDictionaryWords(const std::string& path);

}  // namespace veral3::training
