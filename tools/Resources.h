#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "common/LanguageType.h"
#include "tools/Result.h"

// The dictionaries and models that the command works with.
namespace veral3::tools {

// The folder that holds what aligning in `language` needs: `given`, else share/veral3 beside the
// folder of the executable (in a build tree a link to the source tree's resources). The failure
// names the files and every folder looked in.
Result<std::filesystem::path> FindResources(const std::optional<std::filesystem::path>& given,
                                            LanguageType language);

// Loads the dictionary and the frame model of `language`. Gives what the engine reported, for those
// who want to read it.
Result<std::string> LoadResources(const std::filesystem::path& folder, LanguageType language);

// The folder that has a language's dictionary, models or not, and its dictionary loaded alone: what
// looking at texts needs. As above.
Result<std::filesystem::path> FindDictionary(const std::optional<std::filesystem::path>& given,
                                             LanguageType language);
Result<std::string> LoadDictionary(const std::filesystem::path& folder, LanguageType language);

}  // namespace veral3::tools
