#include "tools/MemoryFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace veral3::tools {
namespace {

MemoryFile& Of(void* data) { return *static_cast<MemoryFile*>(data); }

sf_count_t Length(void* data) { return static_cast<sf_count_t>(Of(data).bytes.size()); }

sf_count_t Tell(void* data) { return static_cast<sf_count_t>(Of(data).place); }

sf_count_t Seek(sf_count_t offset, int whence, void* data) {
  const sf_count_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? Tell(data) : Length(data);
  Of(data).place = static_cast<std::size_t>(std::max<sf_count_t>(0, from + offset));
  return Tell(data);
}

sf_count_t Read(void* to, sf_count_t count, void* data) {
  MemoryFile& file = Of(data);
  if (count <= 0 || file.place >= file.bytes.size()) return 0;
  const std::size_t got = std::min(static_cast<std::size_t>(count), file.bytes.size() - file.place);
  std::memcpy(to, file.bytes.data() + file.place, got);
  file.place += got;
  return static_cast<sf_count_t>(got);
}

sf_count_t Write(const void* from, sf_count_t count, void* data) {
  MemoryFile& file = Of(data);
  const auto size = static_cast<std::size_t>(std::max<sf_count_t>(0, count));
  if (file.bytes.size() < file.place + size) file.bytes.resize(file.place + size);
  std::memcpy(file.bytes.data() + file.place, from, size);
  file.place += size;
  return count;
}

}  // namespace

const SF_VIRTUAL_IO kMemoryFileIo = {Length, Seek, Read, Write, Tell};

}  // namespace veral3::tools
