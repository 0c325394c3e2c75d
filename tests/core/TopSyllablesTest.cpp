#include "core/TopSyllables.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/AnalyzedAudio.h"

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

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
// Five syllables, each higher, longer and louder than the one before it.
class Counting final : public AnalyzedAudio {
 public:
  using AnalyzedAudio::AnalyzedAudio;
  int GetNumOfSyllables() override { return 5; }
  int GetSyllablePitch(int syl) override { return 10 * Asked(syl); }
  int GetSyllableDuration(int syl) override { return 10 * Asked(syl); }
  double GetSyllableIntensity(int syl) override { return Asked(syl); }

  Ints m_asked = Ints(5, 0);

 private:
  int Asked(int syl) {
    EXPECT_TRUE(syl >= 0 && syl < 5) << syl;
    ++m_asked.at(static_cast<std::size_t>(syl));
    return syl;
  }
};
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

TEST(TopSyllables, OfARecordingAskNoMore) {
  using Find = void (AlignedAudio::*)(int*, int*, int*);
  for (const Find find :
       {&AlignedAudio::FindHighPitchSyallbles, &AlignedAudio::FindHighIntensitySyallbles,
        &AlignedAudio::FindLongDurationSyallbles}) {
    Counting audio(kLanguageEnglish);
    int first = 9, second = 9, third = 9;
    (audio.*find)(&first, &second, &third);
    EXPECT_EQ((Ints{first, second, third}), (Ints{4, 3, 2}));
    EXPECT_EQ(audio.m_asked, (Ints{3, 3, 3, 2, 1}));
  }
}

}  // namespace
}  // namespace veral3
