#include "recognition/PathHistory.h"

#include <gtest/gtest.h>

#include <vector>

#include "recognition/AlignerCases.h"

namespace veral3 {
namespace {

TEST(PathHistory, KeepsWhatIsReachedAndDropsTheRest) {
  PathHistory history(2);
  std::vector<std::int32_t> heads = {history.Append(7, 0, PathHistory::kNone), PathHistory::kNone};
  const std::size_t room = history.Capacity();
  // One path is extended for ever, the other starts anew in each frame.
  for (int frame = 1; frame < 100'000; ++frame) {
    history.MakeRoom(heads);
    if (frame % 10'000 == 0) heads[0] = history.Append(8, frame, heads[0]);
    heads[1] = history.Append(9, frame, heads[0]);
  }
  EXPECT_EQ(history.Capacity(), room);
  EXPECT_EQ(history[heads[1]].frame, 99'999);
  EXPECT_EQ(history[heads[1]].previous, heads[0]);
  std::int32_t entry = heads[0];
  for (int frame = 90'000; frame > 0; frame -= 10'000) {
    EXPECT_EQ(history[entry].node, 8);
    EXPECT_EQ(history[entry].frame, frame);
    entry = history[entry].previous;
  }
  EXPECT_EQ(history[entry].node, 7);
  EXPECT_EQ(history[entry].previous, PathHistory::kNone);
}

TEST(PathHistory, GrowsWhenEverythingIsWanted) {
  PathHistory history(1);
  std::vector<std::int32_t> heads = {PathHistory::kNone};
  for (int frame = 0; frame < 50'000; ++frame) {
    history.MakeRoom(heads);
    heads[0] = history.Append(1, frame, heads[0]);
  }
  EXPECT_LE(history.Capacity(), 2u * 50'000 + 8);
  int frame = 50'000;
  for (std::int32_t entry = heads[0]; entry != PathHistory::kNone;
       entry = history[entry].previous) {
    ASSERT_EQ(history[entry].frame, --frame);
  }
  EXPECT_EQ(frame, 0);
}

TEST(PathHistory, UnwantedEntriesTakeNoRoom) {
  PathHistory history(3);
  const std::int32_t first = history.Append(1, 0, PathHistory::kNone, false);
  const std::int32_t second = history.Append(2, 0, PathHistory::kNone, true);
  EXPECT_EQ(first, second);
  EXPECT_EQ(history[second].node, 2);
}

// Against histories that are copied.
TEST(PathHistory, RandomForests) {
  const test::Chooser choose = test::RandomChooser(5);
  constexpr std::size_t kTokens = 40;
  PathHistory history(kTokens);
  std::vector<std::int32_t> heads(kTokens, PathHistory::kNone);
  std::vector<std::vector<int>> copies(kTokens);
  for (int frame = 0; frame < 3000; ++frame) {
    history.MakeRoom(heads);
    for (std::size_t i = 0; i < kTokens; ++i) {
      const std::size_t from = choose(kTokens);
      if (choose(3) == 0) {
        heads[i] = PathHistory::kNone;
        copies[i].clear();
      } else if (copies[from].size() < 200) {
        heads[i] = history.Append(static_cast<std::int32_t>(from), frame, heads[from]);
        copies[i] = copies[from];
        copies[i].push_back(frame);
      }
    }
    if (frame % 100 != 0) continue;
    for (std::size_t i = 0; i < kTokens; ++i) {
      std::size_t length = copies[i].size();
      std::int32_t entry = heads[i];
      for (; entry != PathHistory::kNone; entry = history[entry].previous) {
        ASSERT_GT(length, 0u);
        ASSERT_EQ(history[entry].frame, copies[i][--length]);
      }
      ASSERT_EQ(length, 0u);
    }
  }
}

}  // namespace
}  // namespace veral3
