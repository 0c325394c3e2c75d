#include "tools/WaveFile.h"

#include <sndfile.h>

#include "signal/CWaveFrameDef.h"
#include "tools/MemoryFile.h"
#include "tools/OutputFile.h"
#include "tools/SoundFile.h"

namespace veral3::tools {
namespace {}  // namespace

std::string WriteWaveFile(const std::filesystem::path& path,
                          std::span<const std::int16_t> samples) {
  OutputFile output(path);
  if (!output.Error().empty()) return output.Error();
  MemoryFile memory;
  SF_INFO info{};
  info.samplerate = kSampleRate;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  {
    std::string reason;
    const SoundFile file = CreateSoundFile(memory, info, reason);
    if (!file) return "cannot be written: " + reason;
    const auto count = static_cast<sf_count_t>(samples.size());
    if (sf_write_short(file.get(), samples.data(), count) != count) {
      return std::string("cannot be written: ") + sf_strerror(file.get());
    }
  }
  output.Write(memory.bytes);
  return output.Finish();
}

}  // namespace veral3::tools
