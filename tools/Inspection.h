#pragma once

#include <filesystem>
#include <string>

#include "tools/AlignmentJson.h"
#include "tools/Result.h"

namespace veral3::tools {

// What a file of the engine's is and holds: a tutor file, a dictionary or a model, told apart by
// their content. An object of names and values; "kind" is "tutor file", "dictionary" or "model".
// docs/command.md lists the others. The failure is the rest of a sentence that begins with the
// path.
Result<OrderedJson> Inspect(const std::filesystem::path& path);

// The same for reading: a line a value, lists below their names.
std::string InspectionTable(const OrderedJson& inspection);

}  // namespace veral3::tools
