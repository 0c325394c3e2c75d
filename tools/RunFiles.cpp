#include "tools/RunFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <optional>
#include <utility>

namespace veral3::tools {
namespace {

// What two paths have in common that name the same file.
struct Identity {
  std::optional<std::pair<dev_t, ino_t>> inode;  // of a file that is there
  std::string place;                             // where one that is not there would be
  bool is_stream = false;                        // can be read once
};

Identity IdentityOf(const std::string& path, int standard) {
  Identity identity;
  struct stat status {};
  const bool is_standard = path == "-";
  const bool is_there = (is_standard ? fstat(standard, &status) : stat(path.c_str(), &status)) == 0;
  // Nobody's data are in a device: /dev/null takes and gives what it is asked to.
  if (is_there && S_ISCHR(status.st_mode)) return identity;
  identity.is_stream = is_there && !S_ISREG(status.st_mode);
  if (is_there) {
    identity.inode = {status.st_dev, status.st_ino};
  } else if (!is_standard) {
    std::error_code error;
    identity.place = std::filesystem::weakly_canonical(path, error).string();
    if (error) identity.place = path;
  }
  return identity;
}

// The files known so far.
class Known {
 public:
  // The file that is the same as `identity`, null where none is.
  const RunFile* Find(const Identity& identity) const {
    if (identity.inode) {
      const auto found = m_inodes.find(*identity.inode);
      return found != m_inodes.end() ? found->second : nullptr;
    }
    const auto found = m_places.find(identity.place);
    return found != m_places.end() ? found->second : nullptr;
  }

  void Add(const Identity& identity, const RunFile& file) {
    if (identity.inode) m_inodes.emplace(*identity.inode, &file);
    if (!identity.place.empty()) m_places.emplace(identity.place, &file);
  }

 private:
  std::map<std::pair<dev_t, ino_t>, const RunFile*> m_inodes;
  std::map<std::string, const RunFile*> m_places;
};

std::string Named(const RunFile& file, const char* standard) {
  return file.what + " " + (file.path == "-" ? standard : file.path);
}

}  // namespace

std::string RunFilesProblem(const std::vector<RunFile>& read, const std::vector<RunFile>& written) {
  Known inputs;
  const RunFile* standard_input = nullptr;
  for (const RunFile& file : read) {
    const Identity identity = IdentityOf(file.path, STDIN_FILENO);
    const RunFile* same = identity.is_stream ? inputs.Find(identity) : nullptr;
    if (file.path == "-") same = std::exchange(standard_input, &file);
    if (same != nullptr) {
      return Named(*same, "from standard input") + " and " + Named(file, "from standard input") +
             " are one stream, which can be read only once";
    }
    inputs.Add(identity, file);
  }
  Known outputs;
  for (const RunFile& file : written) {
    const Identity identity = IdentityOf(file.path, STDOUT_FILENO);
    if (const RunFile* same = inputs.Find(identity)) {
      return Named(file, "on standard output") + " would overwrite " +
             Named(*same, "from standard input");
    }
    if (const RunFile* same = outputs.Find(identity)) {
      return Named(*same, "on standard output") + " and " + Named(file, "on standard output") +
             " would be the same file";
    }
    outputs.Add(identity, file);
  }
  return "";
}

}  // namespace veral3::tools
