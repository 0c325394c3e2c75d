#include "signal/HMem.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "signal/CSignalProcessing.h"
#include "signal/FatalErrors.h"
#include "signal/HShell.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::ExpectFatal;

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// Which allocation fails, counted down; set by the tests below.
int g_until_failure = 0;
bool FailLater(std::size_t) { return --g_until_failure >= 0; }

class HMem : public testing::Test {
 protected:
  void TearDown() override { SetAllocationGate(nullptr); }
  // Lets `count` allocations succeed.
  static void FailAfter(int count) {
    g_until_failure = count;
    SetAllocationGate(FailLater);
  }
};

TEST_F(HMem, StackHandsOutAlignedPiecesThatDoNotOverlap) {
  MemHeap heap;
  CreateHeap(heap, "stack", HeapKind::kMstak, 1, 0.0F, 100, 1000);
  std::vector<std::byte*> pieces;
  for (const std::size_t size : {1U, 7U, 40U, 100U, 1000U, 3U, 0U}) {
    pieces.push_back(static_cast<std::byte*>(New(heap, size)));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pieces.back()) % alignof(std::max_align_t), 0u);
    std::memset(pieces.back(), 0xAB, size);
  }
  EXPECT_EQ(heap.live_elements, 7u);
  EXPECT_EQ(std::set(pieces.begin(), pieces.end()).size(), 7u);
  for (const MemBlock& block : heap.blocks) {
    EXPECT_GE(block.num_elements, 100u);
    EXPECT_LE(block.num_elements, 1000u);
    EXPECT_LE(block.first_free, block.num_elements);
  }
}

TEST_F(HMem, StackTakesANewBlockOnlyWhenTheTopOneIsFull) {
  MemHeap heap;
  CreateHeap(heap, "stack", HeapKind::kMstak, 1, 0.0F, 100, 1000);
  New(heap, 90);
  EXPECT_EQ(heap.blocks.size(), 1u);
  EXPECT_EQ(heap.total_bytes, 100u);
  New(heap, 300);
  EXPECT_EQ(heap.blocks.size(), 2u);
  EXPECT_EQ(heap.total_bytes, 400u);
}

TEST_F(HMem, NothingFitsIntoAFullBlock) {
  MemHeap heap;
  CreateHeap(heap, "stack", HeapKind::kMstak, 1, 0.0F, 96, 1000);
  auto* const first = static_cast<std::byte*>(New(heap, 96));
  EXPECT_EQ(New(heap, 0), first + 96);
  EXPECT_EQ(heap.blocks.size(), 1u);
  New(heap, 1);
  EXPECT_EQ(heap.blocks.size(), 2u);
}

// The toolkit's own: all of them stacks of bytes that do not grow.
TEST_F(HMem, HeapsOfTheToolkit) {
  FrontEnd();
  const auto check = [](const char* name, std::size_t least, std::size_t most) {
    for (const MemHeap* heap : RecordedHeaps()) {
      if (heap->name != name) continue;
      EXPECT_EQ(heap->kind, HeapKind::kMstak) << name;
      EXPECT_EQ(heap->element_size, 1u) << name;
      EXPECT_EQ(heap->growth, 0.0F) << name;
      EXPECT_EQ(heap->min_block, least) << name;
      EXPECT_EQ(heap->max_block, most) << name;
      return;
    }
    ADD_FAILURE() << name;
  };
  check("Global Stack", 100000, kAll);
  check("sigpHeap", 5000, 5000);
  check("InBuf", 100000, 0x7FFFFFFF);
}

TEST_F(HMem, BlocksGrowUpToTheMaximum) {
  MemHeap heap;
  CreateHeap(heap, "elements", HeapKind::kMheap, 8, 1.0F, 2, 5);
  std::set<void*> pieces;
  for (int i = 0; i < 2 + 4 + 5 + 5; ++i) pieces.insert(New(heap, 8));
  EXPECT_EQ(pieces.size(), 16u);
  ASSERT_EQ(heap.blocks.size(), 4u);
  EXPECT_EQ(heap.blocks[1].num_elements, 4u);
  EXPECT_EQ(heap.blocks[3].num_elements, 5u);
  EXPECT_EQ(heap.blocks[1].used[0], 0x0F);
  EXPECT_EQ(heap.blocks[1].num_used, 4u);
}

TEST_F(HMem, CHeapAllocatesEachPieceOnItsOwn) {
  MemHeap heap;
  CreateHeap(heap, "direct", HeapKind::kCheap, 1, 0.0F, 0, 0);
  std::memset(New(heap, 10), 1, 10);
  std::memset(New(heap, 100000), 1, 100000);
  EXPECT_EQ(heap.live_elements, 2u);
  EXPECT_EQ(heap.total_bytes, 100010u);
}

TEST_F(HMem, ResetEmptiesAHeapThatCanBeUsedAgain) {
  MemHeap heap;
  CreateHeap(heap, "stack", HeapKind::kMstak, 1, 0.5F, 100, 1000);
  for (int i = 0; i < 10; ++i) New(heap, 90);
  ResetHeap(heap);
  EXPECT_TRUE(heap.blocks.empty());
  EXPECT_EQ(heap.live_elements, 0u);
  EXPECT_EQ(heap.total_bytes, 0u);
  New(heap, 1);
  EXPECT_EQ(heap.blocks[0].num_elements, 100u);
}

TEST_F(HMem, RegistryHoldsTheNewestHeapFirst) {
  FrontEnd();
  const auto before = RecordedHeaps();
  {
    MemHeap first, second;
    CreateHeap(first, "first", HeapKind::kMheap, 4, 0.0F, 1, 1);
    CreateHeap(second, "second", HeapKind::kMstak, 1, 0.0F, 1, 1);
    CreateHeap(first, "first again", HeapKind::kMheap, 4, 0.0F, 1, 1);
    const auto heaps = RecordedHeaps();
    ASSERT_EQ(heaps.size(), before.size() + 2);
    EXPECT_EQ(heaps[0]->name, "second");
    EXPECT_EQ(heaps[1]->name, "first again");
    DeleteHeap(first);
    EXPECT_EQ(RecordedHeaps().size(), before.size() + 1);
  }
  EXPECT_EQ(RecordedHeaps(), before);  // a heap that ends is forgotten
  EXPECT_EQ(before.back()->name, "Global Stack");
  EXPECT_EQ(before[before.size() - 2]->name, "sigpHeap");
}

TEST_F(HMem, GlobalStackHasNoMaximum) {
  FrontEnd();
  EXPECT_EQ(GlobalStack().min_block, 100000u);
  EXPECT_EQ(GlobalStack().max_block, kAll);
  EXPECT_EQ(GlobalStack().kind, HeapKind::kMstak);
  EXPECT_FALSE(GlobalStack().protect_stack);
}

TEST_F(HMem, ManyThreadsUseHeapsOfTheirOwn) {
  const auto work = [] {
    for (int i = 0; i < 200; ++i) {
      MemHeap heap;
      CreateHeap(heap, "mine", HeapKind::kMstak, 1, 0.0F, 64, 64);
      std::memset(New(heap, 64), i, 64);
      if (i % 2 == 0) DeleteHeap(heap);
    }
  };
  const auto before = RecordedHeaps().size();
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(RecordedHeaps().size(), before);
}

TEST_F(HMem, BadParameters) {
  MemHeap heap;
  ExpectFatal(5170, "CreateHeap: -ve grow factor in heap h",
              [&] { CreateHeap(heap, "h", HeapKind::kMheap, 4, -0.1F, 1, 2); });
  ExpectFatal(5170, "CreateHeap: init num elem > max elem in heap h",
              [&] { CreateHeap(heap, "h", HeapKind::kMheap, 4, 0.0F, 3, 2); });
  ExpectFatal(5170, "CreateHeap: elem size = 0 in heap h",
              [&] { CreateHeap(heap, "h", HeapKind::kCheap, 0, 0.0F, 1, 2); });
  ExpectFatal(5170, "CreateHeap: elem size = 4 in MSTAK heap h",
              [&] { CreateHeap(heap, "h", HeapKind::kMstak, 4, 0.0F, 1, 2); });
  EXPECT_EQ(heap.element_size, 0u);
}

TEST_F(HMem, HeapThatIsNotInitialised) {
  MemHeap heap;
  ExpectFatal(5174, "New: heap Unnamed not initialised", [&] { New(heap, 1); });
  heap.name = "h";
  ExpectFatal(5174, "New: heap h not initialised", [&] { New(heap, 1); });
}

TEST_F(HMem, WrongElementSize) {
  MemHeap heap;
  CreateHeap(heap, "h", HeapKind::kMheap, 8, 0.0F, 1, 2);
  ExpectFatal(5173, "New: MHEAP req for 4 size elem from heap h size 8", [&] { New(heap, 4); });
}

TEST_F(HMem, Exhaustion) {
  MemHeap stack;
  CreateHeap(stack, "h", HeapKind::kMstak, 1, 0.0F, 10, 20);
  EXPECT_NE(New(stack, 20), nullptr);
  ExpectFatal(5105, "New: memory exhausted", [&] { New(stack, 21); });
  ExpectFatal(5105, "New: memory exhausted", [&] { New(stack, kAll); });
  MemHeap direct;
  CreateHeap(direct, "d", HeapKind::kCheap, 1, 0.0F, 0, 0);
  FailAfter(0);
  ExpectFatal(5105, "New: memory exhausted", [&] { New(direct, 1); });
}

TEST_F(HMem, AllocationFailures) {
  MemHeap heap;
  FailAfter(0);
  ExpectFatal(5105, "RecordHeap: Cannot allocate memory for MemHeapRec",
              [&] { CreateHeap(heap, "h", HeapKind::kMheap, 8, 0.0F, 4, 4); });
  SetAllocationGate(nullptr);
  CreateHeap(heap, "h", HeapKind::kMheap, 8, 0.0F, 4, 4);
  FailAfter(0);
  ExpectFatal(5105, "AllocBlock: Cannot allocate Block", [&] { New(heap, 8); });
  FailAfter(1);
  ExpectFatal(5105, "AllocBlock: Cannot allocate block data of 32 bytes", [&] { New(heap, 8); });
  FailAfter(2);
  ExpectFatal(5105, "AllocBlock: Cannot allocate block used array", [&] { New(heap, 8); });
  EXPECT_TRUE(heap.blocks.empty());
  FailAfter(3);
  EXPECT_NE(New(heap, 8), nullptr);
}

std::vector<std::size_t> g_asked_for;
bool TakeDown(std::size_t bytes) {
  g_asked_for.push_back(bytes);
  return true;
}

// A bit for each element, in whole bytes.
TEST_F(HMem, BytesOfABlock) {
  for (const auto& [elements, used] :
       {std::pair<std::size_t, std::size_t>{1, 1}, {8, 1}, {9, 2}, {16, 2}, {17, 3}, {800, 100}}) {
    MemHeap heap;
    CreateHeap(heap, "h", HeapKind::kMheap, 24, 0.0F, elements, elements);
    g_asked_for.clear();
    SetAllocationGate(TakeDown);
    New(heap, 24);
    SetAllocationGate(nullptr);
    EXPECT_EQ(g_asked_for, (std::vector<std::size_t>{sizeof(MemBlock), 24 * elements, used}));
  }
}

// Nor does the library say anything when it is loaded: its heaps are made without a trace.
TEST_F(HMem, LoadingSaysNothing) {
  const std::string self = std::filesystem::read_symlink("/proc/self/exe");
  const std::string command = "'" + self + "' --gtest_list_tests 2>&1";
  std::FILE* const output = popen(command.c_str(), "r");
  ASSERT_NE(output, nullptr);
  std::string text;
  std::array<char, 4096> piece;
  while (const std::size_t n = std::fread(piece.data(), 1, piece.size(), output)) {
    text.append(piece.data(), n);
  }
  EXPECT_EQ(pclose(output), 0);
  EXPECT_NE(text.find("LoadingSaysNothing"), std::string::npos);
  EXPECT_EQ(text.find("HMem: "), std::string::npos) << text.substr(0, 200);
}

TEST_F(HMem, BlockWhoseSizeOverflows) {
  MemHeap heap;
  CreateHeap(heap, "h", HeapKind::kMheap, 8, 0.0F, kAll / 4, kAll);
  ExpectFatal(5105,
              "AllocBlock: Cannot allocate block data of " +
                  std::to_string(static_cast<unsigned>(kAll / 4 * 8)) + " bytes",
              [&] { New(heap, 8); });
}

TEST_F(HMem, BlockWithoutElements) {
  MemHeap heap;
  CreateHeap(heap, "h", HeapKind::kMheap, 8, 0.0F, 0, 0);
  ExpectFatal(5191, "New: null elem but just made block in heap h", [&] { New(heap, 8); });
}

TEST_F(HMem, UnknownKind) {
  MemHeap heap;
  CreateHeap(heap, "h", HeapKind::kMstak, 1, 0.0F, 10, 10);
  heap.kind = static_cast<HeapKind>(9);
  ExpectFatal(5190, "AllocBlock: bad type 9", [&] { New(heap, 1); });
  heap.kind = HeapKind::kMstak;
  New(heap, 1);
  heap.kind = static_cast<HeapKind>(9);
  ExpectFatal(5190, "GetElem: bad type 9", [&] { New(heap, 1); });
}

TEST_F(HMem, CHeapStays) {
  MemHeap heap;
  CreateHeap(heap, "h", HeapKind::kCheap, 1, 0.0F, 0, 0);
  ExpectFatal(5172, "ResetHeap: cannot reset C heap", [&] { ResetHeap(heap); });
  ExpectFatal(5172, "DeleteHeap: cant delete C Heap h", [&] { DeleteHeap(heap); });
}

TEST_F(HMem, DeletingWhatWasNotCreated) {
  MemHeap heap;
  heap.name = "h";
  ExpectFatal(5171, "UnRecordHeap: heap h not found", [&] { DeleteHeap(heap); });
}

// The module reads its settings when it starts, which a process does once: in a child process.
TEST_F(HMem, TraceAndProtection) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto restart = [](int trace) {
    EndMem();
    AddConfig({"HMEM", "TRACE", trace});
    AddConfig({"HMEM", "PROTECTSTAKS", true});
    StartMem();
    MemHeap heap;
    SetMessageHandler([](MessageStream, std::string_view text) {
      std::fwrite(text.data(), 1, text.size(), stderr);
    });
    CreateHeap(heap, "h", HeapKind::kMstak, 1, 0.5F, 10, 20);
    MemHeap elements, direct;
    CreateHeap(elements, "m", HeapKind::kMheap, 12, 0.0F, 10, kAll);
    CreateHeap(direct, "c", HeapKind::kCheap, 1, 0.0F, 0, 0);
    std::_Exit(heap.protect_stack ? 3 : 4);
  };
  EXPECT_EXIT(restart(1), testing::ExitedWithCode(3),
              "HMem: Create Heap h\\[S\\] 1 0.5 10 20\n"
              "HMem: Create Heap m\\[M\\] 12 0.0 10 4294967295\n"
              "HMem: Create Heap c\\[C\\] 1 0.0 0 0\n");
  EXPECT_EXIT(restart(2), testing::ExitedWithCode(3), "^$");
}

}  // namespace
}  // namespace veral3
