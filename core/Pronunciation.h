#pragma once

#include "core/PhonemeDistributions.h"
#include "core/UtteranceProbabilities.h"
#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"

namespace veral3 {

// How an aligned recording was pronounced, phoneme by phoneme and as a whole.
struct PronunciationResult {
  PhonemeDistributions phonemes;
  UtteranceProbabilities utterance;
};

// `previous`: what this object had before, as ClassifyPhonemes takes it.
PronunciationResult AnalyzePronunciation(const CPhonemeSet& set, const AlignmentResult& alignment,
                                         const PhonemeScorer& scorer,
                                         const PronunciationResult& previous);

}  // namespace veral3
