#include "tools/AnalyzeJobs.h"

#include <cstdint>
#include <sstream>
#include <utility>

#include "core/AnalyzedAudio.h"
#include "tools/EngineMessages.h"
#include "tools/EngineWords.h"
#include "tools/Resources.h"

namespace veral3::tools {
namespace {

bool HasVoice(AnalyzedAudio& audio) {
  for (int i = 0; i < audio.GetNumOfSyllables(); ++i) {
    if (audio.GetSyllablePitch(i) > 0) return true;
  }
  return false;
}

}  // namespace

std::string Analyze(AlignedRecording& aligned, AnalyzedAudio& audio, std::string& messages) {
  const EngineMessages engine;
  std::vector<std::int16_t>& samples = aligned.recording.samples;
  if (audio.Analyze(static_cast<std::uint32_t>(samples.size()), samples.data()) < 0) {
    return "cannot be analysed: " + engine.OneLine();
  }
  std::istringstream lines(engine.Text());
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with("model is loaded.")) continue;
    messages += line == kNoPitchSegments && HasVoice(audio) ? std::string(kNoVoiceStandsOut)
                                                            : InWords(line);
    messages += "\n";
  }
  return "";
}

AnalyzeOutcome RunAnalyzeJob(const AlignJob& job, LanguageType language) {
  AnalyzeOutcome outcome;
  std::string error = ErrorOf([&]() -> std::string {
    AnalyzedAudio audio(language);
    Result<AlignedRecording> aligned = ReadAndAlign(job, audio, outcome.messages);
    if (!aligned) return aligned.Error();
    if (std::string failure = Analyze(*aligned, audio, outcome.messages); !failure.empty()) {
      return failure;
    }
    outcome.report = MakeAnalysisReport(MakeReport(job.file, aligned->sentence, audio), audio,
                                        LoadedModels(language));
    return "";
  });
  if (!error.empty()) {
    outcome.report = {};
    outcome.report.alignment = FailedReport(job, std::move(error));
  }
  return outcome;
}

}  // namespace veral3::tools
