#include "Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "support/Vectors.h"

namespace veral3::tools::test {

namespace {

// Starts the command with files, or a terminal, as its standard streams.
pid_t Start(const std::vector<std::string>& arguments, const std::string& in,
            const std::string& out, const std::string& err) {
  const char* other = std::getenv("VERAL3_COMMAND");  // another build of it
  std::vector<std::string> words = {other ? other : VERAL3_COMMAND};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  constexpr int kCreate = O_WRONLY | O_CREAT | O_TRUNC | O_NOCTTY;
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, in.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), kCreate, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), kCreate, 0600);
  pid_t child = 0;
  const int error = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("cannot start " + words[0]);
  return child;
}

int WaitFor(pid_t process, rusage& usage) {
  int status = 0;
  while (wait4(process, &status, 0, &usage) < 0) {
    if (errno != EINTR) throw std::runtime_error("cannot wait for a process");
  }
  return status;
}

}  // namespace

ProcessResult RunVeral3(const std::vector<std::string>& arguments, const Streams& streams) {
  const veral3::test::ScratchFolder folder;
  const std::string out = folder.Path() / "out";
  const std::string err = folder.Path() / "err";
  rusage usage{};
  const int status =
      WaitFor(Start(arguments, streams.in, streams.out.empty() ? out : streams.out, err), usage);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
          streams.out.empty() ? veral3::test::ReadFile(out) : "", veral3::test::ReadFile(err),
          usage.ru_maxrss};
}

pid_t StartVeral3(const std::vector<std::string>& arguments, const Streams& streams) {
  return Start(arguments, streams.in, streams.out.empty() ? "/dev/null" : streams.out, "/dev/null");
}

int WaitFor(pid_t process) {
  rusage usage{};
  return WaitFor(process, usage);
}

std::string StandardErrorOnTerminal(const std::vector<std::string>& arguments) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
    throw std::runtime_error("no terminal to be had");
  }
  std::string name(100, '\0');
  if (ptsname_r(terminal, name.data(), name.size()) != 0) throw std::runtime_error("no terminal");
  name.resize(name.find('\0'));
  // Held open, so that what the command wrote is still there when it has ended.
  const int other_end = open(name.c_str(), O_RDWR | O_NOCTTY);
  WaitFor(Start(arguments, "/dev/null", "/dev/null", name));
  // The terminal hands on what is written when it has time: a mark of our own is the end of it.
  constexpr std::string_view kEnd = "\x04\x04";
  if (write(other_end, kEnd.data(), kEnd.size()) != static_cast<ssize_t>(kEnd.size())) {
    throw std::runtime_error("the terminal takes nothing");
  }
  std::string text;
  while (!text.ends_with(kEnd)) {
    std::array<char, 4096> block{};
    const ssize_t got = read(terminal, block.data(), block.size());
    if (got <= 0) throw std::runtime_error("the terminal gives nothing");
    text.append(block.data(), static_cast<std::size_t>(got));
  }
  text.resize(text.size() - kEnd.size());
  close(other_end);
  close(terminal);
  return text;
}

}  // namespace veral3::tools::test
