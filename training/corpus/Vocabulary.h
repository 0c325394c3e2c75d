#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "training/common/Random.h"

// Words that fill the slots of sentence templates.
namespace veral3::training {

using Words = std::vector<std::string>;
using Vocabulary = std::map<char, Words>;  // by slot

// What stands between blanks.
Words SplitWords(std::string_view text);

// The words with a blank between them.
std::string JoinWords(const Words& words);

// The text with one of the words that the vocabulary knows changed for another of its slot; the
// text itself where it has none.
std::string WithOneWordChanged(std::string_view text, const Vocabulary& vocabulary, Random& random);

}  // namespace veral3::training
