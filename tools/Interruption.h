#pragma once

#include <sys/types.h>

#include <string>

// What the command takes away when a signal ends it: half-written files and the programs it has
// started. A signal handler can know of neither but through the process's own memory, so there is
// one list for all threads.
namespace veral3::tools {

// From now on SIGHUP, SIGINT, SIGPIPE, SIGTERM and their like remove what is remembered before they
// end the process, which ends by the signal itself, as the caller can see. Those that the caller
// has the process ignore stay ignored. To be called once, first thing.
void CleanUpOnSignals();

// A file that a signal removes, for as long as the object lives.
class FileAtRisk {
 public:
  explicit FileAtRisk(const std::string& path);
  ~FileAtRisk();
  FileAtRisk(const FileAtRisk&) = delete;
  FileAtRisk& operator=(const FileAtRisk&) = delete;

 private:
  int m_slot;
};

// A group of processes that a signal kills, for as long as the object lives.
class ProcessAtRisk {
 public:
  explicit ProcessAtRisk(pid_t group);
  ~ProcessAtRisk();
  ProcessAtRisk(const ProcessAtRisk&) = delete;
  ProcessAtRisk& operator=(const ProcessAtRisk&) = delete;

 private:
  int m_slot;
};

}  // namespace veral3::tools
