#pragma once

#include <sndfile.h>

#include <filesystem>
#include <memory>
#include <string>

#include "tools/MemoryFile.h"

// Files of libsndfile, closed by themselves. The library keeps the reason why a file did not open
// in one place for the whole process: here opening and asking for it are one step, so that any
// number of threads may open files at once and each hears its own reason.
namespace veral3::tools {

struct CloseSoundFile {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSoundFile>;

// Opens a file for reading and fills `info`. Null with the reason in `error` when it does not open.
SoundFile OpenSoundFile(const std::filesystem::path& path, SF_INFO& info, std::string& error);

// Opens a file in memory for writing in the form that `info` says. As above. `memory` must outlive
// it.
SoundFile CreateSoundFile(MemoryFile& memory, SF_INFO& info, std::string& error);

}  // namespace veral3::tools
