#include "tools/Resources.h"

#include <memory>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "recognition/Dictionaries.h"
#include "tools/EngineMessages.h"
#include "tools/Languages.h"
#include "tools/ModelCheck.h"

namespace veral3::tools {
namespace {

struct LanguageFiles {
  const char* dictionary;
  const char* frame_model;
  ModelFileType frame_model_type;
};

LanguageFiles FilesOf(LanguageType language) {
  switch (language) {
    case kLanguageChinese:
      return {"KCN-UTF8Order.txt", "ChineseFrame.model", kFrameModelChinese};
    case kLanguageJapanese:
      return {"KJP-UTF8Order.txt", "JapaneseFrame.model", kFrameModelJapanese};
    case kLanguageEnglish:
      break;
  }
  return {"KEN-UTF8Order.txt", "EnglishFrame.model", kFrameModelEnglish};
}

}  // namespace

Result<std::filesystem::path> FindResources(const std::optional<std::filesystem::path>& given,
                                            LanguageType language) {
  std::vector<std::filesystem::path> folders;
  std::error_code error;
  if (given) {
    folders.push_back(*given);
  } else {
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", error);
    if (!error) {
      folders.push_back(
          (executable.parent_path() / VERAL3_RESOURCES_FROM_EXECUTABLE).lexically_normal());
    }
  }
  const LanguageFiles files = FilesOf(language);
  std::string looked;
  for (const std::filesystem::path& folder : folders) {
    if (std::filesystem::is_regular_file(folder / files.dictionary, error) &&
        std::filesystem::is_regular_file(folder / files.frame_model, error)) {
      return folder;
    }
    looked += (looked.empty() ? "" : ", ") + folder.string();
  }
  return Result<std::filesystem::path>::Failure(
      "no resources for " + std::string(LanguageName(language)) + " (" + files.dictionary +
      " and " + files.frame_model + "); looked in " + looked +
      (given ? "" : "; --resources names another folder"));
}

Result<std::string> LoadResources(const std::filesystem::path& folder, LanguageType language) {
  const LanguageFiles files = FilesOf(language);
  const EngineMessages messages;
  AnalyzedAudio::LoadResourceInFolderPath((folder / "").c_str());
  const auto dictionary = DictionaryOf(language);
  if (dictionary == nullptr || dictionary->GetWordCount() == 0) {
    return Result<std::string>::Failure("the dictionary " + (folder / files.dictionary).string() +
                                        " cannot be used: " + messages.OneLine());
  }
  const std::filesystem::path model = folder / files.frame_model;
  if (const std::string problem = ModelProblem(model); !problem.empty()) {
    return Result<std::string>::Failure("the model " + model.string() +
                                        " cannot be used: " + problem);
  }
  if (AnalyzedAudio::LoadModelFile(model.c_str(), files.frame_model_type) < 0) {
    return Result<std::string>::Failure("the model " + model.string() +
                                        " cannot be used: " + messages.OneLine());
  }
  return messages.Text();
}

}  // namespace veral3::tools
