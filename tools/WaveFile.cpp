#include "tools/WaveFile.h"

#include <sndfile.h>

#include <memory>

#include "signal/CWaveFrameDef.h"
#include "tools/MemoryFile.h"
#include "tools/OutputFile.h"

namespace veral3::tools {
namespace {

struct CloseSoundFile {
  void operator()(SNDFILE* file) const { sf_close(file); }
};

}  // namespace

std::string WriteWaveFile(const std::filesystem::path& path,
                          std::span<const std::int16_t> samples) {
  OutputFile output(path);
  if (!output.Error().empty()) return output.Error();
  MemoryFile memory;
  SF_VIRTUAL_IO io = kMemoryFileIo;
  SF_INFO info{};
  info.samplerate = kSampleRate;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  {
    const std::unique_ptr<SNDFILE, CloseSoundFile> file(
        sf_open_virtual(&io, SFM_WRITE, &info, &memory));
    const auto count = static_cast<sf_count_t>(samples.size());
    if (!file || sf_write_short(file.get(), samples.data(), count) != count) {
      return std::string("cannot be written: ") + sf_strerror(file.get());
    }
  }
  output.Write(memory.bytes);
  return output.Finish();
}

}  // namespace veral3::tools
