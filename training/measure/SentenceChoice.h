#pragma once

#include <string>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "recognition/VeralDictionary.h"
#include "training/common/Random.h"
#include "training/corpus/HeldOutTexts.h"

// Which of several sentences was read: the measure of what an application does that asks its user
// to choose an answer and say it.
namespace veral3::training {

struct Candidates {
  std::vector<std::string> sentences;  // all different
  int right;                           // the place of the one that was read
};

// Eight sentences, the one that was read at a random place; the others have one word of it changed,
// or have nothing to do with it.
Candidates EightCandidates(const HeldOutTexts& texts, const std::string& read,
                           bool one_word_changed, Random& random);

// What ChooseSentence answers where a candidate is no sentence to the dictionary.
inline constexpr int kRefusedSentence = -1000;

// The place of the sentence that the engine takes a recording for; below 0 where it can't tell. The
// frame model must be loaded.
int ChooseSentence(const CPhonemeSet& set, const VeralDictionary& dictionary,
                   const Candidates& candidates, std::vector<std::int16_t> samples);

}  // namespace veral3::training
