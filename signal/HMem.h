#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The front end's toolkit, module HMem: named memory heaps.
//
//   MemHeap heap;
//   CreateHeap(heap, "InBuf", HeapKind::kMstak, 1, 0.0F, 100000, 0x7FFFFFFF);
//   void* piece = New(heap, 2208);   // owned by the heap
//   ResetHeap(heap);                 // every piece is gone, the heap can be used again
//   DeleteHeap(heap);
//
// A heap owns its blocks and gives them back when it ends, deleted or not. One heap is used by one
// thread at a time; the registry of heaps may be used by all at once. Failures are fatal errors of
// the toolkit (HShell.h).
namespace veral3 {

enum class HeapKind : int {
  kMheap,  // elements of one size
  kMstak,  // a stack of pieces of any size
  kCheap,  // each piece allocated on its own
};

// One block of a heap; its sizes count elements (bytes for a stack).
struct MemBlock {
  std::unique_ptr<std::byte[]> data;
  std::size_t num_elements = 0;
  std::size_t num_used = 0;
  std::size_t first_free = 0;
  std::unique_ptr<std::uint8_t[]> used;  // kMheap only: one bit for each element
};

struct MemHeap {
  MemHeap() = default;
  ~MemHeap();
  MemHeap(const MemHeap&) = delete;
  MemHeap& operator=(const MemHeap&) = delete;

  std::string name;
  HeapKind kind = HeapKind::kMheap;
  float growth = 0.0F;           // each block is this much larger than the one before
  std::size_t element_size = 0;  // bytes; 0 until the heap is created
  std::size_t min_block = 0;     // elements
  std::size_t max_block = 0;
  std::size_t current_block = 0;  // elements of the next block
  std::size_t live_elements = 0;
  std::size_t total_bytes = 0;
  bool protect_stack = false;
  std::vector<MemBlock> blocks;  // the top one last
};

// Sizes and block limits count elements of `element_size` bytes. Creating a heap anew drops what
// it held.
void CreateHeap(MemHeap& heap, std::string name, HeapKind kind, std::size_t element_size,
                float growth, std::size_t min_block, std::size_t max_block);

// `size` bytes, aligned for every type, unset. They last until the heap is reset or ends.
void* New(MemHeap& heap, std::size_t size);

void ResetHeap(MemHeap& heap);
void DeleteHeap(MemHeap& heap);

// The recorded heaps, newest first.
std::vector<const MemHeap*> RecordedHeaps();

// Module start and end: the heap "Global Stack" and the module's configuration. Starting twice does
// nothing.
void StartMem();
void EndMem();
MemHeap& GlobalStack();

// Asked before each allocation of the module when set; false makes it fail. For tests.
using AllocationGate = bool (*)(std::size_t bytes);
void SetAllocationGate(AllocationGate gate);

}  // namespace veral3
