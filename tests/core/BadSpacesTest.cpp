#include "core/BadSpaces.h"

#include <gtest/gtest.h>

#include "core/Alignments.h"
#include "core/SyllableSpans.h"

namespace veral3 {
namespace {

using test::MakeAlignment;
using Ints = std::vector<std::int32_t>;
using Doubles = std::vector<double>;

// Two syllables of two phonemes with pauses of 4, 5 and 6 frames around them.
AlignmentResult TwoSyllables() {
  return MakeAlignment(40, {{'s', 4, 8}, {'a', 8, 14}, {'t', 19, 25}, {'o', 25, 34}}, {0, 2});
}

TEST(LoudGaps, CountVoicedLoudFramesBetweenSyllables) {
  const Ints pitch(40, 100);
  const Doubles intensity(40, 10.0);
  EXPECT_EQ(CountLoudGaps(TwoSyllables(), pitch, intensity, 10.0), (Ints{4, 5, 6}));
  EXPECT_EQ(CountLoudGaps(TwoSyllables(), Ints(40, 1), intensity, 10.0), (Ints{4, 5, 6}));
}

TEST(LoudGaps, UnvoicedFramesDoNotCount) {
  Ints pitch(40, 0);
  pitch[15] = pitch[17] = pitch[30] = pitch[39] = 100;
  EXPECT_EQ(CountLoudGaps(TwoSyllables(), pitch, Doubles(40, 10.0), 10.0), (Ints{0, 2, 1}));
}

TEST(LoudGaps, HalfTheMeanIsNotLoudYet) {
  const Ints pitch(40, 100);
  EXPECT_EQ(CountLoudGaps(TwoSyllables(), pitch, Doubles(40, 5.0), 10.0), (Ints{0, 0, 0}));
  EXPECT_EQ(CountLoudGaps(TwoSyllables(), pitch, Doubles(40, 5.1), 10.0), (Ints{4, 5, 6}));
}

TEST(LoudGapsPronunOnly, CountUnvoicedFramesToo) {
  const AlignmentResult alignment = MakeAlignment(40, {{'a', 4, 14}, {'o', 19, 34}}, {0, 1});
  EXPECT_EQ(CountLoudGapsPronunOnly(alignment, Doubles(40, 10.0), 10.0), (Ints{4, 5, 6}));
}

TEST(LoudGapsPronunOnly, TakeTheSyllableNumberForThePhonemes) {
  // The pause lies before phoneme 2, where syllable 1 begins; gap 1 looks before phoneme 1.
  const Doubles intensity(40, 10.0);
  EXPECT_EQ(CountLoudGapsPronunOnly(TwoSyllables(), intensity, 10.0), (Ints{4, 0, 6}));
  // And a pause inside the first syllable is counted in its place.
  const AlignmentResult alignment =
      MakeAlignment(40, {{'s', 4, 8}, {'a', 11, 14}, {'t', 14, 25}, {'o', 25, 34}}, {0, 2});
  EXPECT_EQ(CountLoudGapsPronunOnly(alignment, intensity, 10.0), (Ints{4, 3, 6}));
  EXPECT_EQ(CountLoudGaps(alignment, Ints(40, 100), intensity, 10.0), (Ints{4, 0, 6}));
}

TEST(LoudGaps, OneSyllableOfOnePhonemeHasTwo) {
  const AlignmentResult alignment = MakeAlignment(10, {{'a', 2, 7}}, {0});
  EXPECT_EQ(CountLoudGaps(alignment, Ints(10, 100), Doubles(10, 10.0), 10.0), (Ints{2, 3}));
  EXPECT_EQ(CountLoudGapsPronunOnly(alignment, Doubles(10, 10.0), 10.0), (Ints{2, 3}));
}

TEST(LoudGaps, WithoutSyllablesThereIsOneEmptyGap) {
  const AlignmentResult alignment = MakeAlignment(40, {}, {}, {});
  EXPECT_EQ(CountLoudGaps(alignment, Ints(40, 100), Doubles(40, 10.0), 0.0), Ints{0});
  EXPECT_EQ(CountLoudGapsPronunOnly(alignment, Doubles(40, 10.0), 0.0), Ints{0});
}

TEST(LoudGaps, MissingTracksCountNothing) {
  EXPECT_EQ(CountLoudGaps(TwoSyllables(), {}, Doubles(40, 10.0), 10.0), (Ints{0, 0, 0}));
  EXPECT_EQ(CountLoudGaps(TwoSyllables(), Ints(40, 100), {}, 10.0), (Ints{0, 0, 0}));
  EXPECT_EQ(CountLoudGaps(TwoSyllables(), Ints(40, 100), Doubles(36, 10.0), 10.0), (Ints{4, 5, 2}));
}

TEST(LoudGaps, NeverReadOutside) {
  test::WildAlignments wild(5);
  for (int round = 0; round < 3000; ++round) {
    const AlignmentResult alignment = wild.Next();
    Doubles intensity;
    wild.Fill(intensity, 60);
    Ints pitch(static_cast<std::size_t>(wild.Size(60)), 100);
    const std::size_t gaps = static_cast<std::size_t>(CountSyllables(alignment)) + 1;
    ASSERT_EQ(CountLoudGaps(alignment, pitch, intensity, 0.5).size(), gaps);
    ASSERT_EQ(CountLoudGapsPronunOnly(alignment, intensity, 0.5).size(), gaps);
  }
}

}  // namespace
}  // namespace veral3
