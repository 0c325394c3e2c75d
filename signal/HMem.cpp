#include "signal/HMem.h"

#include <algorithm>
#include <atomic>
#include <iomanip>
#include <limits>
#include <mutex>
#include <new>
#include <utility>

#include "common/MessageWriter.h"
#include "signal/HShell.h"

namespace veral3 {
namespace {

constexpr int kTraceHeaps = 1;
constexpr std::size_t kAlignment = alignof(std::max_align_t);
constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

struct MemHeapRec {
  MemHeap* heap;
  std::unique_ptr<MemHeapRec> next;
};

// What all heaps of the process share. Never destroyed: heaps of other static objects and of
// threads may end later.
struct Module {
  std::mutex mutex;  // guards `newest`; never held while a failure is reported
  std::unique_ptr<MemHeapRec> newest;
  std::atomic<AllocationGate> gate = nullptr;
  std::atomic<int> trace = 0;
  std::atomic<bool> protect_stacks = false;
  MemHeap global_stack;
};
Module& TheModule() {
  alignas(Module) static std::byte place[sizeof(Module)];
  static Module& module = *new (place) Module;
  return module;
}

bool MayAllocate(std::size_t bytes) {
  const AllocationGate gate = TheModule().gate;
  return gate == nullptr || gate(bytes);
}

// Null when there is no memory.
template <typename T>
std::unique_ptr<T[]> TryAllocate(std::size_t count) {
  if (!MayAllocate(count)) return nullptr;
  return std::unique_ptr<T[]>(new (std::nothrow) T[count]);
}

unsigned Shown(std::size_t n) { return static_cast<unsigned>(n); }

char KindLetter(HeapKind kind) {
  if (kind == HeapKind::kMheap) return 'M';
  return kind == HeapKind::kMstak ? 'S' : 'C';
}

bool IsRecorded(const MemHeap& heap) {
  const std::lock_guard lock(TheModule().mutex);
  for (const MemHeapRec* rec = TheModule().newest.get(); rec != nullptr; rec = rec->next.get()) {
    if (rec->heap == &heap) return true;
  }
  return false;
}

void RecordHeap(MemHeap& heap) {
  std::unique_ptr<MemHeapRec> rec;
  if (MayAllocate(sizeof(MemHeapRec))) rec.reset(new (std::nothrow) MemHeapRec{&heap, nullptr});
  if (!rec) FatalError(kErrorAllocation, "RecordHeap: Cannot allocate memory for MemHeapRec");
  const std::lock_guard lock(TheModule().mutex);
  rec->next = std::move(TheModule().newest);
  TheModule().newest = std::move(rec);
}

bool UnRecordHeap(const MemHeap& heap) {
  const std::lock_guard lock(TheModule().mutex);
  std::unique_ptr<MemHeapRec>* link = &TheModule().newest;
  while (*link && (*link)->heap != &heap) link = &(*link)->next;
  if (!*link) return false;
  std::unique_ptr<MemHeapRec> found = std::move(*link);
  *link = std::move(found->next);
  return true;
}

void DropBlocks(MemHeap& heap) {
  heap.blocks.clear();
  heap.blocks.shrink_to_fit();
  heap.current_block = heap.min_block;
  heap.live_elements = 0;
  heap.total_bytes = 0;
}

void Push(MemHeap& heap, MemBlock block, const char* failure) {
  try {
    heap.blocks.push_back(std::move(block));
  } catch (const std::bad_alloc&) {
    FatalError(kErrorAllocation, "%s", failure);
  }
}

// A new top block with room for `num_elements` elements.
void AllocBlock(MemHeap& heap, std::size_t num_elements) {
  if (heap.kind != HeapKind::kMheap && heap.kind != HeapKind::kMstak) {
    FatalError(kErrorHeapKind, "AllocBlock: bad type %d", static_cast<int>(heap.kind));
  }
  MemBlock block;
  block.num_elements = num_elements;
  if (!MayAllocate(sizeof(MemBlock))) {
    FatalError(kErrorAllocation, "AllocBlock: Cannot allocate Block");
  }
  const bool too_large = num_elements > kNoLimit / heap.element_size;
  if (!too_large) block.data = TryAllocate<std::byte>(num_elements * heap.element_size);
  if (!block.data) {
    FatalError(kErrorAllocation, "AllocBlock: Cannot allocate block data of %u bytes",
               Shown(num_elements * heap.element_size));
  }
  if (heap.kind == HeapKind::kMheap) {
    const std::size_t num_bytes = (num_elements + 7) / 8;
    block.used = TryAllocate<std::uint8_t>(num_bytes);
    if (!block.used) FatalError(kErrorAllocation, "AllocBlock: Cannot allocate block used array");
    std::fill_n(block.used.get(), num_bytes, std::uint8_t{0});
  }
  Push(heap, std::move(block), "AllocBlock: Cannot allocate Block");
  heap.total_bytes += num_elements * heap.element_size;
  const double grown =
      static_cast<double>(heap.current_block) * (1.0 + static_cast<double>(heap.growth));
  heap.current_block = grown >= static_cast<double>(heap.max_block)
                           ? heap.max_block
                           : static_cast<std::size_t>(grown);
}

// `size` bytes of the top block, null when it has no room.
void* GetElem(MemHeap& heap, std::size_t size) {
  MemBlock& block = heap.blocks.back();
  std::size_t first = block.first_free;
  std::size_t num_elements = 1;
  switch (heap.kind) {
    case HeapKind::kMheap:
      if (first == block.num_elements) return nullptr;
      block.used[first / 8] |= static_cast<std::uint8_t>(1U << (first % 8));
      break;
    case HeapKind::kMstak:
      first = (first + kAlignment - 1) / kAlignment * kAlignment;
      num_elements = size;
      if (first > block.num_elements || block.num_elements - first < size) return nullptr;
      break;
    default:
      FatalError(kErrorHeapKind, "GetElem: bad type %d", static_cast<int>(heap.kind));
  }
  block.first_free = first + num_elements;
  block.num_used += num_elements;
  ++heap.live_elements;
  return block.data.get() + first * heap.element_size;
}

void* NewOnItsOwn(MemHeap& heap, std::size_t size) {
  MemBlock block;
  block.num_elements = block.num_used = block.first_free = size;
  block.data = TryAllocate<std::byte>(size);
  if (!block.data) FatalError(kErrorAllocation, "New: memory exhausted");
  void* piece = block.data.get();
  Push(heap, std::move(block), "New: memory exhausted");
  ++heap.live_elements;
  heap.total_bytes += size;
  return piece;
}

}  // namespace

MemHeap::~MemHeap() { UnRecordHeap(*this); }

void CreateHeap(MemHeap& heap, std::string name, HeapKind kind, std::size_t element_size,
                float growth, std::size_t min_block, std::size_t max_block) {
  if (growth < 0.0F) {
    FatalError(kErrorHeapParameters, "CreateHeap: -ve grow factor in heap %s", name.c_str());
  }
  if (min_block > max_block) {
    FatalError(kErrorHeapParameters, "CreateHeap: init num elem > max elem in heap %s",
               name.c_str());
  }
  if (element_size == 0) {
    FatalError(kErrorHeapParameters, "CreateHeap: elem size = %u in heap %s", Shown(element_size),
               name.c_str());
  }
  if (kind == HeapKind::kMstak && element_size != 1) {
    FatalError(kErrorHeapParameters, "CreateHeap: elem size = %u in MSTAK heap %s",
               Shown(element_size), name.c_str());
  }
  if (!IsRecorded(heap)) RecordHeap(heap);
  heap.name = std::move(name);
  heap.kind = kind;
  heap.growth = growth;
  heap.element_size = element_size;
  heap.min_block = min_block;
  heap.max_block = max_block;
  heap.protect_stack = TheModule().protect_stacks;
  DropBlocks(heap);
  if (TheModule().trace & kTraceHeaps) {
    Message(MessageStream::kOutput)
        << "HMem: Create Heap " << heap.name << "[" << KindLetter(kind) << "] "
        << Shown(element_size) << " " << std::fixed << std::setprecision(1) << growth << " "
        << Shown(min_block) << " " << Shown(max_block) << "\n";
  }
}

void* New(MemHeap& heap, std::size_t size) {
  if (heap.element_size == 0) {
    FatalError(kErrorHeapNotReady, "New: heap %s not initialised",
               heap.name.empty() ? "Unnamed" : heap.name.c_str());
  }
  if (heap.kind == HeapKind::kCheap) return NewOnItsOwn(heap, size);

  if (heap.kind == HeapKind::kMheap && size != heap.element_size) {
    FatalError(kErrorElementSize, "New: MHEAP req for %u size elem from heap %s size %u",
               Shown(size), heap.name.c_str(), Shown(heap.element_size));
  }
  if (!heap.blocks.empty()) {
    if (void* piece = GetElem(heap, size)) return piece;
  }
  const bool stack = heap.kind == HeapKind::kMstak;
  if (stack && size > heap.max_block) FatalError(kErrorAllocation, "New: memory exhausted");
  AllocBlock(heap, stack ? std::max(size, heap.current_block) : heap.current_block);
  void* piece = GetElem(heap, size);
  if (piece == nullptr) {
    FatalError(kErrorHeapState, "New: null elem but just made block in heap %s", heap.name.c_str());
  }
  return piece;
}

void ResetHeap(MemHeap& heap) {
  if (heap.kind == HeapKind::kCheap) FatalError(kErrorCHeap, "ResetHeap: cannot reset C heap");
  DropBlocks(heap);
}

void DeleteHeap(MemHeap& heap) {
  if (heap.kind == HeapKind::kCheap) {
    FatalError(kErrorCHeap, "DeleteHeap: cant delete C Heap %s", heap.name.c_str());
  }
  ResetHeap(heap);
  if (!UnRecordHeap(heap)) {
    FatalError(kErrorHeapNotFound, "UnRecordHeap: heap %s not found", heap.name.c_str());
  }
  heap.name.clear();
  heap.element_size = 0;
}

std::vector<const MemHeap*> RecordedHeaps() {
  std::vector<const MemHeap*> heaps;
  const std::lock_guard lock(TheModule().mutex);
  for (const MemHeapRec* rec = TheModule().newest.get(); rec != nullptr; rec = rec->next.get()) {
    heaps.push_back(rec->heap);
  }
  return heaps;
}

void StartMem() {
  if (IsRecorded(GlobalStack())) return;
  CreateHeap(GlobalStack(), "Global Stack", HeapKind::kMstak, 1, 0.0F, 100000, kNoLimit);
  const ConfigList config = GetConfig("HMEM", true, kMaxConfig);
  int trace = 0;
  bool protect = false;
  GetConfigInt(config, "TRACE", &trace);
  GetConfigBool(config, "PROTECTSTAKS", &protect);
  TheModule().trace = trace;
  TheModule().protect_stacks = protect;
}

void EndMem() {
  if (IsRecorded(GlobalStack())) DeleteHeap(GlobalStack());
}

MemHeap& GlobalStack() { return TheModule().global_stack; }

void SetAllocationGate(AllocationGate gate) { TheModule().gate = gate; }

}  // namespace veral3
