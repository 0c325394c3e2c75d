#include "training/grading/SenseGrades.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

#include "grading/GradedAudio.h"
#include "training/train/Network.h"

namespace veral3::training {
namespace {

bool Prepare(AnalyzedAudio& audio, const std::string& text, std::span<const std::int16_t> speech) {
  std::vector<std::int16_t> samples(speech.begin(), speech.end());
  const auto count = static_cast<std::uint32_t>(samples.size());
  return audio.AddPossibleSentence(CString(text)) >= 0 && audio.Align(count, samples.data()) >= 0 &&
         audio.Analyze(count, samples.data()) >= 0;
}

}  // namespace

void LoadCertainGoodness() {
  // No weight at all, and biases between which the softmax leaves nothing to the second class.
  DenseLayer layer{16, 2, std::vector<float>(32, 0.0F), {60.0F, -60.0F}};
  const Network network{std::vector<float>(16, 0.0F), std::vector<float>(16, 1.0F), {layer}};
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("veral3-certain-" + std::to_string(getpid()));
  ExportModel(network, 1, path);
  const int version = AnalyzedAudio::LoadModelFile(path.c_str(), kUttGoodnessModel);
  std::filesystem::remove(path);
  if (version != 1) throw std::runtime_error("the engine refuses the certain model");
}

std::optional<SenseGrades> GradeOne(LanguageType language, const std::string& text,
                                    std::span<const std::int16_t> tutor,
                                    std::span<const std::int16_t> learner) {
  AnalyzedAudio tutor_audio(language);
  GradedAudio audio(language);
  if (!Prepare(tutor_audio, text, tutor) || !Prepare(audio, text, learner)) return std::nullopt;
  SenseGrades grades;
  grades.total = audio.GradeAgainstTutor(&tutor_audio);
  if (grades.total < 0) return std::nullopt;
  grades.components = {audio.GetPronunScore(), audio.GetPitchScore(), audio.GetTimingScore(),
                       audio.GetIntensityScore()};
  for (int syllable = 0; syllable < audio.GetNumOfSyllables(); ++syllable) {
    grades.syllables_good = grades.syllables_good && audio.ProbGoodSyllable(syllable) >= 1.0;
  }
  return grades;
}

}  // namespace veral3::training
