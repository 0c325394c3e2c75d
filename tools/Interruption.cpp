#include "tools/Interruption.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>

namespace veral3::tools {
namespace {

// A file whose path is not there to read by the handler has no name yet, or none any more.
struct FileSlot {
  std::atomic<bool> taken = false;
  std::atomic<bool> named = false;
  std::array<char, PATH_MAX> path{};
};

// More than are written at the same time, and than recordings are read at the same time.
std::array<FileSlot, 32> g_files;
std::array<std::atomic<pid_t>, 512> g_groups;

static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<pid_t>::is_always_lock_free,
              "a signal handler takes no locks");

// Calls only what a signal handler may.
void CleanUp(int signal) {
  const int error = errno;
  for (const FileSlot& slot : g_files) {
    if (slot.named) unlink(slot.path.data());
  }
  for (const std::atomic<pid_t>& group : g_groups) {
    if (const pid_t id = group; id > 0) kill(-id, SIGKILL);
  }
  // Comes when the handler returns: the process ends as if it had none.
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  errno = error;
}

}  // namespace

void CleanUpOnSignals() {
  struct sigaction action {};
  action.sa_handler = CleanUp;
  sigfillset(&action.sa_mask);
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU, SIGXFSZ}) {
    struct sigaction old {};
    if (sigaction(signal, nullptr, &old) == 0 && old.sa_handler != SIG_IGN) {
      sigaction(signal, &action, nullptr);
    }
  }
}

FileAtRisk::FileAtRisk(const std::string& path) : m_slot(-1) {
  if (path.size() >= PATH_MAX) return;
  for (std::size_t i = 0; i < g_files.size(); ++i) {
    FileSlot& slot = g_files[i];
    if (slot.taken.exchange(true)) continue;
    path.copy(slot.path.data(), path.size());
    slot.path[path.size()] = '\0';
    slot.named = true;
    m_slot = static_cast<int>(i);
    return;
  }
}

FileAtRisk::~FileAtRisk() {
  if (m_slot < 0) return;
  FileSlot& slot = g_files[static_cast<std::size_t>(m_slot)];
  slot.named = false;
  slot.taken = false;
}

ProcessAtRisk::ProcessAtRisk(pid_t group) : m_slot(-1) {
  for (std::size_t i = 0; i < g_groups.size(); ++i) {
    pid_t none = 0;
    if (!g_groups[i].compare_exchange_strong(none, group)) continue;
    m_slot = static_cast<int>(i);
    return;
  }
}

ProcessAtRisk::~ProcessAtRisk() {
  if (m_slot >= 0) g_groups[static_cast<std::size_t>(m_slot)] = 0;
}

}  // namespace veral3::tools
