#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "recognition/VeralDictionary.h"
#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

namespace veral3::training {

// A word of an utterance, as its text writes it (with the mark behind it, where there is one), and
// its phonemes: from `first` to the next word's, of those without pauses.
struct WordPlace {
  std::string text;
  std::size_t first;

  friend bool operator==(const WordPlace&, const WordPlace&) = default;
};

// Finds the words by what the dictionary says of them: the cuts through the phonemes that leave the
// fewest differences from pronunciations of the words, and of those that are as good the one with
// most cuts at pauses. Nothing where the dictionary lacks a word, where more than three phonemes in
// ten differ (the labels are of something else), where a word is left without a phoneme, or where
// the cuts do not fall on the utterance's syllables. Messages of the dictionary go to its stream.
std::vector<WordPlace> WordPlacesOf(const Utterance& utterance, const VeralDictionary& dictionary);

// Where the words cannot be known, as of a foreign voice's: stretches of 3 to 7 phonemes, or up to
// the next pause where it comes sooner, none of which divides a syllable. Their texts are empty.
std::vector<WordPlace> WordlikePlaces(const Utterance& utterance, Random& random);

}  // namespace veral3::training
