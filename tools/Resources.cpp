#include "tools/Resources.h"

#include <algorithm>
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

// The folders that may have resources: the one given, else that of the installation.
std::vector<std::filesystem::path> Folders(const std::optional<std::filesystem::path>& given) {
  if (given) return {*given};
  std::error_code error;
  const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return {};
  return {(executable.parent_path() / VERAL3_RESOURCES_FROM_EXECUTABLE).lexically_normal()};
}

// The first of the folders that has all `files`.
Result<std::filesystem::path> FindFiles(const std::optional<std::filesystem::path>& given,
                                        LanguageType language,
                                        const std::vector<std::string>& files) {
  std::error_code error;
  std::string looked;
  for (const std::filesystem::path& folder : Folders(given)) {
    if (std::ranges::all_of(files, [&](const std::string& file) {
          return std::filesystem::is_regular_file(folder / file, error);
        })) {
      return folder;
    }
    looked += (looked.empty() ? "" : ", ") + folder.string();
  }
  std::string names;
  for (const std::string& file : files) names += (names.empty() ? "" : " and ") + file;
  return Result<std::filesystem::path>::Failure(
      "no resources for " + std::string(LanguageName(language)) + " (" + names + "); looked in " +
      looked + (given ? "" : "; --resources names another folder"));
}

}  // namespace

Result<std::filesystem::path> FindResources(const std::optional<std::filesystem::path>& given,
                                            LanguageType language) {
  const LanguageFiles files = FilesOf(language);
  return FindFiles(given, language, {files.dictionary, files.frame_model});
}

Result<std::filesystem::path> FindDictionary(const std::optional<std::filesystem::path>& given,
                                             LanguageType language) {
  return FindFiles(given, language, {FilesOf(language).dictionary});
}

Result<std::string> LoadDictionary(const std::filesystem::path& folder, LanguageType language) {
  const EngineMessages messages;
  AnalyzedAudio::LoadResourceInFolderPath((folder / "").c_str());
  const auto dictionary = DictionaryOf(language);
  if (dictionary == nullptr || dictionary->GetWordCount() == 0) {
    return Result<std::string>::Failure("the dictionary " +
                                        (folder / FilesOf(language).dictionary).string() +
                                        " cannot be used: " + messages.OneLine());
  }
  return messages.Text();
}

Result<std::string> LoadResources(const std::filesystem::path& folder, LanguageType language) {
  const LanguageFiles files = FilesOf(language);
  Result<std::string> dictionary = LoadDictionary(folder, language);
  if (!dictionary) return dictionary;
  const EngineMessages messages;
  const std::filesystem::path model = folder / files.frame_model;
  if (const std::string problem = ModelProblem(model); !problem.empty()) {
    return Result<std::string>::Failure("the model " + model.string() +
                                        " cannot be used: " + problem);
  }
  if (AnalyzedAudio::LoadModelFile(model.c_str(), files.frame_model_type) < 0) {
    return Result<std::string>::Failure("the model " + model.string() +
                                        " cannot be used: " + messages.OneLine());
  }
  return *dictionary + messages.Text();
}

}  // namespace veral3::tools
