#include "tools/SoundFile.h"

#include <mutex>

namespace veral3::tools {
namespace {

template <typename Open>
SoundFile Opened(Open open, std::string& error) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  SoundFile file(open());
  if (!file) error = sf_strerror(nullptr);
  return file;
}

}  // namespace

SoundFile OpenSoundFile(const std::filesystem::path& path, SF_INFO& info, std::string& error) {
  return Opened([&] { return sf_open(path.c_str(), SFM_READ, &info); }, error);
}

SoundFile CreateSoundFile(MemoryFile& memory, SF_INFO& info, std::string& error) {
  SF_VIRTUAL_IO io = kMemoryFileIo;
  return Opened([&] { return sf_open_virtual(&io, SFM_WRITE, &info, &memory); }, error);
}

}  // namespace veral3::tools
