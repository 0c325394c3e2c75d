#include "core/ModelScorers.h"

#include "recognition/Models.h"

namespace veral3 {

static_assert(kPhonemeInputSize == DLPhonClassifier::kInputs);
static_assert(kToneFeatureCount == DLCTToneClassifier::kInputs);
static_assert(kToneClassCount == DLCTToneClassifier::kTones);
static_assert(kGoodnessFeatureCount == UGClassifier::kInputs);

PhonemeScorer ScorerOf(const DLPhonClassifier* classifier) {
  if (!classifier) return {};
  return [classifier](std::span<const float> inputs, std::span<double> scores) {
    if (!classifier->IsLoaded()) return false;
    const std::size_t count = inputs.size() / kPhonemeInputSize;
    if (count == 0) return true;
    classifier->ClassifyPhons(inputs.data(), static_cast<int>(count),
                              static_cast<int>(kPhonemeInputSize), scores.data(),
                              static_cast<int>(scores.size() / count));
    return true;
  };
}

ToneScorer ScorerOf(const DLCTToneClassifier& classifier) {
  return [&classifier](std::span<const ToneFeatures> features, std::span<ToneProbabilities> tones) {
    if (!classifier.IsLoaded()) return false;
    for (std::size_t i = 0; i < features.size() && i < tones.size(); ++i) {
      classifier.ClassifyTone(features[i].data(), tones[i].data());
    }
    return true;
  };
}

GoodnessScorer ScorerOf(const UGClassifier& classifier) {
  return [&classifier](const GoodnessFeatures& features) -> std::optional<double> {
    if (!classifier.IsLoaded()) return std::nullopt;
    return classifier.ClassifyUtteranceGoodness(features.data());
  };
}

double ProbabilityOfGoodAlignment(const AnalysisState& state) {
  const ModelsInUse models_in_use;
  const GoodnessFeatures features =
      PrepareGoodnessFeatures(state.language, AlignmentOf(&state), ProsodyOf(&state).intensity,
                              PronunciationOf(&state), GoodnessOf(&state));
  return ProbabilityOfGoodAlignment(features, ScorerOf(GoodnessClassifier()));
}

}  // namespace veral3
