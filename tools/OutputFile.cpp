#include "tools/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <random>
#include <sstream>
#include <system_error>
#include <utility>

namespace veral3::tools {

OutputFile::OutputFile(std::filesystem::path path) : m_path(std::move(path)) {
  // A link stays a link: what it points to is replaced.
  std::error_code ignored;
  if (std::filesystem::is_symlink(m_path, ignored)) {
    const std::filesystem::path target = std::filesystem::weakly_canonical(m_path, ignored);
    if (!ignored) m_path = target;
  }
  // A device or pipe cannot be replaced by a file; it is written as it stands.
  if (std::filesystem::exists(m_path, ignored) &&
      !std::filesystem::is_regular_file(m_path, ignored)) {
    m_file = open(m_path.c_str(), O_WRONLY | O_CLOEXEC);
    if (m_file < 0) Fail("cannot be written");
    return;
  }
  // The temporary file's name says nothing of whether this one can be had.
  struct stat status {};
  if (lstat(m_path.c_str(), &status) != 0 && errno == ENAMETOOLONG) {
    Fail("cannot be written");
    return;
  }
  MakeTemporary();
}

OutputFile::~OutputFile() {
  if (m_file >= 0) close(m_file);
  if (!m_temporary.empty()) unlink(m_temporary.c_str());
}

// The name is short whatever that of the result is, which may be as long as names can be; and it is
// known to the handler of signals before there is such a file.
void OutputFile::MakeTemporary() {
  constexpr int kTries = 100;
  std::random_device random;
  for (int i = 0; i < kTries && m_file < 0; ++i) {
    std::ostringstream name;
    name << ".veral3-" << getpid() << "-" << std::hex << random();
    m_temporary = (m_path.parent_path() / name.str()).string();
    m_at_risk.emplace(m_temporary);
    m_file = open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (m_file >= 0) return;
    const int error = errno;
    m_at_risk.reset();
    m_temporary.clear();
    errno = error;
    if (error != EEXIST) break;
  }
  Fail("cannot be written");
}

void OutputFile::Write(std::string_view text) {
  while (m_error.empty() && !text.empty()) {
    const ssize_t written = write(m_file, text.data(), text.size());
    if (written < 0) {
      if (errno != EINTR) Fail("cannot be written");
      continue;
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string OutputFile::Finish() {
  if (!m_error.empty()) return m_error;
  if (!m_temporary.empty()) {
    // A temporary file is private; the result has the rights of any new file, or of the old one.
    const mode_t mask = umask(0);
    umask(mask);
    struct stat old {};
    const mode_t mode = stat(m_path.c_str(), &old) == 0 ? old.st_mode & 07777 : 0666 & ~mask;
    if (fchmod(m_file, mode) != 0) Fail("cannot be written");
  }
  const int file = std::exchange(m_file, -1);
  if (close(file) != 0) Fail("cannot be written");
  if (m_error.empty() && !m_temporary.empty()) {
    if (rename(m_temporary.c_str(), m_path.c_str()) != 0) {
      Fail("cannot be written");
    } else {
      m_temporary.clear();
      m_at_risk.reset();
    }
  }
  return m_error;
}

void OutputFile::Fail(const std::string& what) {
  m_error = what + ": " + std::generic_category().message(errno);
}

}  // namespace veral3::tools
