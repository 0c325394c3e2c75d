#include "tools/AlignJobs.h"

#include <cstdint>
#include <exception>
#include <new>
#include <utility>

#include "core/AnalyzedAudio.h"
#include "tools/EngineMessages.h"
#include "tools/Numbers.h"

namespace veral3::tools {

Result<AlignedRecording> ReadAndAlign(const AlignJob& job, AnalyzedAudio& audio,
                                      std::string& messages) {
  Result<Recording> recording = ReadAudioFile(job.file);
  if (!recording) return Result<AlignedRecording>::Failure(recording.Error());
  return AlignRecording(job, std::move(*recording), audio, messages);
}

Result<AlignedRecording> AlignRecording(const AlignJob& job, Recording recording,
                                        AnalyzedAudio& audio, std::string& messages) {
  using Failure = Result<AlignedRecording>;
  if (recording.silent) messages += "is silent: every sample is 0\n";
  if (recording.clamped > 0) {
    messages += "is louder than 16 bits hold: " + std::to_string(recording.clamped) +
                " samples were clamped\n";
  }

  const EngineMessages engine;
  for (const std::string& sentence : job.prepared) {
    if (audio.AddPossibleSentence(CString(sentence)) < 0) {
      return Failure::Failure("sentence \"" + sentence + "\" cannot be used: " + engine.OneLine());
    }
  }
  const int matched =
      audio.Align(static_cast<std::uint32_t>(recording.samples.size()), recording.samples.data());
  if (matched < 0 || static_cast<std::size_t>(matched) >= job.sentences.size()) {
    std::string error = "cannot be aligned: " + engine.OneLine();
    if (error.find("No Sentence matched") != std::string::npos) {
      error += " (the recording, " + Fixed(Seconds(static_cast<int>(recording.samples.size())), 3) +
               " s, may be too short for the sentence)";
    }
    return Failure::Failure(std::move(error));
  }
  messages += engine.Text();
  return AlignedRecording{std::move(recording), job.sentences[static_cast<std::size_t>(matched)]};
}

std::string ErrorOf(const std::function<std::string()>& step) {
  try {
    return step();
  } catch (const std::bad_alloc&) {
    return "memory ran out";
  } catch (const std::exception& error) {
    return error.what();
  }
}

AlignmentReport FailedReport(const AlignJob& job, std::string error) {
  AlignmentReport report;
  report.file = job.file;
  report.error = std::move(error);
  return report;
}

AlignOutcome RunAlignJob(const AlignJob& job, LanguageType language) {
  AlignOutcome outcome;
  std::string error = ErrorOf([&]() -> std::string {
    AnalyzedAudio audio(language);
    const Result<AlignedRecording> aligned = ReadAndAlign(job, audio, outcome.messages);
    if (!aligned) return aligned.Error();
    outcome.report = MakeReport(job.file, aligned->sentence, audio);
    return "";
  });
  if (!error.empty()) outcome.report = FailedReport(job, std::move(error));
  return outcome;
}

}  // namespace veral3::tools
