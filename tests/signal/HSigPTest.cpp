#include "signal/HSigP.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <vector>

#include "signal/CSignalProcessing.h"
#include "signal/FatalErrors.h"

namespace veral3 {
namespace {

class HSigP : public testing::Test {
 protected:
  void SetUp() override {
    FrontEnd();
    CreateHeap(m_heap, "test", HeapKind::kMstak, 1, 0.0F, 100000, 1U << 30);
  }
  Vector From(const std::vector<float>& values) {
    const Vector v = CreateVector(m_heap, static_cast<int>(values.size()));
    std::copy(values.begin(), values.end(), v.Elements().begin());
    return v;
  }
  static std::vector<float> Values(Vector v) { return {v.Elements().begin(), v.Elements().end()}; }
  MemHeap m_heap;
};

std::vector<float> Noise(std::size_t n) {
  std::minstd_rand engine(static_cast<unsigned>(n) + 1);
  std::vector<float> x(n);
  for (float& v : x) v = static_cast<float>(engine() % 65536) - 32768.0F;
  return x;
}

TEST_F(HSigP, SumsOfAnyLength) {
  for (std::size_t n = 0; n < 40; ++n) {
    const auto x = Noise(n);
    double sum = 0.0, squares = 0.0;
    for (const float v : x) {
      sum += static_cast<double>(v);
      squares += static_cast<double>(v) * static_cast<double>(v);
    }
    EXPECT_EQ(Sum(x), sum);  // whole numbers: exact in any order
    EXPECT_EQ(SumOfSquares(x), squares);
  }
}

TEST_F(HSigP, FrameMean) {
  const Vector s = From({1.0F, 2.0F, 6.0F});
  RemoveFrameMean(s);
  EXPECT_EQ(Values(s), (std::vector<float>{-2.0F, -1.0F, 3.0F}));
  for (const float level : {-32768.0F, 12345.0F, 32767.0F}) {
    const Vector constant = From(std::vector<float>(551, level));
    RemoveFrameMean(constant);
    EXPECT_EQ(Values(constant), std::vector<float>(551, 0.0F));
  }
  RemoveFrameMean(Vector());
  const Vector lone = From({5.0F});
  RemoveFrameMean(lone);
  EXPECT_EQ(Values(lone), std::vector<float>{0.0F});
}

TEST_F(HSigP, PreEmphasisRunsFromTheEnd) {
  const Vector s = From({4.0F, 8.0F, 16.0F});
  PreEmphasiseFrame(s, 0.5F);
  EXPECT_EQ(Values(s), (std::vector<float>{2.0F, 6.0F, 12.0F}));
  const auto x = Noise(551);
  const Vector v = From(x);
  PreEmphasiseFrame(v, 0.95F);
  for (int i = 550; i >= 1; --i) {
    const auto at = static_cast<std::size_t>(i);
    EXPECT_EQ(v[i + 1], x[at] - 0.95F * x[at - 1]);
  }
  EXPECT_EQ(v[1], x[0] * (1.0F - 0.95F));
  PreEmphasiseFrame(Vector(), 0.95F);
}

TEST_F(HSigP, Hamming) {
  const ConstVector window = HammingWindow(551);
  ASSERT_EQ(window.Size(), 551);
  EXPECT_EQ(window[276], 1.0F);  // the middle
  for (int i = 1; i <= 551; ++i) {
    const double expected = 0.54 - 0.46 * std::cos(2.0 * std::numbers::pi * (i - 1) / 550.0);
    EXPECT_EQ(window[i], static_cast<float>(expected));
    EXPECT_EQ(window[i], window[552 - i]);
  }
  EXPECT_EQ(&HammingWindow(551)[1], &window[1]);  // made once
  EXPECT_EQ(HammingWindow(4)[1], HammingWindow(4)[4]);
  EXPECT_NEAR(HammingWindow(1)[1], 0.08F, 1e-7F);
  const Vector s = From(std::vector<float>(551, 2.0F));
  HammingWindowFrame(s, window);
  for (int i = 1; i <= 551; ++i) EXPECT_EQ(s[i], 2.0F * window[i]);
  HammingWindowFrame(Vector(), window);
}

TEST_F(HSigP, TableLargerThanItsHeapsBlock) {
  EXPECT_EQ(HammingWindow(1249).Size(), 1249);  // 5000 bytes with its length
  test::ExpectFatal(5105, "New: memory exhausted", [] { HammingWindow(1250); });
}

TEST_F(HSigP, Lifter) {
  const ConstVector weights = LifterWeights(22, 12);
  for (int i = 1; i <= 12; ++i) {
    EXPECT_EQ(weights[i], static_cast<float>(1.0 + 11.0 * std::sin(std::numbers::pi * i / 22.0)));
  }
  const Vector c = From(std::vector<float>(12, 3.0F));
  LifterCepstra(c, weights);
  EXPECT_EQ(c[11], 36.0F);  // the lifter's top, 12
  EXPECT_EQ(c[1], 3.0F * weights[1]);
}

TEST_F(HSigP, CosineTransform) {
  const Vector fbank = From({1.0F, -2.0F, 3.5F, 0.25F, 10.0F});
  const Vector c = From({9.0F, 9.0F, 9.0F});
  FilterbankToCepstra(fbank, c, CosineTable(5, 3));
  for (int j = 1; j <= 3; ++j) {
    double sum = 0.0;
    for (int k = 1; k <= 5; ++k) {
      sum += static_cast<double>(fbank[k]) * std::cos(std::numbers::pi * j / 5.0 * (k - 0.5));
    }
    EXPECT_NEAR(static_cast<double>(c[j]), std::sqrt(2.0 / 5.0) * sum, 1e-5);
  }
  EXPECT_NEAR(static_cast<double>(FilterbankToC0(fbank)), std::sqrt(2.0 / 5.0) * 12.75, 1e-5);
  EXPECT_EQ(FilterbankToC0(Vector()), 0.0F);
  const auto before = Values(c);
  FilterbankToCepstra(fbank, c, CosineTable(4, 3));  // a table of other sizes
  EXPECT_EQ(Values(c), before);
}

// Four floats with their length, and the next piece of the heap begins right behind them.
TEST_F(HSigP, CosineTransformStaysWithinItsCepstra) {
  const Vector fbank = From({1.0F, -2.0F, 3.5F, 0.25F, 10.0F});
  const Vector c = From({9.0F, 9.0F, 9.0F});
  const Vector next = From({4.0F, 5.0F, 6.0F});
  ASSERT_EQ(&next[1], &c[1] + 4);
  FilterbankToCepstra(fbank, c, CosineTable(5, 3));
  EXPECT_EQ(next.Size(), 3);
  EXPECT_EQ(Values(next), (std::vector<float>{4.0F, 5.0F, 6.0F}));
}

// A module that starts anew has none of the tables of the one before. In a child process, since
// others hold those tables.
TEST_F(HSigP, TablesEndWithTheModule) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        const auto live = [] {
          for (const MemHeap* heap : RecordedHeaps()) {
            if (heap->name == "sigpHeap") return heap->live_elements;
          }
          return std::size_t{99};
        };
        HammingWindow(7);
        EndSigP();
        StartSigP();
        const std::size_t before = live();
        HammingWindow(7);
        const std::size_t made = live();
        HammingWindow(7);
        std::_Exit(before == 0 && made == 1 && live() == 1 ? 3 : 4);
      },
      testing::ExitedWithCode(3), "");
}

// Another C library's cosine may differ in the last bit of a double. That never shows when no value
// lies next to where the rounding to single precision turns.
TEST_F(HSigP, TablesDoNotHangOnTheLastBitOfTheLibrarysCosine) {
  const auto is_firm = [](double x) {
    const double slack = 4e-16 * std::max(1.0, std::abs(x));
    return static_cast<float>(x - slack) == static_cast<float>(x + slack);
  };
  // Values that a single-precision number hits exactly are firm too: slack is far below its ulp.
  for (int i = 0; i < 551; ++i) {
    EXPECT_TRUE(is_firm(0.54 - 0.46 * std::cos(2.0 * std::numbers::pi * i / 550))) << i;
  }
  for (int i = 1; i <= 12; ++i) {
    EXPECT_TRUE(is_firm(1.0 + 11.0 * std::sin(std::numbers::pi * i / 22))) << i;
    for (int k = 1; k <= 26; ++k) {
      const double x = std::cos(std::numbers::pi * i / 26 * (k - 0.5));
      const bool right_angle = std::abs(x) < 1e-14;
      EXPECT_TRUE(is_firm(x) || right_angle) << i << " " << k;
      const float entry = CosineTable(26, 12)[(k - 1) * 12 + i];
      EXPECT_EQ(entry, right_angle ? 0.0F : static_cast<float>(x));
    }
  }
  for (int k = 0; k <= 256; ++k) {
    const double angle = 2.0 * std::numbers::pi * k / 1024;
    EXPECT_TRUE(is_firm(std::cos(angle)) || k == 256) << k;
    EXPECT_TRUE(is_firm(std::sin(angle)) || k == 0) << k;
  }
}

TEST_F(HSigP, RegressionOverTwoFrames) {
  // Rows of three: two source columns apart from the target's one.
  std::vector<float> rows;
  const std::vector<float> x = {1.0F, 4.0F, 9.0F, 16.0F, 25.0F, 36.0F};
  for (const float v : x) rows.insert(rows.end(), {v, -7.0F});
  AddRegressionColumns(rows.data(), 6, 2, 0, 1, 1, {});
  const auto at = [&x](int t) { return x[static_cast<std::size_t>(std::clamp(t, 0, 5))]; };
  for (int t = 0; t < 6; ++t) {
    const float expected = ((at(t + 1) - at(t - 1)) + 2.0F * (at(t + 2) - at(t - 2))) / 10.0F;
    EXPECT_EQ(rows[static_cast<std::size_t>(2 * t + 1)], expected) << t;
    EXPECT_EQ(rows[static_cast<std::size_t>(2 * t)], at(t));
  }
}

TEST_F(HSigP, RegressionOfOneRowIsZero) {
  std::vector<float> row = {5.0F, 6.0F, 1.0F, 1.0F};
  AddRegressionColumns(row.data(), 1, 4, 0, 2, 2, {});
  EXPECT_EQ(row, (std::vector<float>{5.0F, 6.0F, 0.0F, 0.0F}));
  AddRegressionColumns(row.data(), 0, 4, 0, 2, 2, {});
}

TEST_F(HSigP, SimpleDifferences) {
  std::vector<float> rows = {1.0F, 0.0F, 4.0F, 0.0F, 9.0F, 0.0F, 16.0F, 0.0F};
  AddRegressionColumns(rows.data(), 4, 2, 0, 1, 1, {.half_window = 2, .simple_diffs = true});
  EXPECT_EQ(rows[1], (9.0F - 1.0F) / 4.0F);
  EXPECT_EQ(rows[3], (16.0F - 1.0F) / 4.0F);
  EXPECT_EQ(rows[7], (16.0F - 4.0F) / 4.0F);
}

TEST_F(HSigP, CompatibilityModeDiffersInTheEdgeRows) {
  std::vector<float> rows, plain;
  for (int t = 0; t < 6; ++t) rows.insert(rows.end(), {static_cast<float>(t * t), 0.0F});
  plain = rows;
  AddRegressionColumns(plain.data(), 6, 2, 0, 1, 1, {});
  AddRegressionColumns(rows.data(), 6, 2, 0, 1, 1, {.half_window = 2, .v1_compat = true});
  const auto delta = [](const std::vector<float>& r, std::size_t t) { return r[2 * t + 1]; };
  EXPECT_EQ(delta(rows, 0), 1.0F);
  EXPECT_EQ(delta(rows, 1), 3.0F);
  EXPECT_EQ(delta(rows, 2), delta(plain, 2));
  EXPECT_EQ(delta(rows, 3), delta(plain, 3));
  EXPECT_EQ(delta(rows, 4), 7.0F);
  EXPECT_EQ(delta(rows, 5), 9.0F);
}

TEST_F(HSigP, ColumnMeans) {
  std::vector<float> rows = {1.0F, 2.0F, 100.0F, 3.0F, 6.0F, 200.0F};
  SubtractColumnMeans(rows.data(), 2, 3, 2);
  EXPECT_EQ(rows, (std::vector<float>{-1.0F, -2.0F, 100.0F, 1.0F, 2.0F, 200.0F}));
  SubtractColumns(rows.data(), 2, 3, From({1.0F}));
  EXPECT_EQ(rows, (std::vector<float>{-2.0F, -2.0F, 100.0F, 0.0F, 2.0F, 200.0F}));
  SubtractColumnMeans(rows.data(), 0, 3, 2);
  SubtractColumnMeans(nullptr, 0, 3, 2);
  const std::vector<float> before = rows;
  SubtractColumnMeans(rows.data(), 2, 3, 0);
  SubtractColumnMeans(rows.data(), 2, 3, -1);
  EXPECT_EQ(rows, before);
}

TEST_F(HSigP, EnergyOfAnUtterance) {
  std::vector<float> e = {20.0F, -1.0F, 10.0F, -1.0F, -1.0e10F, -1.0F};
  veral3::NormaliseUtteranceEnergy(e.data(), 3, 2, 50.0F, 0.1F);
  EXPECT_EQ(e[0], 1.0F);
  EXPECT_NEAR(e[2], 0.0F, 1e-6F);
  EXPECT_NEAR(e[4], -0.1512925F, 1e-6F);
  EXPECT_EQ(e[1], -1.0F);  // other columns stay
  float silent = -1.0e10F;
  veral3::NormaliseUtteranceEnergy(&silent, 1, 39, 50.0F, 0.1F);
  EXPECT_EQ(silent, 1.0F);
  veral3::NormaliseUtteranceEnergy(nullptr, 0, 39, 50.0F, 0.1F);
}

}  // namespace
}  // namespace veral3
