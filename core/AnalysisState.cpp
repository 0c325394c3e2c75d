#include "core/AnalysisState.h"

namespace veral3 {
namespace {

template <typename Result>
const Result& OrEmpty(const std::shared_ptr<const Result>* result) {
  static const Result empty;
  return result && *result ? **result : empty;
}

}  // namespace

const AlignmentResult& AlignmentOf(const AnalysisState* state) {
  return OrEmpty(state ? &state->result : nullptr);
}

const PronunciationResult& PronunciationOf(const AnalysisState* state) {
  return OrEmpty(state ? &state->pronunciation : nullptr);
}

const ProsodyResult& ProsodyOf(const AnalysisState* state) {
  if (state && !state->prosody) return state->released_prosody;
  return OrEmpty(state ? &state->prosody : nullptr);
}

const GoodnessResult& GoodnessOf(const AnalysisState* state) {
  return OrEmpty(state ? &state->goodness : nullptr);
}

}  // namespace veral3
