#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// Mispronunciations for measuring. Nobody is asked to say a word wrongly: a right recording is
// expected to be another phoneme than was said, or loses a phoneme that stays expected.
namespace veral3::training {

struct Exchange {
  std::size_t utterance = 0;
  std::size_t phoneme = 0;  // its place among the utterance's phonemes, pauses left out
  char expected = '-';      // what the text is made to say there
  bool dropped = false;     // the phoneme is cut out of the recording; `expected` is the one it was
  std::size_t group = 0;    // of whoever asks, to tell the results apart

  friend bool operator==(const Exchange&, const Exchange&) = default;
};

// For every phoneme of `symbols` as the expected one, `each` occurrences of every other of them.
// `phonemes`: of each utterance (PhonemesOf). Those that occur less than `each` times are left out
// as the phoneme that is said, so that what is said is the same for every expected one. The group
// is the expected one's place in `symbols`.
std::vector<Exchange> EveryOtherEquallyOften(std::span<const std::string> phonemes,
                                             std::string_view symbols, std::size_t each,
                                             Random& random);

// The exchanges in sets of one utterance each, no two of a set nearer than `distance` phonemes to
// each other, so that what surrounds an exchange is right.
std::vector<std::vector<Exchange>> InRounds(std::span<const Exchange> exchanges,
                                            std::size_t distance);

// The utterance with these exchanges made; each phoneme at most once, in any order. A cut is faded
// over 2 ms on both sides.
Utterance WithExchanges(const Utterance& utterance, std::span<const Exchange> exchanges);

}  // namespace veral3::training
