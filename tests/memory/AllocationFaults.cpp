#include "AllocationFaults.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "common/Messages.h"

namespace veral3::test {
namespace {

// The program's tests run on one thread.
constinit long g_live = 0;
constinit long g_asked = 0;
constinit long g_failing = 0;  // 0: none
constinit bool g_rest = false;

bool MayAllocate() {
  ++g_asked;
  return g_failing == 0 || (g_rest ? g_asked < g_failing : g_asked != g_failing);
}

void* Allocate(std::size_t size, std::size_t alignment) noexcept {
  if (!MayAllocate()) return nullptr;
  size = std::max<std::size_t>(size, 1);
  void* const memory =
      alignment <= __STDCPP_DEFAULT_NEW_ALIGNMENT__
          ? std::malloc(size)
          : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
  if (memory != nullptr) ++g_live;
  return memory;
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment) {
  void* const memory = Allocate(size, alignment);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void Free(void* memory) noexcept {
  if (memory == nullptr) return;
  --g_live;
  std::free(memory);
}

constexpr std::size_t kDefault = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

constinit char g_text[1 << 18] = {};
constinit std::size_t g_length = 0;

}  // namespace

void FailAllocation(long n, Fault fault) {
  g_asked = 0;
  g_failing = n;
  g_rest = fault == Fault::kRest;
}

long StopFailing() {
  g_failing = 0;
  return g_asked;
}

long LiveAllocations() { return g_live; }

MessageLog::MessageLog() {
  Clear();
  SetMessageHandler([](MessageStream, std::string_view text) {
    const std::size_t length = std::min(text.size(), sizeof(g_text) - g_length);
    std::copy_n(text.data(), length, g_text + g_length);
    g_length += length;
  });
}

MessageLog::~MessageLog() { SetMessageHandler({}); }

void MessageLog::Clear() { g_length = 0; }

std::string_view MessageLog::Text() { return {g_text, g_length}; }

bool MessageLog::TellsOfMemory() {
  for (const std::string_view phrase :
       {"out of memory", "memory ran out", "Pitch not created.", "ERROR [+5105]"}) {
    if (Text().find(phrase) != std::string_view::npos) return true;
  }
  return false;
}

}  // namespace veral3::test

using veral3::test::Allocate;
using veral3::test::AllocateOrThrow;
using veral3::test::Free;
using veral3::test::kDefault;

void* operator new(std::size_t n) { return AllocateOrThrow(n, kDefault); }
void* operator new[](std::size_t n) { return AllocateOrThrow(n, kDefault); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return Allocate(n, kDefault); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
  return Allocate(n, kDefault);
}
void* operator new(std::size_t n, std::align_val_t a) {
  return AllocateOrThrow(n, static_cast<std::size_t>(a));
}
void* operator new[](std::size_t n, std::align_val_t a) {
  return AllocateOrThrow(n, static_cast<std::size_t>(a));
}
void* operator new(std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  return Allocate(n, static_cast<std::size_t>(a));
}
void* operator new[](std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  return Allocate(n, static_cast<std::size_t>(a));
}

void operator delete(void* p) noexcept { Free(p); }
void operator delete[](void* p) noexcept { Free(p); }
void operator delete(void* p, std::size_t) noexcept { Free(p); }
void operator delete[](void* p, std::size_t) noexcept { Free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { Free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { Free(p); }
void operator delete(void* p, std::align_val_t) noexcept { Free(p); }
void operator delete[](void* p, std::align_val_t) noexcept { Free(p); }
void operator delete(void* p, std::size_t, std::align_val_t) noexcept { Free(p); }
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept { Free(p); }
void operator delete(void* p, std::align_val_t, const std::nothrow_t&) noexcept { Free(p); }
void operator delete[](void* p, std::align_val_t, const std::nothrow_t&) noexcept { Free(p); }
