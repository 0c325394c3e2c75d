#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "common/CString.h"
#include "common/LanguageType.h"
#include "core/Goodness.h"
#include "core/Pronunciation.h"
#include "core/Prosody.h"
#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/VeralDictionary.h"
#include "recognition/ViterbiAligner.h"
#include "signal/WaveformContour.h"

namespace veral3 {

inline constexpr int kMaxPossibleSentences = 8;

// What an AnalyzedAudio knows. Copying it shares everything large: what a step has made is never
// changed afterwards, a later step puts a new one in its place. Results that no step has made yet
// are null.
struct AnalysisState {
  LanguageType language{};
  const CPhonemeSet* phoneme_set = nullptr;           // null for an unknown language
  std::shared_ptr<const VeralDictionary> dictionary;  // the one loaded at construction
  ViterbiAligner aligner;
  int num_possible_sentences = 0;
  std::array<CString, kMaxPossibleSentences> possible_sentences;
  int num_samples = 0;                            // of the last buffer aligned
  std::shared_ptr<const AlignmentResult> result;  // null before the first alignment

  std::shared_ptr<const PronunciationResult> pronunciation;
  std::shared_ptr<const ProsodyResult> prosody;
  std::shared_ptr<const GoodnessResult> goodness;
  std::shared_ptr<const std::array<int, kWaveformPoints>> waveform;
  double signal_noise_ratio = 0.0;  // ratio of powers; 0 until computed

  // What the analysis before this alignment left: silence and phonemes that a model says nothing of
  // refer back to it.
  std::shared_ptr<const PronunciationResult> earlier_pronunciation;
  double earlier_energy_ratio = 0.0;
};

// The results, or empty ones where there are none: for reading without asking first.
const AlignmentResult& AlignmentOf(const AnalysisState* state);
const PronunciationResult& PronunciationOf(const AnalysisState* state);
const ProsodyResult& ProsodyOf(const AnalysisState* state);
const GoodnessResult& GoodnessOf(const AnalysisState* state);

}  // namespace veral3
