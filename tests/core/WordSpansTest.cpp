#include "core/WordSpans.h"

#include <gtest/gtest.h>

#include "support/Vectors.h"

namespace veral3 {
namespace {

using Ints = std::vector<std::int32_t>;

TEST(WordSpans, MatchTheReferenceVectors) {
  const auto cases = test::LoadVectorJson("prosody.json").at("word_first_syllables");
  ASSERT_EQ(cases.size(), 41U);
  for (const auto& c : cases) {
    const WordSpans spans =
        FindWordSpans(c.at("syl_start").get<Ints>(), c.at("word_start").get<Ints>());
    EXPECT_EQ(spans.first_syllable, c.at("first").get<Ints>()) << c;
    EXPECT_EQ(spans.num_syllables, c.at("per_word").get<Ints>()) << c;
  }
}

TEST(WordSpans, WalkStopsAtTheLastSyllable) {
  const WordSpans spans = FindWordSpans(Ints{0, 2}, Ints{0, 2, 9, 12});
  EXPECT_EQ(spans.first_syllable, (Ints{0, 1, 2, 2}));
  EXPECT_EQ(spans.num_syllables, (Ints{1, 1, 0, 0}));
}

TEST(WordSpans, OfNothing) {
  EXPECT_EQ(FindWordSpans({}, {}), WordSpans{});
  EXPECT_EQ(FindWordSpans(Ints{0, 2}, {}), WordSpans{});
  EXPECT_EQ(FindWordSpans({}, Ints{0, 0}), (WordSpans{{0, 0}, {0, 0}}));
}

TEST(WordSpans, StartsInAnyOrderNeverCountBackwards) {
  const WordSpans spans = FindWordSpans(Ints{0, 5, 3, 9}, Ints{6, 0, 100, -1});
  for (const std::int32_t count : spans.num_syllables) EXPECT_GE(count, 0);
}

TEST(WordPitch, IsTheTruncatedMean) {
  const WordSpans spans = FindWordSpans(Ints{0, 2, 4}, Ints{0, 4});
  const Ints pitch = {200, 101, 300};
  EXPECT_EQ(WordPitch(spans, pitch, 0), 150);
  EXPECT_EQ(WordPitch(spans, pitch, 1), 300);
}

TEST(WordPitch, OfOneSyllableIsItsPitch) {
  EXPECT_EQ(WordPitch(FindWordSpans(Ints{0}, Ints{0}), Ints{187}, 0), 187);
}

TEST(WordPitch, NothingToReadIsZero) {
  const WordSpans spans = FindWordSpans(Ints{0, 2}, Ints{0, 9});
  EXPECT_EQ(WordPitch(spans, Ints{100, 100}, 1), 0);  // a word without syllables
  EXPECT_EQ(WordPitch(spans, Ints{100, 100}, -1), 0);
  EXPECT_EQ(WordPitch(spans, Ints{100, 100}, 2), 0);
  EXPECT_EQ(WordPitch(spans, {}, 0), 0);
  EXPECT_EQ(WordPitch({}, Ints{100}, 0), 0);
}

}  // namespace
}  // namespace veral3
