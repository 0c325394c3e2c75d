#include "core/SyllableSpans.h"

#include <gtest/gtest.h>

#include "core/Alignments.h"

namespace veral3 {
namespace {

using test::MakeAlignment;

TEST(FrameSpan, ReadsNothingOutside) {
  const std::vector<int> values = {1, 2, 3};
  const std::span<const int> view(values);
  EXPECT_EQ(ReadOr(view, 0), 1);
  EXPECT_EQ(ReadOr(view, 2), 3);
  EXPECT_EQ(ReadOr(view, 3), 0);
  EXPECT_EQ(ReadOr(view, -1), 0);
  EXPECT_EQ(ReadOr(view, INT_MIN, 7), 7);
  EXPECT_EQ(Slice(view, {1, 3}).size(), 2U);
  EXPECT_EQ(Slice(view, {-5, 99}).size(), 3U);
  EXPECT_TRUE(Slice(view, {3, 5}).empty());
  EXPECT_TRUE(Slice(view, {2, 1}).empty());
  EXPECT_TRUE(Slice(view, {INT_MAX, INT_MIN}).empty());
  EXPECT_EQ(FrameSpan(), (FrameSpan{0, 0}));
  EXPECT_EQ((FrameSpan{INT_MIN, INT_MAX}.Length()), 4294967295);
  EXPECT_EQ(ToInt(4294967295), INT_MAX);
  EXPECT_EQ(ToInt(-4294967295), INT_MIN);
}

TEST(SyllableSpans, RunFromTheFirstPhonemesStartToTheLastOnesEnd) {
  // A pause of 3 frames lies between the syllables.
  const AlignmentResult alignment =
      MakeAlignment(40, {{'f', 2, 5}, {'E', 5, 9}, {'s', 12, 20}, {'t', 20, 30}}, {0, 2});
  EXPECT_EQ(SyllableSpans(alignment), (std::vector<FrameSpan>{{2, 9}, {12, 30}}));
  EXPECT_EQ(UtteranceStart(alignment), 2 * 220);
  EXPECT_EQ(UtteranceEnd(alignment), 30 * 220);
}

TEST(SyllableSpans, LastSyllableRunsToTheEndOfThePhonemes) {
  const AlignmentResult alignment = MakeAlignment(40, {{'a', 1, 5}, {'n', 5, 9}}, {0});
  const PhonemeRange phonemes = SyllablePhonemes(alignment, 0);
  EXPECT_EQ(phonemes.first, 0);
  EXPECT_EQ(phonemes.last, 1);
}

TEST(SyllableSpans, SyllableWithoutPhonemesHoldsNoFrames) {
  const AlignmentResult alignment = MakeAlignment(40, {{'a', 1, 5}, {'n', 8, 9}}, {0, 1, 1});
  const std::vector<FrameSpan> spans = SyllableSpans(alignment);
  EXPECT_EQ(spans[1], (FrameSpan{8, 5}));
  EXPECT_LT(spans[1].Length(), 0);
}

TEST(SyllableSpans, WhatTheAlignmentLacksLiesAtSampleZero) {
  const AlignmentResult alignment = MakeAlignment(40, {{'a', 1, 5}, {'n', 5, 9}}, {0, 7});
  EXPECT_EQ(PhonemeStart(alignment, -1), 0);
  EXPECT_EQ(PhonemeStart(alignment, 2), 0);
  EXPECT_EQ(PhonemeEnd(alignment, 512), 0);
  EXPECT_EQ(SyllableSpans(alignment)[1], (FrameSpan{0, 9}));
  EXPECT_EQ(SyllablePhonemes(alignment, 2).last, -1);
  EXPECT_EQ(SyllablePhonemes(alignment, -1).last, -1);
  const AlignmentResult empty;
  EXPECT_TRUE(SyllableSpans(empty).empty());
  EXPECT_EQ(UtteranceStart(empty), 0);
  EXPECT_EQ(UtteranceEnd(empty), 0);
}

TEST(SyllableSpans, CountsStayWithinTheTables) {
  AlignmentResult alignment;
  alignment.phonemes.assign(600, 'a');
  alignment.num_syllables = 1000000;
  alignment.num_words = -3;
  EXPECT_EQ(CountPhonemes(alignment), 512);
  EXPECT_EQ(CountSyllables(alignment), 512);
  EXPECT_EQ(CountWords(alignment), 0);
  EXPECT_EQ(SyllableSpans(alignment).size(), 512U);
}

}  // namespace
}  // namespace veral3
