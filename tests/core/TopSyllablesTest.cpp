#include "core/TopSyllables.h"

#include <gtest/gtest.h>

#include <vector>

namespace veral3 {
namespace {

using Ints = std::vector<int>;

TopSyllables Earlier(const Ints& values) {
  return FindTopSyllables(std::span<const int>(values), TieGoesTo::kEarlier);
}
TopSyllables Later(const Ints& values) {
  return FindTopSyllables(std::span<const int>(values), TieGoesTo::kLater);
}

TEST(TopSyllables, HighestSecondAndThird) {
  EXPECT_EQ(Earlier({10, 40, 20, 50, 30}), (TopSyllables{3, 1, 4}));
  EXPECT_EQ(Later({10, 40, 20, 50, 30}), (TopSyllables{3, 1, 4}));
  EXPECT_EQ(Earlier({50, 40, 30}), (TopSyllables{0, 1, 2}));
  EXPECT_EQ(Earlier({30, 40, 50}), (TopSyllables{2, 1, 0}));
}

TEST(TopSyllables, FewerThanThree) {
  EXPECT_EQ(Earlier({}), (TopSyllables{-1, -1, -1}));
  EXPECT_EQ(Earlier({7}), (TopSyllables{0, -1, -1}));
  EXPECT_EQ(Earlier({7, 9}), (TopSyllables{1, 0, -1}));
  EXPECT_EQ(TopSyllables(), (TopSyllables{-1, -1, -1}));
}

TEST(TopSyllables, OfEqualOnesTheEarlierOrTheLater) {
  EXPECT_EQ(Earlier({5, 5, 5, 5}), (TopSyllables{0, 1, 2}));
  EXPECT_EQ(Later({5, 5, 5, 5}), (TopSyllables{3, 2, 1}));
}

TEST(TopSyllables, AValueMustBeatMinusOne) {
  EXPECT_EQ(Earlier({-1, 0, -2}), (TopSyllables{1, -1, -1}));
  EXPECT_EQ(Later({-1, 0, -2}), (TopSyllables{1, 0, -1}));
}

TEST(TopSyllables, Has) {
  const TopSyllables top{4, 2, 0};
  for (const int syllable : {0, 2, 4}) EXPECT_TRUE(top.Has(syllable));
  for (const int syllable : {-1, 1, 3, 5}) EXPECT_FALSE(top.Has(syllable));
}

// All five, then the four and the three that are not picked yet, and no other.
TEST(TopSyllables, AsksForEachThatIsLeftOnceARank) {
  Ints asked(5, 0);
  const TopSyllables top = FindTopSyllables(5, TieGoesTo::kEarlier, [&](int syllable) {
    EXPECT_TRUE(syllable >= 0 && syllable < 5) << syllable;
    ++asked.at(static_cast<std::size_t>(syllable));
    return 10 * syllable;
  });
  EXPECT_EQ(top, (TopSyllables{4, 3, 2}));
  EXPECT_EQ(asked, (Ints{3, 3, 3, 2, 1}));
}

}  // namespace
}  // namespace veral3
