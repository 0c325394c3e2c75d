#pragma once

#include <string>
#include <vector>

#include "common/Messages.h"

namespace veral3::test {

// Takes every message of the engine while it lives.
class MessageCapture {
 public:
  struct Entry {
    MessageStream stream;
    std::string text;
  };

  MessageCapture();
  ~MessageCapture();
  MessageCapture(const MessageCapture&) = delete;
  MessageCapture& operator=(const MessageCapture&) = delete;

  const std::vector<Entry>& Entries() const { return m_entries; }
  std::string All() const;                     // all texts, one after another
  std::string Of(MessageStream stream) const;  // those of one stream
  std::string StandardError() const;           // narrow and wide
  std::string StandardOutput() const;
  void Clear() { m_entries.clear(); }

 private:
  std::vector<Entry> m_entries;
};

// While it lives, a fatal exit of the engine throws EndedProcess in place of ending the tests.
struct EndedProcess {
  int status;
};
class EndProcessTrap {
 public:
  EndProcessTrap();
  ~EndProcessTrap();
  EndProcessTrap(const EndProcessTrap&) = delete;
  EndProcessTrap& operator=(const EndProcessTrap&) = delete;
};

}  // namespace veral3::test
