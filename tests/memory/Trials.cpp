#include "Trials.h"

#include <gtest/gtest.h>

#include <utility>

#include "common/MessageWriter.h"
#include "support/MessageCapture.h"

namespace veral3::test {
namespace {

constexpr int kAllocationError = 5105;  // the front end's heaps

int g_ended_with = 0;

// Of the test that runs, so far.
int Failures() {
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

// A fatal exit of the front end's heaps ends the operation as it would end the process.
class FatalExit {
 public:
  FatalExit() {
    g_ended_with = 0;
    SetEndProcessHandler([](int status) {
      g_ended_with = status;
      throw EndedProcess{status};
    });
  }
  ~FatalExit() { SetEndProcessHandler({}); }
  FatalExit(const FatalExit&) = delete;
  FatalExit& operator=(const FatalExit&) = delete;
};

}  // namespace

void Measure(Operation& operation) {
  const MessageLog log;
  for (int run = 0; run < 2; ++run) {
    MessageLog::Clear();
    const Trial trial = operation.prepare();
    FailAllocation(0, Fault::kOne);
    const int result = trial.act();
    operation.allocations = StopFailing();
    EXPECT_GE(result, 0) << operation.name << ": " << MessageLog::Text();
    operation.expected = trial.read();
  }
}

bool ExpectSound(const Operation& operation, long n, Fault fault) {
  const int failures_before = Failures();
  const FatalExit fatal_exit;
  const MessageLog log;
  const std::string where = operation.name + ", allocation " + std::to_string(n) + " of " +
                            std::to_string(operation.allocations) +
                            (fault == Fault::kRest ? " and all after it" : "");
  const long live = LiveAllocations();
  {
    const Trial trial = operation.prepare();
    MessageLog::Clear();
    FailAllocation(n, fault);
    const int result = trial.act();
    StopFailing();
    EXPECT_TRUE(g_ended_with == 0 || g_ended_with == kAllocationError) << where;
    if (result < 0) {
      EXPECT_TRUE(MessageLog::TellsOfMemory()) << where << ": " << MessageLog::Text();
      if (!trial.after_refusal.empty()) {
        EXPECT_TRUE(trial.read() == trial.after_refusal) << where << ": changed by a refusal";
      }
    } else {
      EXPECT_TRUE(trial.read() == operation.expected) << where << ": another answer";
    }
    MessageLog::Clear();
    EXPECT_GE(trial.act(), 0) << where << ", again: " << MessageLog::Text();
    EXPECT_TRUE(trial.read() == operation.expected) << where << ", again: another answer";
  }
  if (Failures() > failures_before) return false;  // whose text is memory, too
  EXPECT_EQ(LiveAllocations(), live) << where << ": leaks";
  return Failures() == failures_before;
}

void ExpectSoundThroughout(std::vector<Operation> operations) {
  for (Operation& operation : operations) {
    Measure(operation);
    bool sound = true;  // one finding an operation
    for (long n = 1; n <= operation.allocations && sound; ++n) {
      for (const Fault fault : {Fault::kOne, Fault::kRest}) {
        sound = ExpectSound(operation, n, fault) && sound;
      }
    }
  }
}

void ExpectSoundAtPlaces(std::vector<Operation> operations, long count) {
  long total = 0;
  for (Operation& operation : operations) {
    Measure(operation);
    total += operation.allocations;
  }
  ASSERT_GE(total, count);
  for (long i = 0; i < count; ++i) {
    long place = i * total / count;  // counted from 0 over all operations
    auto operation = operations.begin();
    for (; place >= operation->allocations; ++operation) place -= operation->allocations;
    ExpectSound(*operation, place + 1, i % 2 == 0 ? Fault::kOne : Fault::kRest);
  }
}

}  // namespace veral3::test
