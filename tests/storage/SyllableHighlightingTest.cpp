// The pickers that applications highlight with, on a recording made by hand.
#include <gtest/gtest.h>

#include <vector>

#include "core/AlignedAudio.h"

namespace {

class HandMade final : public AlignedAudio {
 public:
  explicit HandMade(std::vector<int> values) : m_values(std::move(values)) {}

  LanguageType GetLanguageType() override { return kLanguageEnglish; }
  const char* GetPhonemes() override { return ""; }
  CString GetMatchedSentence() override { return {}; }
  int GetNumOfSamples() override { return 0; }
  int GetNumOfPhonemes() override { return 0; }
  int GetNumOfSyllables() override { return static_cast<int>(m_values.size()); }
  int GetNumOfWords() override { return 0; }
  int GetPhonemeStartSampleNum(int) override { return 0; }
  int GetPhonemeEndSampleNum(int) override { return 0; }
  int GetUttStartSampleNum() override { return 0; }
  int GetUttEndSampleNum() override { return 0; }
  int GetSyllableStartPosition(int) override { return 0; }
  int GetWordStartPosition(int) override { return 0; }
  int GetSyllablePitch(int syl) override { return Value(syl); }
  double GetSylToneProb(int, int) override { return 0.0; }
  int GetSyllableToneOrStress(int) override { return 0; }
  int GetSyllableDuration(int syl) override { return Value(syl); }
  double GetSyllableIntensity(int syl) override { return Value(syl); }
  int GetUttNumOfPitchSegments() override { return 0; }
  int GetWaveY(int) override { return 0; }
  int GetPitchContour(int) override { return 0; }
  int GetIntensityContour(int) override { return 0; }
  int GetWordPitch(int) override { return 0; }

 private:
  int Value(int syl) const { return m_values[static_cast<std::size_t>(syl)]; }
  std::vector<int> m_values;
};

using Picks = std::vector<int>;
using Picker = void (AlignedAudio::*)(int*, int*, int*);

Picks Pick(std::vector<int> values, Picker picker) {
  HandMade audio(std::move(values));
  int first = 9, second = 9, third = 9;
  (audio.*picker)(&first, &second, &third);
  return {first, second, third};
}

TEST(SyllableHighlighting, TiesGoToTheLaterSyllableForPitchOnly) {
  const std::vector<int> values = {100, 120, 120};
  EXPECT_EQ(Pick(values, &AlignedAudio::FindHighPitchSyallbles), (Picks{2, 1, 0}));
  EXPECT_EQ(Pick(values, &AlignedAudio::FindLongDurationSyallbles), (Picks{1, 2, 0}));
  EXPECT_EQ(Pick(values, &AlignedAudio::FindHighIntensitySyallbles), (Picks{1, 2, 0}));
}

TEST(SyllableHighlighting, FewerSyllablesThanRanks) {
  EXPECT_EQ(Pick({5}, &AlignedAudio::FindHighPitchSyallbles), (Picks{0, -1, -1}));
  EXPECT_EQ(Pick({}, &AlignedAudio::FindLongDurationSyallbles), (Picks{-1, -1, -1}));
  EXPECT_EQ(Pick({}, &AlignedAudio::FindHighIntensitySyallbles), (Picks{-1, -1, -1}));
}

TEST(SyllableHighlighting, MinusOneIsPickedByThePitchHelperOnly) {
  EXPECT_EQ(Pick({-1, -1}, &AlignedAudio::FindHighPitchSyallbles), (Picks{1, 0, -1}));
  EXPECT_EQ(Pick({-1, -1}, &AlignedAudio::FindLongDurationSyallbles), (Picks{-1, -1, -1}));
}

TEST(SyllableHighlighting, AveragePitchIsCutAndNothingDividesByZero) {
  EXPECT_EQ(HandMade({100, 101}).GetUttAveragePitch(), 100);
  EXPECT_EQ(HandMade({}).GetUttAveragePitch(), 0);
}

TEST(SyllableHighlighting, NullArgumentsArePassedOver) {
  HandMade audio({3, 1, 2});
  int third = 9;
  audio.FindHighPitchSyallbles(nullptr, nullptr, &third);
  EXPECT_EQ(third, 1);
}

}  // namespace
