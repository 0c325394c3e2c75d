#pragma once

#include <sndfile.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/InputFile.h"
#include "tools/MemoryFile.h"
#include "tools/SoundLength.h"

// Files of libsndfile, closed by themselves. The library keeps the reason why a file did not open
// in one place for the whole process: here opening and asking for it are one step, so that any
// number of threads may open files at once and each hears its own reason.
namespace veral3::tools {

struct CloseSoundFile {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSoundFile>;

// A file as libsndfile shall see it: with some of its bytes replaced.
struct InputView {
  const InputFile* file = nullptr;
  std::vector<BytePatch> patches;
  std::uint64_t place = 0;
};

// Why a file did not open.
struct SoundFileError {
  std::string reason;
  bool unsupported = false;  // the container is known, what is in it is not
};

// Opens a file for reading and fills `info`. Null with the reason in `error` when it does not open.
// `view` and its file must outlive it.
SoundFile OpenSoundFile(InputView& view, SF_INFO& info, SoundFileError& error);

// Opens a file in memory for writing in the form that `info` says. As above. `memory` must outlive
// it.
SoundFile CreateSoundFile(MemoryFile& memory, SF_INFO& info, std::string& error);

}  // namespace veral3::tools
