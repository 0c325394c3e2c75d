// Thousands of recordings made by chance: their records against a plain writer of the layout, and
// what is read back against what the recording answered.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/MadeAudio.h"
#include "grading/GradedAudio.h"
#include "storage/SavedAlignedAudio.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::RecordingArrays;

constexpr std::size_t kSize = 2544;

class RandomRecordings {
 public:
  explicit RandomRecordings(unsigned seed) : m_random(seed) {}

  int Below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }

  // Mostly small recordings, at times as large as a record holds.
  RecordingArrays Next() {
    RecordingArrays arrays;
    const bool large = Below(5) == 0;
    const int phonemes = Below(large ? 128 : 20);
    const int syllables = std::min(phonemes, Below(large ? 65 : 10));
    const int words = std::min(syllables, Below(large ? 65 : 6));
    int time = Number(40000);
    for (int i = 0; i < phonemes; ++i) {
      arrays.phonemes += static_cast<char>(33 + Below(94));
      arrays.start.push_back(time);
      time += Below(5000);
      arrays.end.push_back(time);
      if (Below(4) == 0) time += Below(3000);
    }
    arrays.syllable_start = Starts(syllables, phonemes);
    arrays.word_start = Starts(words, phonemes);
    for (int i = 0; i < syllables; ++i) {
      arrays.syllable_pitch.push_back(Number(600));
      arrays.syllable_duration.push_back(Number(30000));
      arrays.syllable_mark.push_back(Below(6));
      arrays.syllable_intensity.push_back(std::ldexp(1.0 + Below(1 << 20) / 1048576.0, Below(45)) -
                                          1.0);
      auto& row = arrays.tone_prob.emplace_back();
      for (double& value : row) value = Below(3) == 0 ? Below(101) / 100.0 : Below(100001) / 1e5;
    }
    arrays.num_samples = time + Below(100000);
    arrays.pitch_segments = Below(40);
    for (int& value : arrays.wave) value = Below(29491);
    for (int& value : arrays.pitch_contour) value = Below(230);
    for (int& value : arrays.intensity_contour) value = Below(230);
    return arrays;
  }

 private:
  int Number(int end) { return Below(30) == 0 ? Below(10000000) : Below(end); }

  // Ascending, some of them equal.
  std::vector<int> Starts(int count, int end) {
    std::vector<int> starts;
    for (int i = 0; i < count; ++i) starts.push_back(Below(end));
    std::sort(starts.begin(), starts.end());
    if (!starts.empty()) starts[0] = 0;
    return starts;
  }

  std::mt19937 m_random;
};

// The layout, field after field, and nothing shared with the engine.
class LiteralRecord {
 public:
  LiteralRecord(int language, const RecordingArrays& a) {
    const bool chinese = language == 2;
    const std::size_t phonemes = a.phonemes.size();
    const std::size_t syllables = a.syllable_start.size();
    Int(a.num_samples);
    Short(static_cast<int>(phonemes));
    Short(static_cast<int>(syllables));
    Short(static_cast<int>(a.word_start.size()));
    Short(a.pitch_segments);
    for (const char c : a.phonemes) Byte(c);
    Until(140);
    for (const int start : a.start) Short(start / 220);
    Until(396);
    for (const int end : a.end) Short(end / 220);
    Until(652);
    for (const int start : a.syllable_start) Short(start);
    Until(780);
    for (const int pitch : a.syllable_pitch) Short(pitch);
    Until(908);
    for (const int duration : a.syllable_duration) Short(duration);
    Until(1036);
    for (const double intensity : a.syllable_intensity) {
      const float narrowed = static_cast<float>(intensity);
      int bits = 0;
      std::memcpy(&bits, &narrowed, 4);
      Int(bits);
    }
    Until(1292);
    for (std::size_t i = 0; i < syllables && chinese; ++i) Short(a.syllable_mark[i]);
    Until(1420);
    for (const int start : a.word_start) Short(start);
    Until(1548);
    for (const int y : a.wave) Byte(y / 128);
    for (const int y : a.pitch_contour) Byte(y);
    for (const int y : a.intensity_contour) Byte(y);
    for (std::size_t i = 0; i < syllables && chinese; ++i) {
      for (const double p : a.tone_prob[i]) Short(static_cast<int>(p * 100.0));
    }
    Until(kSize);
  }

  const std::string& Bytes() const { return m_bytes; }

 private:
  void Byte(int value) { m_bytes += static_cast<char>(value & 255); }
  void Short(int value) {
    Byte(value);
    Byte(value >> 8);
  }
  void Int(int value) {
    Short(value);
    Short(value >> 16);
  }
  void Until(std::size_t offset) {
    EXPECT_LE(m_bytes.size(), offset);
    m_bytes.resize(offset, '\0');
  }

  std::string m_bytes;
};

int InFrames(int sample) { return static_cast<std::int16_t>(sample / 220) * 220; }

// Every accessor of the one against the same accessor of the other, after the record's rounding.
void ExpectSame(AlignedAudio& saved, AlignedAudio& audio) {
  const int phonemes = audio.GetNumOfPhonemes();
  const int syllables = audio.GetNumOfSyllables();
  const int words = audio.GetNumOfWords();
  const bool chinese = audio.GetLanguageType() == kLanguageChinese;
  ASSERT_EQ(saved.GetLanguageType(), audio.GetLanguageType());
  ASSERT_STREQ(saved.GetPhonemes(), audio.GetPhonemes());
  ASSERT_EQ(saved.GetMatchedSentence(), audio.GetMatchedSentence());
  ASSERT_EQ(saved.GetNumOfSamples(), audio.GetNumOfSamples());
  ASSERT_EQ(saved.GetNumOfPhonemes(), phonemes);
  ASSERT_EQ(saved.GetNumOfSyllables(), syllables);
  ASSERT_EQ(saved.GetNumOfWords(), words);
  ASSERT_EQ(saved.GetUttNumOfPitchSegments(), audio.GetUttNumOfPitchSegments());
  ASSERT_EQ(saved.GetUttStartSampleNum(), InFrames(audio.GetUttStartSampleNum()));
  ASSERT_EQ(saved.GetUttEndSampleNum(), InFrames(audio.GetUttEndSampleNum()));
  for (int i = -1; i <= phonemes; ++i) {
    ASSERT_EQ(saved.GetPhonemeStartSampleNum(i), InFrames(audio.GetPhonemeStartSampleNum(i)));
    ASSERT_EQ(saved.GetPhonemeEndSampleNum(i), InFrames(audio.GetPhonemeEndSampleNum(i)));
  }
  for (int s = -1; s <= syllables; ++s) {
    ASSERT_EQ(saved.GetSyllableStartPosition(s), audio.GetSyllableStartPosition(s));
    ASSERT_EQ(saved.GetSyllablePitch(s), static_cast<std::int16_t>(audio.GetSyllablePitch(s)));
    ASSERT_EQ(saved.GetSyllableDuration(s),
              static_cast<std::int16_t>(audio.GetSyllableDuration(s)));
    ASSERT_EQ(saved.GetSyllableIntensity(s),
              static_cast<double>(static_cast<float>(audio.GetSyllableIntensity(s))));
    ASSERT_EQ(saved.GetSyllableToneOrStress(s), chinese ? audio.GetSyllableToneOrStress(s) : 0);
    for (int k = 0; k < 6; ++k) {
      const int hundredths = chinese ? static_cast<int>(audio.GetSylToneProb(s, k) * 100.0) : 0;
      ASSERT_EQ(saved.GetSylToneProb(s, k), hundredths * 0.01);
    }
  }
  for (int w = -1; w <= words; ++w) {
    ASSERT_EQ(saved.GetWordStartPosition(w), audio.GetWordStartPosition(w));
  }
  for (int i = -1; i <= 100; ++i) ASSERT_EQ(saved.GetWaveY(i), audio.GetWaveY(i) / 128 * 128);
  for (int i = -1; i <= 128; ++i) {
    ASSERT_EQ(saved.GetPitchContour(i), audio.GetPitchContour(i));
    ASSERT_EQ(saved.GetIntensityContour(i), audio.GetIntensityContour(i));
  }
}

// The mean over the syllables that begin with or behind the word's first phoneme, and before the
// next word's.
int PlainWordPitch(AlignedAudio& audio, int word) {
  const auto first_of = [&](int w) {
    int s = 0;
    while (s < audio.GetNumOfSyllables() &&
           audio.GetSyllableStartPosition(s) < audio.GetWordStartPosition(w)) {
      ++s;
    }
    return s;
  };
  const int first = first_of(word);
  const int end = word + 1 < audio.GetNumOfWords() ? first_of(word + 1) : audio.GetNumOfSyllables();
  long long sum = 0;
  for (int s = first; s < end; ++s) sum += audio.GetSyllablePitch(s);
  return end > first ? static_cast<int>(sum / (end - first)) : 0;
}

TEST(RecordRoundTrip, RandomRecordings) {
  RandomRecordings random(20261121);
  test::MessageCapture messages;
  for (int round = 0; round < 3000; ++round) {
    SCOPED_TRACE(round);
    const RecordingArrays arrays = random.Next();
    const int language = 1 + random.Below(3);
    test::MadeAudio audio(static_cast<LanguageType>(language));
    Fill(audio, arrays);
    audio.Hand().possible_sentences[0] = L"A \u6771 B";

    std::vector<unsigned char> record(kSize + 1, 0xAA);
    ASSERT_EQ(audio.GetAlignInfo(record.data()), 0);
    ASSERT_EQ(record[kSize], 0xAA);
    ASSERT_EQ(std::string(record.begin(), record.begin() + kSize),
              LiteralRecord(language, arrays).Bytes());

    HLYFile file;
    file.SetHLYVersion(5);
    file.SetSentence(L"A \u6771 B");
    file.SetAlignInfo(record.data(), static_cast<int>(kSize));
    SavedAlignedAudio saved(static_cast<LanguageType>(language));
    ASSERT_EQ(saved.LoadFromHLY(&file), 0);
    std::fill(record.begin(), record.end(), 0xAA);  // the object holds what it needs
    ExpectSame(saved, audio);
    for (int w = 0; w < saved.GetNumOfWords(); ++w) {
      ASSERT_EQ(saved.GetWordPitch(w), PlainWordPitch(saved, w));
    }
    if (HasFatalFailure()) return;
  }
  EXPECT_EQ(messages.All(), "");
}

// A damaged record may say anything; it must not lead a learner's grading astray.
TEST(RecordRoundTrip, GradingAgainstAnyBytes) {
  std::mt19937 random(5);
  const test::MessageCapture quiet;
  RandomRecordings recordings(9);
  for (int round = 0; round < 600; ++round) {
    std::vector<unsigned char> record(kSize);
    for (unsigned char& byte : record) byte = static_cast<unsigned char>(random());
    record[5] = record[7] = record[9] = 0;
    record[4] &= 127;
    record[6] &= 63;
    record[8] &= 63;
    for (std::size_t i = 0; i < 64; ++i) record[1036 + 4 * i + 3] &= 0xBF;  // finite intensities
    HLYFile file;
    file.SetHLYVersion(5);
    file.SetAlignInfo(record.data(), static_cast<int>(kSize));
    const auto language = static_cast<LanguageType>(1 + round % 3);
    SavedAlignedAudio tutor(language);
    ASSERT_EQ(tutor.LoadFromHLY(&file), 0);
    tutor.DumpData();

    RecordingArrays arrays = recordings.Next();
    std::fill(arrays.phonemes.begin(), arrays.phonemes.end(), 'a');
    test::Made<GradedAudio> learner(language);
    Fill(learner, arrays);
    const int total = learner.GradeAgainstTutor(&tutor);
    ASSERT_GE(total, -1);
    ASSERT_LE(total, 100);
    for (int s = 0; s < learner.GetNumOfSyllables(); ++s) {
      for (const int score : {learner.GetSyllablePitchScore(s), learner.GetSyllableTimingScore(s),
                              learner.GetSyllableIntensityScore(s)}) {
        ASSERT_GE(score, 0);
        ASSERT_LE(score, 100);
      }
    }
  }
}

}  // namespace
}  // namespace veral3
