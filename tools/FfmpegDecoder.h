#pragma once

#include <chrono>
#include <string>

#include "tools/AudioDecoder.h"
#include "tools/InputFile.h"

// Recordings that libsndfile does not read, those of telephones and browsers above all, by the
// program `ffmpeg` where there is one.
namespace veral3::tools {

struct FfmpegOptions {
  std::string program = "ffmpeg";  // looked for on PATH
  std::chrono::milliseconds time_limit = std::chrono::minutes(2);
};

// What a file is by its first bytes, for one that takes ffmpeg: "MPEG-4 (m4a, mp4)"; "" otherwise.
std::string FfmpegKind(const InputFile& file);

// Has ffmpeg decode the first stream of sound of a file that is of `kind`. It gets the open file,
// not its name, may open nothing else, and writes nowhere but to this process; it is killed at the
// time limit. `file` must outlive the decoder.
OpenedDecoder OpenFfmpeg(const InputFile& file, const std::string& kind,
                         const FfmpegOptions& options);

}  // namespace veral3::tools
