#include "tools/InputFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

namespace veral3::tools {
namespace {

constexpr std::size_t kBlock = 1u << 16;

std::string ErrorText() { return std::generic_category().message(errno); }

bool WriteAll(int file, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(file, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return true;
}

// Copies what `from` still gives to `to`; what is wrong, or "".
std::string Copy(int from, int to, std::uint64_t& size) {
  std::vector<char> block(kBlock);
  for (;;) {
    const ssize_t got = read(from, block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return "cannot be read: " + ErrorText();
    if (got == 0) return size == 0 ? "is empty (0 bytes)" : "";
    size += static_cast<std::uint64_t>(got);
    if (size > kMaxPipedBytes) {
      return "gives more than " + std::to_string(kMaxPipedBytes >> 20) +
             " MiB, the most that is read from a pipe or device";
    }
    if (!WriteAll(to, block.data(), static_cast<std::size_t>(got))) {
      return "cannot be kept in memory: " + ErrorText();
    }
  }
}

}  // namespace

std::string FileProblem(const std::filesystem::path& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) {
    return error && error != std::errc::no_such_file_or_directory
               ? "cannot be opened: " + error.message()
               : "does not exist";
  }
  if (std::filesystem::is_directory(status)) return "is a folder";
  if (!std::filesystem::is_regular_file(status)) return "is not a regular file";
  if (std::filesystem::file_size(path, error) == 0 && !error) {
    return "is empty (0 bytes)";
  }
  return "";
}

Result<InputFile> InputFile::Open(const std::filesystem::path& path) {
  using Failure = Result<InputFile>;
  const bool is_standard_input = path == "-";
  InputFile file;
  file.m_file = is_standard_input ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)
                                  : open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
  if (file.m_file < 0) {
    return Failure::Failure(errno == ENOENT ? "does not exist"
                                            : "cannot be opened: " + ErrorText());
  }
  struct stat status {};
  if (fstat(file.m_file, &status) != 0) return Failure::Failure("cannot be read: " + ErrorText());
  if (S_ISDIR(status.st_mode)) return Failure::Failure("is a folder");
  if (S_ISREG(status.st_mode) && !is_standard_input) {
    if (status.st_size == 0) return Failure::Failure("is empty (0 bytes)");
    file.m_size = static_cast<std::uint64_t>(status.st_size);
    file.m_path = path.string();
    return file;
  }
  if (isatty(file.m_file) == 1) return Failure::Failure("is a terminal");
  InputFile copy;
  copy.m_file = memfd_create("veral3 input", MFD_CLOEXEC);
  if (copy.m_file < 0) return Failure::Failure("cannot be kept in memory: " + ErrorText());
  const std::string problem = Copy(file.m_file, copy.m_file, copy.m_size);
  if (!problem.empty()) return Failure::Failure(problem);
  return copy;
}

InputFile::InputFile(InputFile&& other) noexcept
    : m_file(std::exchange(other.m_file, -1)),
      m_size(std::exchange(other.m_size, 0)),
      m_path(std::move(other.m_path)) {}

InputFile& InputFile::operator=(InputFile&& other) noexcept {
  std::swap(m_file, other.m_file);
  std::swap(m_size, other.m_size);
  std::swap(m_path, other.m_path);
  return *this;
}

InputFile::~InputFile() {
  if (m_file >= 0) close(m_file);
}

std::size_t InputFile::Read(std::uint64_t place, void* to, std::size_t count) const {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got = pread(m_file, static_cast<char*>(to) + done, count - done,
                              static_cast<off_t>(place + done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

std::string InputFile::Bytes(std::uint64_t place, std::size_t count) const {
  std::string bytes(count, '\0');
  bytes.resize(Read(place, bytes.data(), count));
  return bytes;
}

}  // namespace veral3::tools
