#include "training/measure/EditDistance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "training/common/Random.h"

namespace veral3::training {
namespace {

// By its definition, as a check of the other.
std::size_t Distance(std::string_view a, std::string_view b) {
  if (a.empty() || b.empty()) return a.size() + b.size();
  if (a[0] == b[0]) return Distance(a.substr(1), b.substr(1));
  return 1 + std::min({Distance(a.substr(1), b), Distance(a, b.substr(1)),
                       Distance(a.substr(1), b.substr(1))});
}

std::string Draw(Random& random) {
  std::string text;
  for (int i = random.Between(0, 6); i > 0; --i)
    text += static_cast<char>(random.Between('a', 'c'));
  return text;
}

TEST(EditDistance, CountsByKind) {
  EXPECT_EQ(CountEdits("", ""), (Edits{0, 0, 0, 0}));
  EXPECT_EQ(CountEdits("abc", "abc"), (Edits{0, 0, 0, 3}));
  EXPECT_EQ(CountEdits("abc", ""), (Edits{0, 3, 0, 3}));
  EXPECT_EQ(CountEdits("", "ab"), (Edits{0, 0, 2, 0}));
  EXPECT_EQ(CountEdits("abc", "axc"), (Edits{1, 0, 0, 3}));
  EXPECT_EQ(CountEdits("abc", "ac"), (Edits{0, 1, 0, 3}));
  EXPECT_EQ(CountEdits("abc", "abbc"), (Edits{0, 0, 1, 3}));
  EXPECT_EQ(CountEdits("kitten", "sitting"), (Edits{2, 0, 1, 6}));
}

TEST(EditDistance, IsTheShortestWay) {
  Random random(3);
  for (int i = 0; i < 300; ++i) {
    const std::string a = Draw(random);
    const std::string b = Draw(random);
    const Edits edits = CountEdits(a, b);
    EXPECT_EQ(edits.Total(), Distance(a, b)) << a << ' ' << b;
    EXPECT_EQ(edits.length, a.size());
    EXPECT_EQ(a.size() + edits.insertions, b.size() + edits.deletions);
  }
}

TEST(EditDistance, RatesAddUp) {
  Edits all = CountEdits("abcd", "abxd");
  all += CountEdits("ab", "abab");
  EXPECT_EQ(all, (Edits{1, 0, 2, 6}));
  EXPECT_DOUBLE_EQ(all.Rate(), 0.5);
  EXPECT_EQ(Edits{}.Rate(), 0.0);
}

}  // namespace
}  // namespace veral3::training
