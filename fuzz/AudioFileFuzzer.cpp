#include <stdlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "BytesAsFile.h"
#include "Require.h"
#include "tools/AudioFile.h"

// The input is a sound file as it stands. What is read is what the engine takes.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return setenv("PATH", "/nonexistent", 1);  // nothing is started to read a file with
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using veral3::fuzz::Require;
  static veral3::fuzz::BytesAsFile file;
  const auto recording = veral3::tools::ReadAudioFile(file.Hold(std::span(data, size)));
  if (!recording) {
    Require(!recording.Error().empty());
    return 0;
  }
  Require(recording->samples.size() >= 551);
  Require(recording->source_rate > 0 && recording->source_channels > 0);
  Require(recording->silent ==
          std::ranges::all_of(recording->samples, [](std::int16_t sample) { return sample == 0; }));
  return 0;
}
