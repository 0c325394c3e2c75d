#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace veral3::tools::test {

struct ProcessResult {
  int status = -1;  // exit status; -1 when a signal ended the process
  std::string out;
  std::string err;
  long max_resident_kb = 0;  // the most memory that it held
};

// Files in the place of the command's standard streams.
struct Streams {
  std::string in = "/dev/null";
  std::string out = "";  // "": it is told of
};

// Runs the `veral3` command of this build and waits for its end.
ProcessResult RunVeral3(const std::vector<std::string>& arguments, const Streams& streams = {});

// The same without waiting; standard error goes nowhere.
pid_t StartVeral3(const std::vector<std::string>& arguments, const Streams& streams);

// Waits for a process's end and gives its status as waitpid does.
int WaitFor(pid_t process);

// The same with a terminal as standard error; only that is told of. What the command writes there
// must fit the terminal's buffer (4 KB).
std::string StandardErrorOnTerminal(const std::vector<std::string>& arguments);

}  // namespace veral3::tools::test
