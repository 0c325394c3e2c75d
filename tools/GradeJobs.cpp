#include "tools/GradeJobs.h"

#include <utility>

#include "grading/GradedAudio.h"
#include "tools/AnalyzeJobs.h"
#include "tools/EngineMessages.h"
#include "tools/Resources.h"

namespace veral3::tools {
namespace {

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
  outcome.messages += engine.Text();
  outcome.report =
      MakeGradeReport(MakeAnalysisReport(MakeReport(job.file, aligned->sentence, learner), learner,
                                         LoadedModels(language)),
                      learner, tutor != nullptr ? tutor->audio.get() : nullptr);
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
