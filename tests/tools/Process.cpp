#include "Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

#include "support/Vectors.h"

namespace veral3::tools::test {

ProcessResult RunVeral3(const std::vector<std::string>& arguments) {
  const veral3::test::ScratchFolder folder;
  const std::string out = folder.Path() / "out";
  const std::string err = folder.Path() / "err";

  std::vector<std::string> words = {VERAL3_COMMAND};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  constexpr int kCreate = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), kCreate, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), kCreate, 0600);
  pid_t child = 0;
  const int error = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("cannot start " + words[0]);

  int status = 0;
  rusage usage{};
  while (wait4(child, &status, 0, &usage) < 0) {
    if (errno != EINTR) throw std::runtime_error("cannot wait for " + words[0]);
  }
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, veral3::test::ReadFile(out),
          veral3::test::ReadFile(err), usage.ru_maxrss};
}

}  // namespace veral3::tools::test
