#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "tools/Result.h"

// Files that are read, wherever they come from.
namespace veral3::tools {

// The most that is taken from a pipe: 15 minutes of stereo at 48 kHz in 32 bits are 346 MB.
inline constexpr std::uint64_t kMaxPipedBytes = 512u << 20;

// Why a path is no regular file with anything in it, as the rest of a sentence that begins with the
// path; "" when it is one.
std::string FileProblem(const std::filesystem::path& path);

// An open file whose bytes can be read in any order, by several threads. A regular file is read
// where it lies; standard input ("-"), pipes and devices, which can be read once and forwards only,
// are first copied into memory.
//
//   const Result<InputFile> file = InputFile::Open(path);
//   if (!file) ...                                        // path + " " + file.Error()
//   const std::string head = file->Bytes(0, 12);
class InputFile {
 public:
  // Opens a file and waits until a pipe has given all it has. The failure: not there, a folder, not
  // to be opened, empty, a terminal, more than kMaxPipedBytes of a pipe.
  static Result<InputFile> Open(const std::filesystem::path& path);

  InputFile(InputFile&& other) noexcept;
  InputFile& operator=(InputFile&& other) noexcept;
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  std::uint64_t Size() const { return m_size; }

  // Reads up to `count` bytes from `place` on and gives how many there were.
  std::size_t Read(std::uint64_t place, void* to, std::size_t count) const;

  // Up to `count` bytes from `place` on.
  std::string Bytes(std::uint64_t place, std::size_t count) const;

  // The regular file's path; "" for what was copied.
  const std::string& Path() const { return m_path; }

  // For handing the file to another process. Its place is that of nobody.
  int Descriptor() const { return m_file; }

 private:
  InputFile() = default;

  int m_file = -1;
  std::uint64_t m_size = 0;
  std::string m_path;
};

}  // namespace veral3::tools
