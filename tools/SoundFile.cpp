#include "tools/SoundFile.h"

#include <algorithm>
#include <mutex>

namespace veral3::tools {
namespace {

InputView& Of(void* data) { return *static_cast<InputView*>(data); }

sf_count_t Length(void* data) { return static_cast<sf_count_t>(Of(data).file->Size()); }

sf_count_t Tell(void* data) { return static_cast<sf_count_t>(Of(data).place); }

sf_count_t Seek(sf_count_t offset, int whence, void* data) {
  const sf_count_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? Tell(data) : Length(data);
  Of(data).place = static_cast<std::uint64_t>(std::max<sf_count_t>(0, from + offset));
  return Tell(data);
}

sf_count_t Read(void* to, sf_count_t count, void* data) {
  InputView& view = Of(data);
  if (count <= 0) return 0;
  const std::size_t got = view.file->Read(view.place, to, static_cast<std::size_t>(count));
  for (const BytePatch& patch : view.patches) {
    for (std::size_t i = 0; i < patch.bytes.size(); ++i) {
      const std::uint64_t at = patch.place + i;
      if (at >= view.place && at < view.place + got) {
        static_cast<char*>(to)[at - view.place] = patch.bytes[i];
      }
    }
  }
  view.place += got;
  return static_cast<sf_count_t>(got);
}

sf_count_t Write(const void*, sf_count_t, void*) { return 0; }

constexpr SF_VIRTUAL_IO kInputViewIo = {Length, Seek, Read, Write, Tell};

template <typename Open>
SoundFile Opened(Open open, SoundFileError& error) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  SoundFile file(open());
  if (!file) error = {sf_strerror(nullptr), sf_error(nullptr) == SF_ERR_UNSUPPORTED_ENCODING};
  return file;
}

}  // namespace

SoundFile OpenSoundFile(InputView& view, SF_INFO& info, SoundFileError& error) {
  return Opened(
      [&]() -> SNDFILE* {
        // By its name where it has one: of files without a head only that says what they are.
        if (view.patches.empty() && !view.file->Path().empty()) {
          return sf_open(view.file->Path().c_str(), SFM_READ, &info);
        }
        SF_VIRTUAL_IO io = kInputViewIo;
        return sf_open_virtual(&io, SFM_READ, &info, &view);
      },
      error);
}

SoundFile CreateSoundFile(MemoryFile& memory, SF_INFO& info, std::string& error) {
  SF_VIRTUAL_IO io = kMemoryFileIo;
  SoundFileError why;
  SoundFile file = Opened([&] { return sf_open_virtual(&io, SFM_WRITE, &info, &memory); }, why);
  if (!file) error = why.reason;
  return file;
}

}  // namespace veral3::tools
