#include "tools/Tutor.h"

#include <algorithm>
#include <utility>

#include "core/AnalyzedAudio.h"
#include "recognition/Languages.h"
#include "storage/SavedAlignedAudio.h"
#include "tools/AnalyzeJobs.h"
#include "tools/EngineMessages.h"

namespace veral3::tools {
namespace {

constexpr const char* kSilent = "is silent: there is nothing to grade against";

// A recording whose destructor, which is not virtual, is that of its own class.
template <typename Audio>
struct Owned {
  explicit Owned(LanguageType language) : audio(language) {}
  Audio audio;
};

template <typename Audio>
std::shared_ptr<Audio> MakeAudio(LanguageType language) {
  const auto owned = std::make_shared<Owned<Audio>>(language);
  return {owned, &owned->audio};
}

bool IsSilent(const std::vector<std::int16_t>& samples) {
  return std::ranges::all_of(samples, [](std::int16_t sample) { return sample == 0; });
}

}  // namespace

Result<Tutor> StoredTutor(const std::string& file, TutorFile tutor, LanguageType language) {
  using Failure = Result<Tutor>;
  if (tutor.language != language) {
    return Failure::Failure("speaks " + std::string(LanguageName(tutor.language)) + ", not " +
                            std::string(LanguageName(language)));
  }
  if (IsSilent(tutor.samples)) return Failure::Failure(kSilent);
  const EngineMessages messages;
  const auto saved = MakeAudio<SavedAlignedAudio>(language);
  HLYFile stored = AsHLYFile(tutor);
  if (saved->LoadFromHLY(&stored) != 0) {
    return Failure::Failure("cannot be used: " + messages.OneLine());
  }
  return Tutor{saved, tutor.sentence, tutor.teacher, DrawingOf(file, *saved, tutor.samples)};
}

Result<Tutor> AnalyzedTutor(const AlignJob& job, const InputFile& input, LanguageType language,
                            std::string& messages) {
  using Failure = Result<Tutor>;
  Result<Tutor> tutor = Failure::Failure("");
  std::string error = ErrorOf([&]() -> std::string {
    const auto audio = MakeAudio<AnalyzedAudio>(language);
    Result<Recording> recording = ReadAudio(input);
    if (!recording) return recording.Error();
    Result<AlignedRecording> aligned = AlignRecording(job, std::move(*recording), *audio, messages);
    if (!aligned) return aligned.Error();
    if (aligned->recording.silent) return kSilent;
    if (std::string problem = Analyze(*aligned, *audio, messages); !problem.empty()) return problem;
    if (audio->GetNumOfSyllables() == 0) return "has no syllables to grade against";
    tutor = Tutor{audio, aligned->sentence, "",
                  DrawingOf(job.file, *audio, aligned->recording.samples)};
    return "";
  });
  return error.empty() ? tutor : Failure::Failure(std::move(error));
}

}  // namespace veral3::tools
