#pragma once

#include <functional>
#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "tools/AlignmentReport.h"
#include "tools/AudioFile.h"
#include "tools/Result.h"

// Aligning the recording of a job.
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

// A recording and what was read in it.
struct AlignedRecording {
  Recording recording;         // as the alignment left it: filtered
  std::string sentence;        // as the user gave it
  double clipped_share = 0.0;  // of the recording as it was before (tools/SoundSigns.h)
};

// Reads the recording of a job and aligns it in `audio`, a fresh object, whose language's resources
// are loaded. Appends to `messages` what the user should know of the recording, and what the engine
// wrote.
Result<AlignedRecording> ReadAndAlign(const AlignJob& job, AnalyzedAudio& audio,
                                      std::string& messages);

// The same with the recording already read.
Result<AlignedRecording> AlignRecording(const AlignJob& job, Recording recording,
                                        AnalyzedAudio& audio, std::string& messages);

// Why `step` failed, "" when it did not: what it returned, or what it threw in words for the user.
std::string ErrorOf(const std::function<std::string()>& step);

// A report of a recording for which there is none.
AlignmentReport FailedReport(const AlignJob& job, std::string error);

// Reads and aligns one recording. The resources of `language` are loaded. Nothing throws: what goes
// wrong is the report's error.
AlignOutcome RunAlignJob(const AlignJob& job, LanguageType language);

}  // namespace veral3::tools
