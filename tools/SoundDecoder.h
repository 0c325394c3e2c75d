#pragma once

#include "tools/AudioDecoder.h"
#include "tools/InputFile.h"

namespace veral3::tools {

// Opens a file by libsndfile. `unsupported` tells whether the container is one of the library's and
// what is in it is not. `file` must outlive the decoder.
OpenedDecoder OpenSound(const InputFile& file, bool& unsupported);

}  // namespace veral3::tools
