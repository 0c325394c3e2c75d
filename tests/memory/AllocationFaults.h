#pragma once

#include <string_view>

// Memory that runs out when a test says so. The test program's operator new and delete are replaced
// (AllocationFaults.cpp): they count what is allocated and fail one allocation, or one and all
// after it. Allocations that C code makes by itself (malloc: in the noise suppressor, the C
// library's streams, the machinery of exceptions) are neither counted nor failed.
namespace veral3::test {

enum class Fault {
  kOne,   // one allocation fails, as where another thread gives memory back meanwhile
  kRest,  // and all after it
};

// Fails the `n`-th allocation from now on, counted from 1; none for 0. Allocates nothing.
void FailAllocation(long n, Fault fault);

// Back to memory without end. Returns how many allocations were asked for meanwhile.
long StopFailing();

// Allocations that were not given back yet.
long LiveAllocations();

// Takes the engine's messages without allocating, while it lives. One at a time.
class MessageLog {
 public:
  MessageLog();
  ~MessageLog();
  MessageLog(const MessageLog&) = delete;
  MessageLog& operator=(const MessageLog&) = delete;

  static void Clear();
  static std::string_view Text();

  // Whether a message said that there is no memory.
  static bool TellsOfMemory();
};

}  // namespace veral3::test
