#include "training/engine/Engine.h"

#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "common/Messages.h"
#include "core/AnalyzedAudio.h"
#include "recognition/Dictionaries.h"
#include "recognition/ModelFileType.h"
#include "training/common/LanguageName.h"
#include "training/corpus/CorpusFile.h"

namespace veral3::training {
namespace {

// False where the file is missing; throws where the engine refuses it.
bool LoadIfThere(const std::filesystem::path& path, int type) {
  if (!std::filesystem::exists(path)) return false;
  if (AnalyzedAudio::LoadModelFile(path.c_str(), static_cast<ModelFileType>(type)) < 0) {
    throw std::runtime_error("the engine refuses " + path.string());
  }
  return true;
}

void Load(const std::filesystem::path& path, int type) {
  if (!LoadIfThere(path, type)) throw std::runtime_error("no model " + path.string());
}

}  // namespace

std::string NameOfLanguage(LanguageType language) { return RowOf(language).name; }

void LoadEngine(LanguageType language, const EngineFiles& files) {
  SetMessageHandler([](MessageStream, std::string_view) {});
  const std::filesystem::path folder = std::filesystem::path(files.resources) / "";
  const LanguageRow& row = RowOf(language);
  AnalyzedAudio::LoadResourceInFolderPath(folder.c_str());
  const auto dictionary = DictionaryOf(language);
  if (!dictionary || dictionary->GetWordCount() == 0) {
    throw std::runtime_error("no " + std::string(row.name) + " dictionary in " + folder.string());
  }
  const auto either = [&](const std::string& own, const std::string& usual) {
    return own.empty() ? folder / usual : std::filesystem::path(own);
  };
  Load(either(files.frame_model, row.frame_model.file), row.frame_model.type);
  Load(either(files.phoneme_model, row.phoneme_model.file), row.phoneme_model.type);
  if (row.tone_model) LoadIfThere(folder / row.tone_model->file, row.tone_model->type);
  if (files.goodness) Load(either(files.goodness_model, "UttGoodness.model"), kUttGoodnessModel);
}

std::vector<Utterance> ReadCorpora(const std::vector<std::string>& paths, std::size_t most) {
  std::vector<Utterance> utterances;
  for (const std::string& path : paths) {
    CorpusReader reader(path);
    std::size_t count = 0;
    while (auto utterance = reader.Next()) {
      utterances.push_back(*std::move(utterance));
      if (++count == most) break;
    }
  }
  return utterances;
}

}  // namespace veral3::training
