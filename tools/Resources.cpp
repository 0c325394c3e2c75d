#include "tools/Resources.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/CheckModelFile.h"
#include "recognition/Dictionaries.h"
#include "recognition/Languages.h"
#include "recognition/Models.h"
#include "tools/EngineMessages.h"
#include "tools/PrintableText.h"

namespace veral3::tools {
namespace {

// A model that some uses can do without.
struct OptionalModel {
  LanguageModel model;
  const char* purpose;  // what is not measured without it
};

std::vector<OptionalModel> OptionalModelsOf(const LanguageRow& row) {
  std::vector<OptionalModel> models = {{row.phoneme_model, "what each phoneme sounds like"}};
  if (row.tone_model) models.push_back({*row.tone_model, "tones"});
  models.push_back({{"UttGoodness.model", kUttGoodnessModel},
                    "the probability that the sentence was read at all"});
  return models;
}

constexpr const char* kNoLanguage = "no language that Veral3 knows";

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
                                        const LanguageRow& row,
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
      "no resources for " + std::string(row.name) + " (" + names + "); looked in " + looked +
      (given ? "" : "; --resources names another folder"));
}

}  // namespace

Result<std::filesystem::path> FindResources(const std::optional<std::filesystem::path>& given,
                                            LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  if (row == nullptr) return Result<std::filesystem::path>::Failure(kNoLanguage);
  return FindFiles(given, *row, {row->dictionary, row->frame_model.file});
}

Result<std::filesystem::path> FindDictionary(const std::optional<std::filesystem::path>& given,
                                             LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  if (row == nullptr) return Result<std::filesystem::path>::Failure(kNoLanguage);
  return FindFiles(given, *row, {row->dictionary});
}

Result<std::string> LoadDictionary(const std::filesystem::path& folder, LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  if (row == nullptr) return Result<std::string>::Failure(kNoLanguage);
  const EngineMessages messages;
  AnalyzedAudio::LoadResourceInFolderPath((folder / "").c_str());
  const auto dictionary = DictionaryOf(language);
  if (dictionary == nullptr || dictionary->GetWordCount() == 0) {
    return Result<std::string>::Failure("the dictionary " +
                                        PrintableText((folder / row->dictionary).native()) +
                                        " cannot be used: " + messages.OneLine());
  }
  return messages.Text();
}

Result<LoadedResources> LoadResources(const std::filesystem::path& folder, LanguageType language,
                                      ResourceUse use) {
  using Failure = Result<LoadedResources>;
  const LanguageRow* const row = FindLanguage(language);
  if (row == nullptr) return Failure::Failure(kNoLanguage);
  LoadedResources loaded;
  if (use != ResourceUse::kAnnotate) {
    const Result<std::string> dictionary = LoadDictionary(folder, language);
    if (!dictionary) return Failure::Failure(dictionary.Error());
    loaded.messages = *dictionary;
  }
  const EngineMessages messages;
  if (std::string error =
          LoadModel(folder / row->frame_model.file, row->frame_model.type, messages);
      !error.empty()) {
    return Failure::Failure(std::move(error));
  }
  if (use == ResourceUse::kMeasure || use == ResourceUse::kGrade) {
    for (const auto& [model, purpose] : OptionalModelsOf(*row)) {
      std::error_code error;
      if (!std::filesystem::exists(folder / model.file, error)) {
        loaded.missing += "no " + std::string(model.file) + " in " +
                          PrintableText(folder.native()) +
                          (use == ResourceUse::kGrade ? ", without which nothing is graded"
                                                      : "; not measured: " + std::string(purpose)) +
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
  const LanguageRow* const row = FindLanguage(language);
  if (row == nullptr) return models;
  models.phoneme = PhonClassifierOf(row->phonemes->GetIdentifier())->IsLoaded();
  models.tone = row->tone_model && ToneClassifier().IsLoaded();
  models.goodness = GoodnessClassifier().IsLoaded();
  return models;
}

}  // namespace veral3::tools
