#include "tools/Resources.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/CheckModelFile.h"
#include "recognition/Dictionaries.h"
#include "recognition/Models.h"
#include "tools/EngineMessages.h"
#include "tools/Languages.h"
#include "tools/PrintableText.h"

namespace veral3::tools {
namespace {

struct LanguageFiles {
  const char* dictionary;
  const char* frame_model;
  ModelFileType frame_model_type;
  const char* phoneme_model;
  ModelFileType phoneme_model_type;
};

// A model that some uses can do without.
struct OptionalModel {
  const char* file;
  ModelFileType type;
  const char* purpose;  // what is not measured without it
};

constexpr OptionalModel kToneModel = {"ChineseTone.model", kToneModelChinese, "tones"};
constexpr OptionalModel kGoodnessModel = {"UttGoodness.model", kUttGoodnessModel,
                                          "the probability that the sentence was read at all"};

LanguageFiles FilesOf(LanguageType language) {
  switch (language) {
    case kLanguageChinese:
      return {"KCN-UTF8Order.txt", "ChineseFrame.model", kFrameModelChinese, "ChinesePhon.model",
              kPhonemeModelChinese};
    case kLanguageJapanese:
      return {"KJP-UTF8Order.txt", "JapaneseFrame.model", kFrameModelJapanese, "JapanesePhon.model",
              kPhonemeModelJapanese};
    case kLanguageEnglish:
      break;
  }
  return {"KEN-UTF8Order.txt", "EnglishFrame.model", kFrameModelEnglish, "EnglishPhon.model",
          kPhonemeModelEnglish};
}

std::vector<OptionalModel> OptionalModelsOf(LanguageType language) {
  const LanguageFiles files = FilesOf(language);
  std::vector<OptionalModel> models = {
      {files.phoneme_model, files.phoneme_model_type, "what each phoneme sounds like"}};
  if (language == kLanguageChinese) models.push_back(kToneModel);
  models.push_back(kGoodnessModel);
  return models;
}

// What the engine wrote of files in a folder, whose name shall add no lines to it.
std::string WithPrintableFolder(std::string messages, const std::filesystem::path& folder) {
  const std::string& name = folder.native();
  const std::string printable = PrintableText(name);
  if (name.empty() || name == printable) return messages;
  for (std::size_t at = 0; (at = messages.find(name, at)) != std::string::npos;) {
    messages.replace(at, name.size(), printable);
    at += printable.size();
  }
  return messages;
}

// Why the model cannot be used, "" when it is loaded.
std::string LoadModel(const std::filesystem::path& model, ModelFileType type,
                      const EngineMessages& messages) {
  std::string problem = CheckModelFile(model.c_str(), type);
  if (problem.empty() && AnalyzedAudio::LoadModelFile(model.c_str(), type) < 0) {
    problem = model.string() + " cannot be used: " + messages.OneLine();
  }
  return PrintableText(problem);
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
    return Result<std::string>::Failure(
        "the dictionary " + PrintableText((folder / FilesOf(language).dictionary).native()) +
        " cannot be used: " + messages.OneLine());
  }
  return messages.Text();
}

Result<LoadedResources> LoadResources(const std::filesystem::path& folder, LanguageType language,
                                      ResourceUse use) {
  using Failure = Result<LoadedResources>;
  const LanguageFiles files = FilesOf(language);
  LoadedResources loaded;
  if (use != ResourceUse::kAnnotate) {
    const Result<std::string> dictionary = LoadDictionary(folder, language);
    if (!dictionary) return Failure::Failure(dictionary.Error());
    loaded.messages = *dictionary;
  }
  const EngineMessages messages;
  if (std::string error = LoadModel(folder / files.frame_model, files.frame_model_type, messages);
      !error.empty()) {
    return Failure::Failure(std::move(error));
  }
  if (use == ResourceUse::kMeasure || use == ResourceUse::kGrade) {
    for (const OptionalModel& model : OptionalModelsOf(language)) {
      std::error_code error;
      if (!std::filesystem::exists(folder / model.file, error)) {
        loaded.missing +=
            "no " + std::string(model.file) + " in " + PrintableText(folder.native()) +
            (use == ResourceUse::kGrade ? ", without which nothing is graded"
                                        : "; not measured: " + std::string(model.purpose)) +
            "\n";
        continue;
      }
      if (std::string problem = LoadModel(folder / model.file, model.type, messages);
          !problem.empty()) {
        return Failure::Failure(std::move(problem));
      }
    }
    if (use == ResourceUse::kGrade && !loaded.missing.empty()) {
      return Failure::Failure(std::move(loaded.missing));
    }
  }
  loaded.messages = WithPrintableFolder(loaded.messages + messages.Text(), folder);
  return loaded;
}

MeasuringModels LoadedModels(LanguageType language) {
  const ModelsInUse models_in_use;
  MeasuringModels models;
  const CPhonemeSet* const set = PhonemeSetOf(language);
  const DLPhonClassifier* const phonemes =
      set != nullptr ? PhonClassifierOf(set->GetIdentifier()) : nullptr;
  models.phoneme = phonemes != nullptr && phonemes->IsLoaded();
  models.tone = language == kLanguageChinese && ToneClassifier().IsLoaded();
  models.goodness = GoodnessClassifier().IsLoaded();
  return models;
}

}  // namespace veral3::tools
