#pragma once

#include <string>
#include <vector>

namespace veral3::tools::test {

struct ProcessResult {
  int status = -1;  // exit status; -1 when a signal ended the process
  std::string out;
  std::string err;
  long max_resident_kb = 0;  // the most memory that it held
};

// Runs the `veral3` command of this build with standard input empty, and waits for its end.
ProcessResult RunVeral3(const std::vector<std::string>& arguments);

// The same with a terminal as standard error; only that is told of. What the command writes there
// must fit the terminal's buffer (4 KB).
std::string StandardErrorOnTerminal(const std::vector<std::string>& arguments);

}  // namespace veral3::tools::test
