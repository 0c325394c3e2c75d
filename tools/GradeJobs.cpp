#include "tools/GradeJobs.h"

#include <array>
#include <utility>

#include "grading/GradedAudio.h"
#include "signal/CWaveFrameDef.h"
#include "tools/AnalyzeJobs.h"
#include "tools/EngineMessages.h"
#include "tools/EngineWords.h"
#include "tools/Numbers.h"
#include "tools/Resources.h"
#include "tools/SoundSigns.h"

namespace veral3::tools {
namespace {

// The numbers that the hints about lowered scores rest on. `report`: of the analysed `learner`.
RecordingSigns SignsOf(const AlignedRecording& aligned, const AnalysisReport& report,
                       AnalyzedAudio& learner) {
  RecordingSigns signs;
  signs.clipped_share = aligned.clipped_share;
  signs.levels = MeasureLevels(aligned.recording.samples, report.start, report.end);
  signs.start_gap_s = Seconds(report.start);
  signs.end_gap_s = Seconds(report.alignment.num_samples - report.end);
  signs.phonemes = static_cast<int>(report.phonemes.size());
  for (std::size_t i = 0; i < report.phonemes.size(); ++i) {
    const std::string& heard = report.phonemes[i].sounds_like;
    if (!heard.empty() && heard != report.alignment.phonemes[i].text) ++signs.unlike;
  }
  std::array<double, AnalyzedAudio::NUM_UTT_GOODNESS_FEATURES> features{};
  learner.PrepareUttGoodnessFeatures(features.data());
  constexpr std::size_t kLoudFramesBefore = 8;
  constexpr std::size_t kLoudFramesAfter = 9;
  signs.loud_before_s = features[kLoudFramesBefore] * Seconds(kFrameShift);
  signs.loud_after_s = features[kLoudFramesAfter] * Seconds(kFrameShift);
  return signs;
}

std::string Grade(const AlignJob& job, LanguageType language, const Tutor* tutor,
                  GradeOutcome& outcome) {
  GradedAudio learner(language);
  Result<AlignedRecording> aligned = ReadAndAlign(job, learner, outcome.messages);
  if (!aligned) return aligned.Error();
  std::vector<std::int16_t>& samples = aligned->recording.samples;
  if (aligned->recording.silent) return "is silent: there is nothing to grade";

  if (tutor != nullptr) {
    if (std::string problem = Analyze(*aligned, learner, outcome.messages); !problem.empty()) {
      return problem;
    }
  }
  const EngineMessages engine;
  const bool measured = tutor != nullptr || learner.AnalyzePronunOnly(samples.data()) == 0;
  const int total = !measured          ? -1
                    : tutor != nullptr ? learner.GradeAgainstTutor(tutor->audio.get())
                                       : learner.GradePronunOnly();
  if (total < 0) {
    const std::string reason = engine.OneLine();
    return "cannot be graded: " +
           (reason.empty() ? "a syllable has no phonemes that can be scored" : reason);
  }
  outcome.messages += LinesInWords(engine.Text());
  outcome.report =
      MakeGradeReport(MakeAnalysisReport(MakeReport(job.file, aligned->sentence, learner), learner,
                                         LoadedModels(language)),
                      learner, tutor != nullptr ? tutor->audio.get() : nullptr);
  if (const std::optional<double>& kept = outcome.report.lowered_to;
      kept && *kept < kTellLoweredBelow) {
    outcome.report.reasons = HintsOf(SignsOf(*aligned, outcome.report.analysis, learner));
  }
  outcome.report.drawn = DrawingOf(job.file, learner, samples);
  if (tutor != nullptr) {
    outcome.report.tutor_file = tutor->drawn.file;
    outcome.report.teacher = tutor->teacher;
  }
  return "";
}

}  // namespace

GradeOutcome RunGradeJob(const AlignJob& job, LanguageType language, const Tutor* tutor) {
  GradeOutcome outcome;
  std::string error = ErrorOf([&] { return Grade(job, language, tutor, outcome); });
  if (!error.empty()) {
    outcome.report = {};
    outcome.report.analysis.alignment = FailedReport(job, std::move(error));
  }
  return outcome;
}

}  // namespace veral3::tools
