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

// What the steps of an analysis have measured. What a step has made is never changed afterwards, a
// later step puts a new one in its place: copies share it, and making one cannot fail. Results that
// no step has made yet are null.
struct Measurements {
  std::shared_ptr<const PronunciationResult> pronunciation;
  std::shared_ptr<const ProsodyResult> prosody;
  std::shared_ptr<const GoodnessResult> goodness;
  std::shared_ptr<const std::array<int, kWaveformPoints>> waveform;
  double signal_noise_ratio = 0.0;  // ratio of powers; 0 until computed

  // What ReleaseMemory left of `prosody`: its arrays are empty.
  ProsodyResult released_prosody;

  // Phonemes that a model says nothing of, and silence, refer back to what the analysis before had,
  // which may be one of an earlier alignment.
  std::shared_ptr<const PronunciationResult> earlier_pronunciation;
  double last_energy_ratio = 0.0;
};

// What an AnalyzedAudio knows. Copies share everything large.
struct AnalysisState : Measurements {
  LanguageType language{};
  const CPhonemeSet* phoneme_set = nullptr;           // null for an unknown language
  std::shared_ptr<const VeralDictionary> dictionary;  // the one loaded at construction
  ViterbiAligner aligner;
  int num_possible_sentences = 0;
  std::array<CString, kMaxPossibleSentences> possible_sentences;
  int num_samples = 0;                            // of the last buffer aligned
  std::shared_ptr<const AlignmentResult> result;  // null where no alignment was tried
};

// The results, or empty ones where there are none: for reading without asking first. Of a prosody
// that was released, what is left.
const AlignmentResult& AlignmentOf(const AnalysisState* state);
const PronunciationResult& PronunciationOf(const AnalysisState* state);
const ProsodyResult& ProsodyOf(const AnalysisState* state);
const GoodnessResult& GoodnessOf(const AnalysisState* state);

}  // namespace veral3
