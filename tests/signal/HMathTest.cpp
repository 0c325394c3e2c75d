#include "signal/HMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <thread>

#include "signal/CSignalProcessing.h"
#include "signal/FatalErrors.h"
#include "signal/HShell.h"

namespace veral3 {
namespace {

TEST(HMath, VectorsKeepTheirLengthInElementZero) {
  MemHeap heap;
  CreateHeap(heap, "h", HeapKind::kMstak, 1, 0.0F, 100, 10000);
  const Vector v = CreateVector(heap, 551);
  EXPECT_EQ(v.Size(), 551);
  EXPECT_EQ((&v[1])[-1], 551.0F);
  for (const float x : v.Elements()) EXPECT_EQ(x, 0.0F);
  v[551] = 2.0F;
  EXPECT_EQ(v.Elements()[550], 2.0F);
  EXPECT_EQ(v.AsConst()[551], 2.0F);
  const ShortVec r = CreateShortVec(heap, 551);
  EXPECT_EQ((&r[1])[-1], 551);
  EXPECT_EQ(CreateVector(heap, 0).Size(), 0);
  EXPECT_EQ(CreateShortVec(heap, 0).Elements().size(), 0u);
}

TEST(HMath, NullVectorHasSizeZero) {
  EXPECT_EQ(Vector().Size(), 0);
  EXPECT_EQ(ShortVec().Size(), 0);
  EXPECT_FALSE(Vector());
  EXPECT_TRUE(Vector().Elements().empty());
}

TEST(HMath, SizesThatElementZeroCannotHold) {
  MemHeap heap;
  CreateHeap(heap, "h", HeapKind::kMstak, 1, 0.0F, 100, 1U << 30);
  for (const int size : {-1, kMaxVector + 1, std::numeric_limits<int>::max()}) {
    test::ExpectFatal(5105, "New: memory exhausted", [&] { CreateVector(heap, size); });
  }
  test::ExpectFatal(5105, "New: memory exhausted", [&] { CreateShortVec(heap, 32768); });
  EXPECT_EQ(CreateShortVec(heap, kMaxShortVec).Size(), kMaxShortVec);
}

TEST(HMath, LogarithmAgreesWithTheLibrarys) {
  EXPECT_EQ(LogOfPositive(1.0), 0.0);
  for (double x = 1e-300; x < 1e300; x *= 1.37) {
    EXPECT_NEAR(LogOfPositive(x), std::log(x), 1e-15 * std::abs(std::log(x))) << x;
  }
  for (double x = 0.9; x < 1.1; x += 0.000173) {
    EXPECT_NEAR(LogOfPositive(x), std::log(x), 1e-15 * std::abs(std::log(x))) << x;
  }
  for (const double x : {2.45e-308, std::numeric_limits<double>::max(), std::sqrt(0.5), 0.5, 2.0}) {
    EXPECT_NEAR(LogOfPositive(x), std::log(x), 1e-15 * std::abs(std::log(x))) << x;
  }
}

TEST(HMath, MelScale) {
  EXPECT_EQ(MelOfRatio(0.0), 0.0);
  EXPECT_NEAR(MelOfRatio(1.0), 1127.0 * std::log(2.0), 1e-10);  // 700 Hz
}

TEST(HMath, SmallestLogArgument) { EXPECT_EQ(kSmallestLogArgument, -std::log(1e10)); }

TEST(HMath, RandomNumbersCoverZeroToOne) {
  RandomSource random(7);
  float least = 1.0F, most = 0.0F;
  double sum = 0.0;
  constexpr int kCount = 100000;
  for (int i = 0; i < kCount; ++i) {
    const float u = random.Next();
    least = std::min(least, u);
    most = std::max(most, u);
    sum += static_cast<double>(u);
  }
  EXPECT_GE(least, 0.0F);
  EXPECT_LT(least, 0.001F);
  EXPECT_LE(most, 1.0F);
  EXPECT_GT(most, 0.999F);
  EXPECT_NEAR(sum / kCount, 0.5, 0.01);
  RandomSource again(7), other(8);
  RandomSource fresh(7);
  bool differs = false;
  for (int i = 0; i < 10; ++i) {
    const float u = fresh.Next();
    EXPECT_EQ(again.Next(), u);
    differs = differs || other.Next() != u;
  }
  EXPECT_TRUE(differs);
}

// The time in seconds modulo 257 seeds the threads that come afterwards.
TEST(HMath, TheTimeSeedsTheRandomNumbers) {
  const std::time_t before = std::time(nullptr);
  StartMath();
  const std::time_t after = std::time(nullptr);
  float first = -1.0F;
  std::thread([&first] { first = ThreadRandomSource().Next(); }).join();
  bool found = false;
  for (std::time_t second = before; second <= after; ++second) {
    found = found || RandomSource(static_cast<unsigned>(second % 257)).Next() == first;
  }
  EXPECT_TRUE(found);
}

TEST(HMath, TheStartReadsItsTraceSetting) {
  AddConfig({"HMATH", "TRACE", 1});
  StartMath();
  EXPECT_TRUE(GetConfig("HMATH", false, 1).at(0)->seen);
  ClearConfig();
}

// Twenty settings a module, those for every module included.
TEST(HMath, TooManySettingsEndTheStart) {
  for (int i = 0; i < 19; ++i) AddConfig({"HMATH", "A", i});
  AddConfig({{}, "B", 1});
  StartMath();
  AddConfig({{}, "C", 1});
  test::ExpectFatal(5071, "GetConfig: more than 20 for user HMATHwith globals",
                    [] { StartMath(); });
  ClearConfig();
}

TEST(HMath, HostProgramsRandomNumbersAreLeftAlone) {
  std::srand(5);
  const int first = std::rand();
  const int second = std::rand();
  std::srand(5);
  EXPECT_EQ(std::rand(), first);
  StartMath();
  ThreadRandomSource().Next();
  EXPECT_EQ(std::rand(), second);
}

}  // namespace
}  // namespace veral3
