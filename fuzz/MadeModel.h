#pragma once

#include <cstddef>
#include <string>

#include "ByteSource.h"

namespace veral3::fuzz {

// A dense network's model file: sizes of the layers between, activations and the kind of weights
// (small, huge, all zero, infinite, NaN) as `source` has it, a few bytes of it. Loads wherever a
// model of `inputs` inputs does; gives `outputs` outputs, or ends the process when it is evaluated.
std::string MadeModel(ByteSource& source, std::size_t inputs, std::size_t outputs);

}  // namespace veral3::fuzz
