#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "recognition/VeralDictionary.h"

namespace veral3::training {

// The pronunciations of each word of a sentence, one symbol a phoneme. Words that the dictionary
// lacks are passed over, as the engine does.
std::vector<std::vector<std::string>> PronunciationsOf(const VeralDictionary& dictionary,
                                                       const std::string& sentence);

// Which phonemes end a word, where it is known only which words were said, not where one ends: the
// words are laid over the phonemes with the fewest changes, and a place counts where the word's
// pronunciation ends in the very phoneme that is there. Places in `phonemes`, ascending. None when
// more than one phoneme in four would have to change: something else was said.
std::vector<std::size_t> WordEnds(std::string_view phonemes,
                                  const std::vector<std::vector<std::string>>& words);

}  // namespace veral3::training
