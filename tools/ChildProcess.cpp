#include "tools/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

namespace veral3::tools {
namespace {

constexpr std::size_t kMaxMessages = 64u << 10;  // bytes that are kept
constexpr std::size_t kTooManyMessages = 4u << 20;

// The ends of a pipe; closed by themselves.
struct Pipe {
  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) ends = {-1, -1};
  }
  ~Pipe() {
    for (const int end : ends) {
      if (end >= 0) close(end);
    }
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  int TakeReading() { return std::exchange(ends[0], -1); }

  std::array<int, 2> ends{};
};

// Keeps signals from this thread for as long as the object lives.
struct HeldSignals {
  HeldSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &old);
  }
  ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &old, nullptr); }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  sigset_t old;
};

// How a child is to be set up.
struct Setup {
  Setup() {
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
  }
  ~Setup() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  Setup(const Setup&) = delete;
  Setup& operator=(const Setup&) = delete;

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

}  // namespace

std::unique_ptr<ChildProcess> ChildProcess::Start(const std::vector<std::string>& words, int input,
                                                  Deadline deadline, std::string& error) {
  const auto fail = [&](int code) {
    // No such program, or nothing on PATH that can be run.
    const bool is_missing = code == ENOENT || code == EACCES || code == ENOTDIR;
    error = is_missing ? "" : std::generic_category().message(code);
    return nullptr;
  };
  Pipe output;
  Pipe errors;
  if (output.ends[0] < 0 || errors.ends[0] < 0) return fail(errno);
  Setup setup;
  if (input >= 0) {
    posix_spawn_file_actions_adddup2(&setup.actions, input, STDIN_FILENO);
  } else {
    posix_spawn_file_actions_addopen(&setup.actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  }
  posix_spawn_file_actions_adddup2(&setup.actions, output.ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&setup.actions, errors.ends[1], STDERR_FILENO);
  // A group of its own, so that what it starts in its turn can be ended with it.
  posix_spawnattr_setflags(&setup.attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
  posix_spawnattr_setpgroup(&setup.attributes, 0);

  // A signal waits until the program is known to its handler.
  const HeldSignals held;
  posix_spawnattr_setsigmask(&setup.attributes, &held.old);

  std::vector<std::string> copies = words;
  std::vector<char*> arguments;
  for (std::string& word : copies) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t id = 0;
  const int code =
      posix_spawnp(&id, arguments[0], &setup.actions, &setup.attributes, arguments.data(), environ);
  if (code != 0) return fail(code);
  return std::unique_ptr<ChildProcess>(
      new ChildProcess(id, output.TakeReading(), errors.TakeReading(), deadline));
}

ChildProcess::ChildProcess(pid_t id, int output, int errors, Deadline deadline)
    : m_id(id), m_output(output), m_errors(errors), m_deadline(deadline) {
  m_at_risk.emplace(id);
}

ChildProcess::~ChildProcess() {
  if (!m_status) Kill();
  close(m_output);
  if (m_errors >= 0) close(m_errors);
}

std::size_t ChildProcess::Read(char* to, std::size_t count) {
  while (!m_status) {
    std::array<pollfd, 2> files = {pollfd{m_output, POLLIN, 0}, pollfd{m_errors, POLLIN, 0}};
    const int ready = poll(files.data(), files.size(), MillisecondsLeft());
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) {
      m_took_too_long = true;
      Kill();
      break;
    }
    if (files[1].revents != 0) TakeMessages();
    if (files[0].revents == 0) continue;
    const ssize_t got = read(m_output, to, count);
    if (got < 0 && errno == EINTR) continue;
    return got > 0 ? static_cast<std::size_t>(got) : 0;
  }
  return 0;
}

int ChildProcess::Wait() {
  // What it still has to say, until it has closed its standard error too.
  while (!m_status && m_errors >= 0) {
    pollfd file = {m_errors, POLLIN, 0};
    const int ready = poll(&file, 1, MillisecondsLeft());
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) {
      m_took_too_long = true;
      Kill();
    } else {
      TakeMessages();
    }
  }
  while (!m_status) {
    int status = 0;
    const pid_t ended = waitpid(m_id, &status, WNOHANG);
    if (ended == m_id) {
      HasEnded(WIFEXITED(status) ? WEXITSTATUS(status) : -1);
    } else if (MillisecondsLeft() == 0 || (ended < 0 && errno != EINTR)) {
      m_took_too_long = true;
      Kill();
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }
  return *m_status;
}

int ChildProcess::MillisecondsLeft() const {
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(m_deadline - std::chrono::steady_clock::now());
  return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, INT_MAX));
}

void ChildProcess::TakeMessages() {
  std::array<char, 4096> block{};
  const ssize_t got = read(m_errors, block.data(), block.size());
  if (got < 0 && errno == EINTR) return;
  if (got <= 0) {
    close(std::exchange(m_errors, -1));
    return;
  }
  const auto size = static_cast<std::size_t>(got);
  m_message_bytes += size;
  m_messages.append(block.data(), std::min(size, kMaxMessages - m_messages.size()));
  if (m_message_bytes > kTooManyMessages) {
    m_took_too_long = true;
    Kill();
  }
}

void ChildProcess::Kill() {
  kill(-m_id, SIGKILL);
  int status = 0;
  while (waitpid(m_id, &status, 0) < 0 && errno == EINTR) {
  }
  HasEnded(-1);
}

// From now on its number may be another process's.
void ChildProcess::HasEnded(int status) {
  m_at_risk.reset();
  m_status = status;
}

}  // namespace veral3::tools
