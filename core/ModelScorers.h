#pragma once

#include "core/AnalysisState.h"
#include "core/Goodness.h"
#include "core/PhonemeDistributions.h"
#include "core/Tones.h"
#include "recognition/DLCTToneClassifier.h"
#include "recognition/DLPhonClassifier.h"
#include "recognition/UGClassifier.h"

// The classifiers as the measuring steps ask for them. A scorer refers to its classifier: whoever
// uses one of a process-wide classifier holds a ModelsInUse meanwhile.
//
//   const ModelsInUse models_in_use;
//   AnalyzePronunciation(set, alignment, ScorerOf(PhonClassifierOf(set.GetIdentifier())), before);
namespace veral3 {

// Null is a classifier without a model. Outputs that a model lacks are reported by its classifier
// and read 0.
PhonemeScorer ScorerOf(const DLPhonClassifier* classifier);

ToneScorer ScorerOf(const DLCTToneClassifier& classifier);

GoodnessScorer ScorerOf(const UGClassifier& classifier);

// What the goodness model that is loaded says of an analysis; 0 with a message without a model.
double ProbabilityOfGoodAlignment(const AnalysisState& state);

}  // namespace veral3
