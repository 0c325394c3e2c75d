#include "training/train/Deck.h"

#include <gmock/gmock.h>

#include <map>
#include <stdexcept>

namespace veral3::training {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

std::map<std::uint32_t, int> CountsOf(Deck& deck, int epochs, std::uint64_t seed) {
  Random random(seed);
  std::map<std::uint32_t, int> counts;
  for (int epoch = 0; epoch < epochs; ++epoch) {
    for (const std::uint32_t example : deck.Deal(random)) ++counts[example];
  }
  return counts;
}

TEST(Deck, OneGroupOfItsOwnSizeIsEveryExampleOnce) {
  Deck deck({{2, 6, 1.0}}, 4);
  Random random(3);
  for (int epoch = 0; epoch < 3; ++epoch) {
    EXPECT_THAT(deck.Deal(random), UnorderedElementsAre(2u, 3u, 4u, 5u));
  }
}

TEST(Deck, GroupsHaveTheirSharesWhateverTheirSizes) {
  Deck deck({{0, 1000, 3.0}, {1000, 1010, 1.0}}, 400);
  Random random(1);
  const auto hand = deck.Deal(random);
  ASSERT_EQ(hand.size(), 400u);
  EXPECT_EQ(std::ranges::count_if(hand, [](auto example) { return example < 1000; }), 300);
}

TEST(Deck, NoExampleComesTwiceMoreOftenThanAnother) {
  Deck deck({{0, 7, 1.0}}, 10);  // seven do not divide ten
  const auto counts = CountsOf(deck, 5, 1);
  ASSERT_EQ(counts.size(), 7u);
  for (const auto& [example, count] : counts) {
    EXPECT_GE(count, 7) << example;  // 50 draws of 7: 7 or 8 times
    EXPECT_LE(count, 8) << example;
  }
}

TEST(Deck, SharesThatDoNotDivideStillAddUp) {
  Deck deck({{0, 5, 1.0}, {5, 10, 1.0}, {10, 15, 1.0}}, 100);
  Random random(1);
  EXPECT_EQ(deck.Deal(random).size(), 100u);
}

TEST(Deck, GroupsAreMixed) {
  Deck deck({{0, 100, 1.0}, {100, 200, 1.0}}, 200);
  Random random(1);
  const auto hand = deck.Deal(random);
  const auto early =
      std::count_if(hand.begin(), hand.begin() + 100, [](auto example) { return example < 100; });
  EXPECT_GT(early, 30);
  EXPECT_LT(early, 70);
}

TEST(Deck, ASeedGivesAnOrder) {
  Deck one({{0, 50, 1.0}}, 50);
  Deck same({{0, 50, 1.0}}, 50);
  Random random(8);
  Random again(8);
  EXPECT_EQ(one.Deal(random), same.Deal(again));
  EXPECT_NE(one.Deal(random), one.Deal(random));
}

TEST(Deck, GroupsWithoutExamplesOrShareAreRefused) {
  EXPECT_THROW(Deck({{3, 3, 1.0}}, 5), std::runtime_error);
  EXPECT_THROW(Deck({{0, 3, 0.0}}, 5), std::runtime_error);
  EXPECT_THROW(Deck({{0, 3, -1.0}}, 5), std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
