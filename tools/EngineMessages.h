#pragma once

#include <string>

namespace veral3::tools {

// Takes the messages that the engine writes on this thread while it lives, so that the command can
// say which file they belong to and in which order. Nests: the innermost one takes them.
//
// The first object installs the process's message handler, which stays. Messages of a thread that
// has no object go to standard error.
class EngineMessages {
 public:
  EngineMessages();
  ~EngineMessages();
  EngineMessages(const EngineMessages&) = delete;
  EngineMessages& operator=(const EngineMessages&) = delete;

  // All so far, one after another; they bring their own line ends, save a few that have none.
  const std::string& Text() const { return m_text; }

  // The same in the command's words (tools/EngineWords.h) as one line without its end, "; " between
  // messages; for an error.
  std::string OneLine() const;

 private:
  EngineMessages* m_outer;
  std::string m_text;
};

}  // namespace veral3::tools
