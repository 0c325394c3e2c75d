#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/LiteralAligner.h"
#include "recognition/WordEntry.h"

// Sentences and score matrices for tests of the aligner, made by hand or by chance.
namespace veral3::test {

// A word of one-syllable pronunciations.
std::shared_ptr<const OwnedWordEntry> Word(std::wstring text, std::vector<std::string> variants);

WordSequence Sentence(std::vector<std::shared_ptr<const OwnedWordEntry>> words);

// A result that holds nothing but frame scores, as AlignScores wants it.
AlignmentResult WithScores(const CPhonemeSet& set, std::vector<double> scores);

// Scores in which frame i says the i-th pair of symbol and state of `track`, such as "k0k1k2a0":
// `high` there, `low` elsewhere.
AlignmentResult Spoken(const CPhonemeSet& set, std::string_view track, double high = 0.9,
                       double low = 1e-3);

// Three frames a phoneme, one for each state: "ka" gives "k0k1k2a0a1a2".
std::string Track(std::string_view phonemes);

// Decisions that make a case: given a bound, a number below it. From a random generator or from
// the bytes of a fuzzer.
using Chooser = std::function<std::uint32_t(std::uint32_t bound)>;

// The same numbers on every machine (splitmix64).
Chooser RandomChooser(std::uint64_t seed);

// Sentences added, then one alignment; several rounds to one aligner.
struct AlignerRound {
  std::vector<WordSequence> added;
  int num_frames = 0;
  std::vector<double> scores;
};
struct AlignerCase {
  const CPhonemeSet* set = nullptr;
  std::vector<AlignerRound> rounds;
};

// Anything that an aligner may meet: one to eight sentences that share words, several variants (now
// and then more than a node has room for), words of one text that are spoken differently, empty
// sentences, too few frames, exact ties, zeros and vanishing scores, sentences added after an
// alignment.
AlignerCase MakeAlignerCase(const Chooser& choose, int most_frames = 45);

// What came out of the alignments that were compared.
struct AlignerTally {
  int matched = 0;
  int matched_by_fallback = 0;
  int no_winner = 0;
  int no_sentence = 0;
  int tied_paths = 0;  // nodes in which tokens of one score met
  int too_many_nodes = 0;
};

// Plays a case to the engine's aligner and to the literal one. Empty when they agree to the last
// bit in everything, messages included; else what differs first.
std::string CompareWithLiteral(const AlignerCase& aligner_case, AlignerTally* tally = nullptr);

}  // namespace veral3::test
