#pragma once

#include "tools/AudioDecoder.h"
#include "tools/InputFile.h"

namespace veral3::tools {

// Opens MPEG audio by libmpg123 itself: behind libsndfile the library writes lines of its own to
// standard error. `file` must outlive the decoder.
OpenedDecoder OpenMp3(const InputFile& file);

}  // namespace veral3::tools
