#include "tools/AlignJobs.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include "core/AnalyzedAudio.h"
#include "signal/CWaveFrameDef.h"
#include "tools/EngineMessages.h"
#include "tools/EngineWords.h"
#include "tools/Numbers.h"
#include "tools/Shortened.h"
#include "tools/ShortestReading.h"
#include "tools/SoundSigns.h"

namespace veral3::tools {
namespace {

// Frames of the shortest recording that one of the sentences fits into; nothing where none fits
// any.
std::optional<int> LeastFramesOf(const AlignJob& job, LanguageType language) {
  std::optional<int> least;
  for (const std::string& sentence : job.prepared) {
    const std::optional<int> frames = LeastFramesOfSentence(sentence, language);
    if (frames && (!least || *frames < *least)) least = frames;
  }
  return least;
}

// Why a recording of `num_samples` samples was not aligned, of which the engine wrote `messages`.
std::string WhyNotAligned(const AlignJob& job, LanguageType language, std::size_t num_samples,
                          const EngineMessages& messages) {
  if (messages.Text().find(kNoPath) == std::string::npos) return messages.OneLine();
  const std::optional<int> least = LeastFramesOf(job, language);
  const auto samples = static_cast<int>(num_samples);
  if (least && NumFrames(static_cast<std::uint32_t>(samples)) < *least) {
    const char* const what = job.prepared.size() == 1 ? "this sentence" : "each of these sentences";
    // Cut off and rounded up, so that the two never look alike.
    const double own = std::floor(1000.0 * Seconds(samples)) / 1000.0;
    const double needed = std::ceil(1000.0 * Seconds(SamplesOfFrames(*least))) / 1000.0;
    return std::string("too short for ") + what + ": " + Fixed(own, 3) + " s, at least " +
           Fixed(needed, 3) + " s are needed";
  }
  return messages.OneLine();
}

}  // namespace

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

  const double clipped_share = ClippedShare(recording.samples);
  const EngineMessages engine;
  for (const std::string& sentence : job.prepared) {
    if (audio.AddPossibleSentence(CString(sentence)) < 0) {
      return Failure::Failure("sentence \"" + Shortened(sentence) +
                              "\" cannot be used: " + engine.OneLine());
    }
  }
  const int matched =
      audio.Align(static_cast<std::uint32_t>(recording.samples.size()), recording.samples.data());
  if (matched < 0 || static_cast<std::size_t>(matched) >= job.sentences.size()) {
    return Failure::Failure("cannot be aligned: " + WhyNotAligned(job, audio.GetLanguageType(),
                                                                  recording.samples.size(),
                                                                  engine));
  }
  messages += LinesInWords(engine.Text());
  return AlignedRecording{std::move(recording), job.sentences[static_cast<std::size_t>(matched)],
                          clipped_share};
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
