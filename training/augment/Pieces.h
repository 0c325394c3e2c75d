#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "training/augment/WordPlaces.h"
#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// Recordings shorter and longer than the sentences that were spoken: single words, and paragraphs.
//
//   const auto words = WordPlacesOf(utterance, *DictionaryOf(language));
//   for (const Utterance& piece : CutIntoPieces(utterance, words, {}, random)) ...
//   const Utterance paragraph = Paragraph(utterances, 0, 300, random);
namespace veral3::training {

struct PieceOptions {
  int fewest_words = 1;
  int most_words = 3;
  // How often a cut through running speech leaves 10 to 40 ms of the neighbour, under the
  // neighbour's label; else 10 to 20 ms of it are faded out and labelled as pause. Where there are
  // tones they always are: the neighbour's syllable is none of the piece's.
  double neighbour_chance = 0.5;
};

// The words from `first` to before `end`, with 10 to 40 ms of the pauses around them, as far as
// they last. Text, tones and syllables are the piece's own; a neighbour's phoneme that was left may
// be before or after its phonemes.
Utterance PieceOf(const Utterance& utterance, std::span<const WordPlace> words, std::size_t first,
                  std::size_t end, const PieceOptions& options, Random& random);

// All words in pieces, one after the other. Nothing where the words are not known.
std::vector<Utterance> CutIntoPieces(const Utterance& utterance, std::span<const WordPlace> words,
                                     const PieceOptions& options, Random& random);

// One recording of them all, 0.1 to 0.8 s of pause between the speech of each and the next, made of
// the pauses that they have and digital silence. The voice is the first one's. An empty one of no
// parts.
Utterance Join(std::span<const Utterance> parts, Random& random);

// That utterance of `all` and others by the same voice behind it, as many as fit into so many
// phonemes; itself at least. No other voice speaks.
Utterance Paragraph(std::span<const Utterance> all, std::size_t number, std::size_t most_phonemes,
                    Random& random);

}  // namespace veral3::training
