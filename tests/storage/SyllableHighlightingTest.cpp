// The pickers that applications highlight with, on a recording made by hand.
#include <gtest/gtest.h>

#include <vector>

#include "core/AlignedAudio.h"

namespace {

class HandMade final : public AlignedAudio {
 public:
  explicit HandMade(std::vector<int> values)
      : HandMade(values, {values.begin(), values.end()}, values) {}
  HandMade(std::vector<int> pitch, std::vector<double> intensity, std::vector<int> duration)
      : m_pitch(std::move(pitch)),
        m_intensity(std::move(intensity)),
        m_duration(std::move(duration)) {}

  LanguageType GetLanguageType() override { return kLanguageEnglish; }
  const char* GetPhonemes() override { return ""; }
  CString GetMatchedSentence() override { return {}; }
  int GetNumOfSamples() override { return 0; }
  int GetNumOfPhonemes() override { return 0; }
  int GetNumOfSyllables() override { return static_cast<int>(m_pitch.size()); }
  int GetNumOfWords() override { return 0; }
  int GetPhonemeStartSampleNum(int) override { return 0; }
  int GetPhonemeEndSampleNum(int) override { return 0; }
  int GetUttStartSampleNum() override { return 0; }
  int GetUttEndSampleNum() override { return 0; }
  int GetSyllableStartPosition(int) override { return 0; }
  int GetWordStartPosition(int) override { return 0; }
  int GetSyllablePitch(int syl) override { return m_pitch.at(Index(syl)); }
  double GetSylToneProb(int, int) override { return 0.0; }
  int GetSyllableToneOrStress(int) override { return 0; }
  int GetSyllableDuration(int syl) override { return m_duration.at(Index(syl)); }
  double GetSyllableIntensity(int syl) override { return m_intensity.at(Index(syl)); }
  int GetUttNumOfPitchSegments() override { return 0; }
  int GetWaveY(int) override { return 0; }
  int GetPitchContour(int) override { return 0; }
  int GetIntensityContour(int) override { return 0; }
  int GetWordPitch(int) override { return 0; }

 private:
  static std::size_t Index(int syl) { return static_cast<std::size_t>(syl); }
  std::vector<int> m_pitch;
  std::vector<double> m_intensity;
  std::vector<int> m_duration;
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
  EXPECT_EQ(Pick({-1, -1}, &AlignedAudio::FindHighIntensitySyallbles), (Picks{-1, -1, -1}));
  EXPECT_EQ(Pick({-2, -1}, &AlignedAudio::FindHighPitchSyallbles), (Picks{1, -1, -1}));
}

TEST(SyllableHighlighting, AveragePitchIsCutAndNothingDividesByZero) {
  EXPECT_EQ(HandMade({100, 101}).GetUttAveragePitch(), 100);
  EXPECT_EQ(HandMade({180}).GetUttAveragePitch(), 180);
  EXPECT_EQ(HandMade({2000000000, 2000000000, 1999999997}).GetUttAveragePitch(), 1999999999);
  EXPECT_EQ(HandMade({}).GetUttAveragePitch(), 0);
}

TEST(SyllableHighlighting, NullArgumentsArePassedOver) {
  HandMade audio({3, 1, 2});
  int third = 9;
  audio.FindHighPitchSyallbles(nullptr, nullptr, &third);
  EXPECT_EQ(third, 1);
  int first = 9, second = 9;
  audio.FindHighIntensitySyallbles(&first, nullptr, nullptr);
  EXPECT_EQ(first, 0);
  audio.FindLongDurationSyallbles(nullptr, &second, nullptr);
  EXPECT_EQ(second, 2);
}

// Each picker goes by a measure of its own.
TEST(SyllableHighlighting, MeasuresAreTheirOwn) {
  HandMade audio({4, 3, 2, 1}, {0.25, 0.75, 0.5, 0.125}, {1, 2, 3, 4});
  Picks picks(3);
  audio.FindHighPitchSyallbles(&picks[0], &picks[1], &picks[2]);
  EXPECT_EQ(picks, (Picks{0, 1, 2}));
  audio.FindHighIntensitySyallbles(&picks[0], &picks[1], &picks[2]);
  EXPECT_EQ(picks, (Picks{1, 2, 0}));
  audio.FindLongDurationSyallbles(&picks[0], &picks[1], &picks[2]);
  EXPECT_EQ(picks, (Picks{3, 2, 1}));
  EXPECT_EQ(audio.GetUttAveragePitch(), 2);  // 10 / 4
}

}  // namespace
