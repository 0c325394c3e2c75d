#pragma once

#include <span>

#include "recognition/AlignmentResult.h"
#include "recognition/DecodingNetwork.h"
#include "recognition/TokenPassing.h"
#include "recognition/WordEntry.h"

namespace veral3 {

// The sentence that owns the nodes of the path; -1 when it only runs through shared ones.
int SentenceOfPath(const DecodingNetwork& network, std::span<const PathStep> steps);

// Turns the best path into phonemes, syllables and words: fills path, phonemes with their starts
// and ends, syllables, words, num_syllables and num_words of `result` anew.
// `matched`: the sentence that was read, among `sentences`.
//
// Returns 0, or -1 with a message when the result has no room: more than kMaxPhonemes phonemes,
// kMaxSyllables syllables or kMaxWords words.
int FillAlignment(const DecodingNetwork& network, std::span<const WordSequence> sentences,
                  int matched, std::span<const PathStep> steps, AlignmentResult& result);

}  // namespace veral3
