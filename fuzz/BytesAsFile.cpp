#include "BytesAsFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "Require.h"

namespace veral3::fuzz {

BytesAsFile::BytesAsFile() : m_file(memfd_create("fuzz", 0)) {
  Require(m_file >= 0);
  m_path = "/proc/self/fd/" + std::to_string(m_file);
}

BytesAsFile::~BytesAsFile() { close(m_file); }

const std::filesystem::path& BytesAsFile::Hold(std::span<const std::uint8_t> bytes) {
  Require(ftruncate(m_file, 0) == 0);
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t written =
        pwrite(m_file, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    Require(written > 0);
    done += static_cast<std::size_t>(written);
  }
  return m_path;
}

}  // namespace veral3::fuzz
