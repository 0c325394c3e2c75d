#include <algorithm>
#include <ostream>

#include "common/Guarded.h"
#include "core/AlignInfo.h"
#include "core/AlignmentPrint.h"
#include "core/AnalysisChecks.h"
#include "core/AnalysisState.h"
#include "core/AnalyzedAudio.h"
#include "core/ModelScorers.h"
#include "core/TrainingExports.h"
#include "recognition/FrameExport.h"

// What leaves an AnalyzedAudio: its alignment record, its report, and training examples.
namespace {

using veral3::AlignmentOf;
using veral3::AlignmentResult;
using veral3::AnalysisState;

constexpr double kLoudPart = 10.0;  // a frame is loud above mean speech / this

int Refuse(const char* operation, const char* what) {
  veral3::ReportError("AnalyzedAudio", operation, what);
  return -1;
}

bool HoldsAlignment(const AnalysisState* state, const char* operation) {
  if (AlignmentOf(state).matched_sentence_index >= 0) return true;
  Refuse(operation, "nothing is aligned");
  return false;
}

enum class Needs { kAlignment, kIntensity, kPitch, kGaps, kGoodness };

// Examples from an analysis that was not made would be all zeros.
bool Has(Needs needs, const AnalysisState& state) {
  switch (needs) {
    case Needs::kAlignment:
      return true;
    case Needs::kIntensity:
      return HasIntensity(state);
    case Needs::kPitch:
      return HasPitch(state);
    case Needs::kGaps:
      return !GoodnessOf(&state).loud_gaps.empty();
    case Needs::kGoodness:
      return !GoodnessOf(&state).loud_gaps.empty() && state.pronunciation;
  }
  return false;
}

// Runs an export of what there is, and says so when a stream did not take it.
template <typename Write, typename... Streams>
int Export(const char* operation, const AnalysisState* state, Needs needs, Write write,
           const Streams&... streams) {
  return veral3::Guarded("AnalyzedAudio", operation, [&] {
    if (!HoldsAlignment(state, operation)) return -1;
    if (!Has(needs, *state)) return Refuse(operation, "nothing is analysed");
    write(*state, AlignmentOf(state));
    if (!(streams && ...)) return Refuse(operation, "a stream does not take what is written");
    return 0;
  });
}

}  // namespace

int AnalyzedAudio::GetSizeOfAlignInfo() { return static_cast<int>(veral3::kAlignInfoSize); }

int AnalyzedAudio::GetAlignInfo(unsigned char* buffer) {
  return veral3::Guarded("AnalyzedAudio", "GetAlignInfo", [&] {
    if (!buffer) return Refuse("GetAlignInfo", "no buffer");
    if (!HoldsAlignment(State(), "GetAlignInfo")) return -1;
    veral3::AlignInfo info;
    if (veral3::TakeDown(*this, info) < 0) return -1;
    const auto bytes = veral3::EncodeAlignInfo(info);
    std::copy(bytes.begin(), bytes.end(), buffer);
    return 0;
  });
}

int AnalyzedAudio::PrintAlignmentResult() {
  return veral3::Guarded("AnalyzedAudio", "PrintAlignmentResult", [&] {
    if (!HoldsAlignment(State(), "PrintAlignmentResult")) return -1;
    veral3::ProbabilityOfGoodAlignment(*State());  // reports what is missing for it
    veral3::PrintAlignment(*this, veral3::PronunciationOf(State()).phonemes.sounds_like,
                           veral3::GoodnessOf(State()).good_syllable);
    return 0;
  });
}

int AnalyzedAudio::SaveUttGoodnessTrainData(bool good, std::ostream& features,
                                            std::ostream& labels) {
  const auto write = [&](const AnalysisState&, const AlignmentResult&) {
    veral3::GoodnessFeatures values{};
    PrepareUttGoodnessFeatures(values.data());
    veral3::WriteGoodnessExample(values, good, features, labels);
  };
  return Export("SaveUttGoodnessTrainData", State(), Needs::kGoodness, write, features, labels);
}

int AnalyzedAudio::SaveSylCTToneData(std::ostream& features, std::ostream& labels) {
  const auto write = [&](const AnalysisState& state, const AlignmentResult& alignment) {
    veral3::WriteToneExamples(alignment, state.prosody->pitch, features, labels);
  };
  return Export("SaveSylCTToneData", State(), Needs::kPitch, write, features, labels);
}

int AnalyzedAudio::SavePhonMFCCDataToFiles(std::ostream& features, std::ostream& labels) {
  const auto write = [&](const AnalysisState& state, const AlignmentResult& alignment) {
    veral3::WritePhonemeExamples(*state.phoneme_set, alignment, features, labels);
  };
  return Export("SavePhonMFCCDataToFiles", State(), Needs::kAlignment, write, features, labels);
}

int AnalyzedAudio::SaveFrameMFCCDataToFiles(std::ostream& features, std::ostream& labels,
                                            double threshold) {
  const auto write = [&](const AnalysisState& state, const AlignmentResult& alignment) {
    const veral3::IntensityMeasures& intensity = state.prosody->intensity;
    const veral3::FrameExportChoice choice{.threshold = threshold,
                                           .loud_above = intensity.mean_speech / kLoudPart,
                                           .intensity = intensity.frame};
    veral3::ExportFrames(*state.phoneme_set, alignment, choice, features, labels);
  };
  return Export("SaveFrameMFCCDataToFiles", State(), Needs::kIntensity, write, features, labels);
}

int AnalyzedAudio::SaveAdjustedFrameMFCCDataToFiles(std::ostream& features, std::ostream& labels) {
  const auto write = [&](const AnalysisState& state, const AlignmentResult& alignment) {
    veral3::ExportAdjustedFrames(*state.phoneme_set, alignment, features, labels);
  };
  return Export("SaveAdjustedFrameMFCCDataToFiles", State(), Needs::kAlignment, write, features,
                labels);
}

int AnalyzedAudio::SaveSylBadTraits(std::ostream& lines) {
  const auto write = [&](const AnalysisState& state, const AlignmentResult& alignment) {
    veral3::WriteSyllableTraits(alignment, *state.prosody, lines);
  };
  return Export("SaveSylBadTraits", State(), Needs::kPitch, write, lines);
}

int AnalyzedAudio::SavePhonBadTraits(std::ostream& lines) {
  const auto write = [&](const AnalysisState&, const AlignmentResult& alignment) {
    veral3::WritePhonemeTraits(alignment, lines);
  };
  return Export("SavePhonBadTraits", State(), Needs::kAlignment, write, lines);
}

int AnalyzedAudio::SaveSylPauseBadTraits(std::ostream& lines) {
  const auto write = [&](const AnalysisState& state, const AlignmentResult& alignment) {
    veral3::WritePauseTraits(alignment, *state.goodness, lines);
  };
  return Export("SaveSylPauseBadTraits", State(), Needs::kGaps, write, lines);
}
