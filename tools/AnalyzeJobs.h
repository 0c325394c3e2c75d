#pragma once

#include <string>

#include "common/LanguageType.h"
#include "tools/AlignJobs.h"
#include "tools/AnalysisReport.h"

// Analysing a recording of a job.
namespace veral3::tools {

struct AnalyzeOutcome {
  AnalysisReport report;
  std::string messages;  // for the user, lines
};

// Measures what ReadAndAlign has aligned. Appends to `messages` what the engine wrote, save that
// models are missing, which is told of when they are loaded. Returns what went wrong, "" if
// nothing.
std::string Analyze(AlignedRecording& aligned, AnalyzedAudio& audio, std::string& messages);

// Reads, aligns and measures one recording. The resources of `language` are loaded. Nothing throws:
// what goes wrong is the error of the report's alignment.
AnalyzeOutcome RunAnalyzeJob(const AlignJob& job, LanguageType language);

}  // namespace veral3::tools
