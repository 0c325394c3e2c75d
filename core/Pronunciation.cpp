#include "core/Pronunciation.h"

namespace veral3 {

PronunciationResult AnalyzePronunciation(const CPhonemeSet& set, const AlignmentResult& alignment,
                                         const PhonemeScorer& scorer,
                                         const PronunciationResult& previous) {
  return {ClassifyPhonemes(set, alignment, scorer, previous.phonemes),
          CalculateUtteranceProbabilities(alignment)};
}

}  // namespace veral3
