#pragma once

#include <string>

#include "tools/InputFile.h"

namespace veral3::tools {

// Why an OGG file is not whole, as the rest of a sentence that begins with its name: pages that are
// damaged or missing, no last one, or a further recording behind it. "" when it is whole, and for
// what is no OGG file.
std::string OggProblem(const InputFile& file);

}  // namespace veral3::tools
