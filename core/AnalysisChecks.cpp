#include "core/AnalysisChecks.h"

#include <limits>

#include "common/Guarded.h"

namespace veral3 {
namespace {

bool Refuse(const char* operation, const char* what) {
  ReportError("AnalyzedAudio", operation, what);
  return false;
}

}  // namespace

bool IsUsable(const AnalysisState* state, const char* operation) {
  if (state && state->phoneme_set && state->dictionary) return true;
  return Refuse(operation, "unknown Language Type");
}

bool AreSamples(std::uint32_t num_samples, const std::int16_t* samples, const char* operation) {
  if (num_samples > static_cast<std::uint32_t>(std::numeric_limits<int>::max())) {
    return Refuse(operation, "dNumOfSamples too large");
  }
  if (!samples && num_samples > 0) return Refuse(operation, "no samples");
  return true;
}

bool IsAligned(const AnalysisState* state, const char* operation) {
  if (!IsUsable(state, operation)) return false;
  if (AlignmentOf(state).matched_sentence_index < 0) {
    return Refuse(operation, "nothing is aligned");
  }
  return true;
}

bool IsAligned(const AnalysisState* state, const std::int16_t* samples, const char* operation) {
  return IsAligned(state, operation) &&
         AreSamples(static_cast<std::uint32_t>(state->num_samples), samples, operation);
}

bool HasIntensity(const AnalysisState& state) { return !ProsodyOf(&state).intensity.frame.empty(); }

bool HasPitch(const AnalysisState& state) { return !ProsodyOf(&state).pitch.frame.empty(); }

}  // namespace veral3
