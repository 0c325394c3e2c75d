#pragma once

#include <exception>
#include <new>

#include "common/MessageWriter.h"

namespace veral3 {

// "ERROR in CLASS::OPERATION(), WHAT" on the error stream.
inline void ReportError(const char* class_name, const char* operation, const char* what) {
  Message(MessageStream::kError) << "ERROR in " << class_name << "::" << operation << "(), " << what
                                 << "\n";
}

// Runs a step of the interface: whatever it throws (memory runs out) becomes a message and -1.
template <typename Step>
int Guarded(const char* class_name, const char* operation, Step step) noexcept {
  try {
    return step();
  } catch (const std::bad_alloc&) {
    ReportError(class_name, operation, "out of memory");
  } catch (const std::exception& error) {
    ReportError(class_name, operation, error.what());
  } catch (...) {
    ReportError(class_name, operation, "unknown error");
  }
  return -1;
}

}  // namespace veral3
