#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/Interruption.h"

namespace veral3::tools {

// Another program whose output is read while it runs, in a group of processes of its own. No shell
// has to do with it: the arguments arrive as they are.
//
//   std::string error;
//   const auto child = ChildProcess::Start({"ffmpeg", "-version"}, -1, deadline, error);
//   while (child && (got = child->Read(buffer, size)) > 0) ...
//   if (child && child->Wait() != 0) ...
//
// What still runs when the object ends, or at the deadline, is killed.
class ChildProcess {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  // `words`: the program, looked for on PATH, and its arguments. `input`: a file to be its standard
  // input. Null with the reason in `error`, which is empty when there is no such program.
  static std::unique_ptr<ChildProcess> Start(const std::vector<std::string>& words, int input,
                                             Deadline deadline, std::string& error);

  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // Waits for some of its standard output. How many bytes there are: 0 when it has closed it, and
  // after the deadline.
  std::size_t Read(char* to, std::size_t count);

  // The exit status, -1 where the program did not end by itself.
  int Wait();

  // The beginning of what it wrote to standard error.
  const std::string& Messages() const { return m_messages; }

  // Whether it was killed for taking too long, or for messages without end.
  bool TookTooLong() const { return m_took_too_long; }

 private:
  ChildProcess(pid_t id, int output, int errors, Deadline deadline);
  int MillisecondsLeft() const;
  void TakeMessages();
  void Kill();
  void HasEnded(int status);

  pid_t m_id;
  int m_output;
  int m_errors;
  Deadline m_deadline;
  std::string m_messages;
  std::size_t m_message_bytes = 0;  // kept or not
  bool m_took_too_long = false;
  std::optional<int> m_status;  // since it has ended
  std::optional<ProcessAtRisk> m_at_risk;
};

}  // namespace veral3::tools
