#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace veral3::fuzz {

// Bytes under a path, for what reads files by name; they stay in memory.
class BytesAsFile {
 public:
  BytesAsFile();  // ends the process where the system has no such files
  ~BytesAsFile();
  BytesAsFile(const BytesAsFile&) = delete;
  BytesAsFile& operator=(const BytesAsFile&) = delete;

  // The path of a file that holds `bytes` until the next call.
  const std::filesystem::path& Hold(std::span<const std::uint8_t> bytes);

 private:
  int m_file;
  std::filesystem::path m_path;
};

}  // namespace veral3::fuzz
