#pragma once

#include <functional>
#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "tools/AlignmentReport.h"

// Aligning many recordings, one after another or several at a time.
namespace veral3::tools {

struct AlignJob {
  std::string file;
  std::vector<std::string> sentences;  // as the user gave them
  std::vector<std::string> prepared;   // as the engine takes them, in the same order
};

struct AlignOutcome {
  AlignmentReport report;
  std::string messages;  // for the user, lines: warnings about the recording, what the engine wrote
};

// Reads and aligns one recording. The resources of `language` are loaded. Nothing throws: what goes
// wrong is the report's error.
AlignOutcome RunAlignJob(const AlignJob& job, LanguageType language);

// Runs all jobs, up to `threads` at a time, and hands over each outcome in the order of the jobs,
// on the calling thread. Outcomes are the same for any number of threads.
void RunAlignJobs(const std::vector<AlignJob>& jobs, LanguageType language, int threads,
                  const std::function<void(const AlignOutcome&)>& take);

}  // namespace veral3::tools
