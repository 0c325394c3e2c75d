#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "common/CString.h"
#include "common/LanguageType.h"
#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/VeralDictionary.h"
#include "recognition/ViterbiAligner.h"

namespace veral3 {

inline constexpr int kMaxPossibleSentences = 8;

// What an AnalyzedAudio knows. Copying it shares everything large: what a step has made is never
// changed afterwards, a later step puts a new one in its place.
struct AnalysisState {
  LanguageType language{};
  const CPhonemeSet* phoneme_set = nullptr;           // null for an unknown language
  std::shared_ptr<const VeralDictionary> dictionary;  // the one loaded at construction
  ViterbiAligner aligner;
  int num_possible_sentences = 0;
  std::array<CString, kMaxPossibleSentences> possible_sentences;
  int num_samples = 0;                            // of the last buffer aligned
  std::shared_ptr<const AlignmentResult> result;  // null before the first alignment
};

}  // namespace veral3
