#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/FfmpegDecoder.h"
#include "tools/InputFile.h"
#include "tools/Result.h"

// Recordings from files, in the one form that the engine takes: 16 bit, mono, 22050 Hz.
namespace veral3::tools {

// Longer recordings are refused: frame scores alone take 5.3 MB a minute, and the 256 words that a
// sentence may have are spoken in two or three minutes.
inline constexpr double kMaxRecordingSeconds = 900.0;

struct Recording {
  std::vector<std::int16_t> samples;  // 22050 Hz, at least 551
  int source_rate = 0;                // [Hz] of the file
  int source_channels = 0;
  std::int64_t clamped = 0;  // samples that 16 bits could not hold and that were cut to its limits
  bool silent = false;       // every sample is 0
};

// Reads any file that libsndfile reads, and by the program ffmpeg, where there is one, what else
// telephones and browsers record (tools/FfmpegDecoder.h). "-" is standard input; pipes are read to
// their end. Channels are mixed by their mean; another rate than 22050 Hz is resampled by soxr's
// high-quality recipe, whose delay is taken out; samples are rounded to nearest (ties to even) and
// clamped. A 16-bit mono file at 22050 Hz comes back as it is.
//
// The file is read in blocks up to the limit, whatever its header claims. The failure tells what is
// wrong: not there, no audio, of a rate outside 1 to 1000 kHz, damaged, cut (shorter than its head
// says, as far as it says), with samples that are no numbers, shorter than one frame (551 samples)
// or longer than the limit. A WAV file whose head gives no length, 0 or 0x7FFFF000 and more, lasts
// to its end.
Result<Recording> ReadAudioFile(const std::filesystem::path& path);

// The same of an open file.
Result<Recording> ReadAudio(const InputFile& file, const FfmpegOptions& ffmpeg = {});

}  // namespace veral3::tools
