// Recordings as the grading reads them: as far as they say they go, and no further.
#include "grading/RecordingView.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace veral3 {
namespace {

// Answers every index with a number of its own and remembers none.
class HandMade final : public AlignedAudio {
 public:
  const char* phonemes = nullptr;
  int num_phonemes = 0;
  int num_syllables = 0;

  LanguageType GetLanguageType() override { return kLanguageChinese; }
  const char* GetPhonemes() override { return phonemes; }
  CString GetMatchedSentence() override { return {}; }
  int GetNumOfSamples() override { return 0; }
  int GetNumOfPhonemes() override { return num_phonemes; }
  int GetNumOfSyllables() override { return num_syllables; }
  int GetNumOfWords() override { return 0; }
  int GetPhonemeStartSampleNum(int phon) override { return 1000 + phon; }
  int GetPhonemeEndSampleNum(int phon) override { return 2000 + phon; }
  int GetUttStartSampleNum() override { return 0; }
  int GetUttEndSampleNum() override { return 0; }
  int GetSyllableStartPosition(int syl) override { return 3000 + syl; }
  int GetWordStartPosition(int) override { return 0; }
  int GetSyllablePitch(int syl) override { return 4000 + syl; }
  double GetSylToneProb(int syl, int tone) override { return syl + tone / 10.0; }
  int GetSyllableToneOrStress(int) override { return 0; }
  int GetSyllableDuration(int syl) override { return 5000 + syl; }
  double GetSyllableIntensity(int syl) override { return syl + 0.25; }
  int GetUttNumOfPitchSegments() override { return 17; }
  int GetWaveY(int) override { return 0; }
  int GetPitchContour(int) override { return 0; }
  int GetIntensityContour(int) override { return 0; }
  int GetWordPitch(int) override { return 0; }
};

std::string PhonemesOf(const char* phonemes, int count) {
  HandMade audio;
  audio.phonemes = phonemes;
  audio.num_phonemes = count;
  const RecordingView view = ViewOf(audio);
  EXPECT_EQ(view.phoneme_start.size(), view.phonemes.size());
  EXPECT_EQ(view.phoneme_end.size(), view.phonemes.size());
  return view.phonemes;
}

TEST(RecordingView, ReadsEveryArray) {
  HandMade audio;
  audio.phonemes = "mao";
  audio.num_phonemes = 3;
  audio.num_syllables = 2;
  const RecordingView view = ViewOf(audio);
  EXPECT_EQ(view.language, kLanguageChinese);
  EXPECT_EQ(view.phonemes, "mao");
  EXPECT_EQ(view.phoneme_start, (std::vector<int>{1000, 1001, 1002}));
  EXPECT_EQ(view.phoneme_end, (std::vector<int>{2000, 2001, 2002}));
  EXPECT_EQ(view.syllable_start, (std::vector<int>{3000, 3001}));
  EXPECT_EQ(view.syllable_pitch, (std::vector<int>{4000, 4001}));
  EXPECT_EQ(view.syllable_duration, (std::vector<int>{5000, 5001}));
  EXPECT_EQ(view.syllable_intensity, (std::vector<double>{0.25, 1.25}));
  EXPECT_EQ(view.tone_probability,
            (std::vector<ToneRow>{{0.0, 0.1, 0.2, 0.3, 0.4}, {1.0, 1.1, 1.2, 1.3, 1.4}}));
  EXPECT_EQ(view.pitch_segments, 17);
}

// The text and the count may differ, and either may be missing.
TEST(RecordingView, PhonemesEndWithTheTextAndWithTheCount) {
  EXPECT_EQ(PhonemesOf("abc", 3), "abc");
  EXPECT_EQ(PhonemesOf("abc", 2), "ab");
  EXPECT_EQ(PhonemesOf("abc", 1), "a");
  EXPECT_EQ(PhonemesOf("abc", 0), "");
  EXPECT_EQ(PhonemesOf("abc", -5), "");
  EXPECT_EQ(PhonemesOf("abc", 9), "abc");
  EXPECT_EQ(PhonemesOf("", 9), "");
  EXPECT_EQ(PhonemesOf(nullptr, 0), "");
  EXPECT_EQ(PhonemesOf(nullptr, 9), "");
}

TEST(RecordingView, NoSyllablesAreNone) {
  HandMade audio;
  for (const int count : {0, -1, -100}) {
    audio.num_syllables = count;
    const RecordingView view = ViewOf(audio);
    EXPECT_EQ(view.NumSyllables(), 0);
    EXPECT_TRUE(view.syllable_pitch.empty());
    EXPECT_TRUE(view.tone_probability.empty());
  }
}

}  // namespace
}  // namespace veral3
