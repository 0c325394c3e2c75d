#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "recognition/ViterbiNode.h"
#include "recognition/WordEntry.h"

namespace veral3 {

// The network of phoneme states that recordings are aligned to. Every path from the start node to
// the end node reads one of the sentences, in one pronunciation of each word, with or without a
// pause at each word boundary and at both ends. Words that all sentences begin or end with are
// shared; what lies between belongs to its sentence.
//
//   DecodingNetwork network;
//   ExtendNetwork(network, sentences);
//
// Apart from start and end, nodes come in threes: the states 0, 1 and 2 of one phoneme. A phoneme
// is made after everything that can follow it, so links between phonemes always lead to lower
// numbers.
struct DecodingNetwork {
  static constexpr std::int32_t kEndNode = 0;
  static constexpr std::int32_t kStartNode = 1;
  static constexpr std::int32_t kFirstPhonemeNode = 2;

  DecodingNetwork();

  int NumPhonemes() const { return (static_cast<int>(nodes.size()) - kFirstPhonemeNode) / 3; }

  std::vector<ViterbiNode> nodes;  // in order of creation
  // The last sentence without words of its own (nothing but the shared ones); -1: none so far.
  std::int32_t fallback_sentence = -1;
};

// Adds a network of all `sentences` beside what is there. Earlier sentences stay reachable from the
// start node, which keeps its successors, and an earlier fallback sentence stays until another
// takes its place. Pronunciations that cannot be used are passed over with a message; a word
// without any blocks the sentences that need it.
void ExtendNetwork(DecodingNetwork& network, std::span<const WordSequence> sentences);

// Whether a pronunciation has phonemes, and each of its syllables a mark and a beginning among them
// (or at their end).
bool CanBeAligned(const Pronunciation& pronunciation);

}  // namespace veral3
