#include "tools/WaveFile.h"

#include <sndfile.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>

#include "signal/CWaveFrameDef.h"
#include "tools/OutputFile.h"

namespace veral3::tools {
namespace {

// A file in memory, for libsndfile to write.
struct MemoryFile {
  std::string bytes;
  std::size_t position = 0;
};

MemoryFile& Of(void* user) { return *static_cast<MemoryFile*>(user); }

sf_count_t Length(void* user) { return static_cast<sf_count_t>(Of(user).bytes.size()); }

sf_count_t Seek(sf_count_t offset, int whence, void* user) {
  MemoryFile& file = Of(user);
  const sf_count_t base = whence == SEEK_SET   ? 0
                          : whence == SEEK_CUR ? static_cast<sf_count_t>(file.position)
                                               : Length(user);
  file.position = static_cast<std::size_t>(std::max<sf_count_t>(base + offset, 0));
  return static_cast<sf_count_t>(file.position);
}

sf_count_t Read(void* to, sf_count_t count, void* user) {
  MemoryFile& file = Of(user);
  const std::size_t left = file.bytes.size() - std::min(file.position, file.bytes.size());
  const std::size_t size = std::min(left, static_cast<std::size_t>(count));
  std::memcpy(to, file.bytes.data() + file.position, size);
  file.position += size;
  return static_cast<sf_count_t>(size);
}

sf_count_t Write(const void* from, sf_count_t count, void* user) {
  MemoryFile& file = Of(user);
  const auto size = static_cast<std::size_t>(count);
  if (file.bytes.size() < file.position + size) file.bytes.resize(file.position + size);
  std::memcpy(file.bytes.data() + file.position, from, size);
  file.position += size;
  return count;
}

sf_count_t Tell(void* user) { return static_cast<sf_count_t>(Of(user).position); }

struct CloseSoundFile {
  void operator()(SNDFILE* file) const { sf_close(file); }
};

}  // namespace

std::string WriteWaveFile(const std::filesystem::path& path,
                          std::span<const std::int16_t> samples) {
  OutputFile output(path);
  if (!output.Error().empty()) return output.Error();
  MemoryFile memory;
  SF_VIRTUAL_IO io = {Length, Seek, Read, Write, Tell};
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
