#pragma once

#include <optional>
#include <string>

#include "common/LanguageType.h"

class CPhonemeSet;

namespace veral3 {
class WordSequence;
}

// How short a recording may be for a sentence to fit into it.
namespace veral3::tools {

// Frames of the shortest recording that the words fit into: each sound of the shortest
// pronunciations takes three, the end one more. Nothing where a word has no pronunciation of the
// set's phonemes that can be aligned: the sentence fits no recording.
std::optional<int> LeastFrames(const WordSequence& words, const CPhonemeSet& set);

// The same of a prepared sentence, looked up in the dictionary of `language`, which is loaded.
std::optional<int> LeastFramesOfSentence(const std::string& prepared, LanguageType language);

// [samples at 22050 Hz] that so many frames take.
int SamplesOfFrames(int frames);

}  // namespace veral3::tools
