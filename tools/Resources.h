#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "common/LanguageType.h"
#include "tools/Result.h"

// The dictionaries and models that the command works with.
namespace veral3::tools {

// The folder that holds at least what aligning in `language` needs: `given`, else share/veral3
// beside the folder of the executable (in a build tree a link to the source tree's resources). The
// failure names the files and every folder looked in.
Result<std::filesystem::path> FindResources(const std::optional<std::filesystem::path>& given,
                                            LanguageType language);

// What resources are for: aligning needs the dictionary and the frame model; measuring does what it
// can with the phoneme, tone and goodness models that are there; grading needs all of them;
// annotating needs the frame model alone.
enum class ResourceUse { kAlign, kMeasure, kGrade, kAnnotate };

struct LoadedResources {
  std::string messages;  // what the engine reported, for those who want to read it
  std::string missing;   // lines: which models are not there, and what is not measured without them
};

// Loads the dictionary and the models of `language` that `use` takes. Fails where one that it needs
// is missing, or one that is there cannot be used.
Result<LoadedResources> LoadResources(const std::filesystem::path& folder, LanguageType language,
                                      ResourceUse use = ResourceUse::kAlign);

// Which of the models are loaded that measuring could do without.
struct MeasuringModels {
  bool phoneme = false;   // of the language
  bool tone = false;      // Chinese only
  bool goodness = false;  // of all languages
};
MeasuringModels LoadedModels(LanguageType language);

// The folder that has a language's dictionary, models or not, and its dictionary loaded alone: what
// looking at texts needs. As above.
Result<std::filesystem::path> FindDictionary(const std::optional<std::filesystem::path>& given,
                                             LanguageType language);
Result<std::string> LoadDictionary(const std::filesystem::path& folder, LanguageType language);

}  // namespace veral3::tools
