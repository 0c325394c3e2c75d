#pragma once

#include <sndfile.h>

#include <cstddef>
#include <string>

namespace veral3::tools {

// A file in memory that libsndfile writes and reads, so that it gets to its place whole or not at
// all (tools/OutputFile.h).
//
//   MemoryFile memory;
//   SF_VIRTUAL_IO io = kMemoryFileIo;
//   SNDFILE* file = sf_open_virtual(&io, SFM_WRITE, &info, &memory);
struct MemoryFile {
  std::string bytes;
  std::size_t place = 0;
};

extern const SF_VIRTUAL_IO kMemoryFileIo;

}  // namespace veral3::tools
