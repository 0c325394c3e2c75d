#pragma once

#include <string>

#include "common/LanguageType.h"
#include "tools/AlignJobs.h"
#include "tools/GradeReport.h"
#include "tools/Tutor.h"

// Grading the learner of a job.
namespace veral3::tools {

struct GradeOutcome {
  GradeReport report;
  std::string messages;  // for the user, lines
};

// Reads, aligns, measures and grades one learner, against `tutor` or, where it is null, in the
// pronunciation alone. The resources of `language` are loaded. Nothing throws: what goes wrong is
// the error of the report's alignment. Several threads may grade against one tutor at once.
GradeOutcome RunGradeJob(const AlignJob& job, LanguageType language, const Tutor* tutor);

}  // namespace veral3::tools
