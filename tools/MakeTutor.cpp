#include "tools/MakeTutor.h"

#include <limits>
#include <utility>

#include "core/AnalyzedAudio.h"
#include "tools/AnalyzeJobs.h"
#include "tools/AudioFile.h"
#include "tools/EngineMessages.h"
#include "tools/Numbers.h"

namespace veral3::tools {
namespace {

// What the record would give back wrong, "" when it holds the analysis.
std::string Misfit(AnalyzedAudio& audio) {
  constexpr int kMostSamples = std::numeric_limits<std::int16_t>::max();
  for (int s = 0; s < audio.GetNumOfSyllables(); ++s) {
    if (audio.GetSyllableDuration(s) > kMostSamples) {
      return "syllable " + std::to_string(s + 1) + " lasts " +
             Fixed(Seconds(audio.GetSyllableDuration(s)), 2) + " s; a tutor's last at most " +
             Fixed(Seconds(kMostSamples), 2) + " s";
    }
  }
  return "";
}

}  // namespace

Result<TutorFile> MakeTutor(const AlignJob& job, LanguageType language, std::string& messages) {
  using Failure = Result<TutorFile>;
  // Kept for the file: the alignment filters what it is given.
  Result<Recording> untouched = ReadAudioFile(job.file);
  if (!untouched) return Failure::Failure(untouched.Error());
  if (untouched->silent) return Failure::Failure("is silent: every sample is 0");
  if (untouched->samples.size() > kMaxTutorSamples) {
    return Failure::Failure("is longer than 5.4 minutes, the most that a tutor file holds");
  }

  AnalyzedAudio audio(language);
  Result<AlignedRecording> aligned = AlignRecording(job, *untouched, audio, messages);
  if (!aligned) return Failure::Failure(aligned.Error());
  if (audio.GetNumOfPhonemes() == 0)
    return Failure::Failure("cannot be aligned: nothing was found");
  if (std::string error = Analyze(*aligned, audio, messages); !error.empty()) {
    return Failure::Failure(std::move(error));
  }

  TutorFile tutor;
  tutor.language = language;
  tutor.variety = VarietyOf(language);
  tutor.sentence = std::move(aligned->sentence);
  tutor.samples = std::move(untouched->samples);
  const EngineMessages engine;
  if (audio.GetAlignInfo(tutor.record.data()) < 0) {
    return Failure::Failure("cannot be kept in a tutor file: " + engine.OneLine());
  }
  if (const std::string misfit = Misfit(audio); !misfit.empty()) {
    return Failure::Failure("cannot be kept in a tutor file: " + misfit);
  }
  return tutor;
}

}  // namespace veral3::tools
