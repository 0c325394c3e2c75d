#pragma once

#include <filesystem>
#include <string>

namespace veral3::tools {

// Why a network in a file must not be used, "" when nothing speaks against it: it does not load, or
// a layer names an activation that there is none of, which ends the process at the first use.
std::string ModelProblem(const std::filesystem::path& path);

}  // namespace veral3::tools
