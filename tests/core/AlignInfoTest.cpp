// The alignment record, written.
#include "core/AlignInfo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "core/MadeAudio.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using test::MadeAudio;
using test::RecordingArrays;
using Bytes = std::vector<std::uint8_t>;

Bytes RecordOf(AnalyzedAudio& audio) {
  Bytes bytes(kAlignInfoSize, 0xAA);
  EXPECT_EQ(audio.GetAlignInfo(bytes.data()), 0);
  return bytes;
}

Bytes RecordOf(LanguageType language, const RecordingArrays& arrays) {
  MadeAudio audio(language);
  Fill(audio, arrays);
  return RecordOf(audio);
}

int Int16At(const Bytes& bytes, std::size_t offset) {
  return static_cast<std::int16_t>(bytes[offset] | bytes[offset + 1] << 8);
}

// `count` syllables of one phoneme, each a word.
RecordingArrays Syllables(int count) {
  RecordingArrays arrays;
  for (int i = 0; i < count; ++i) {
    arrays.phonemes += 'a';
    arrays.start.push_back(220 * i);
    arrays.end.push_back(220 * (i + 1));
    arrays.syllable_start.push_back(i);
    arrays.syllable_pitch.push_back(100 + i);
    arrays.syllable_duration.push_back(220);
    arrays.syllable_mark.push_back(1);
    arrays.syllable_intensity.push_back(i + 0.5);
    arrays.tone_prob.push_back({0.1, 0.2, 0.3, 0.25, 0.15});
    arrays.word_start.push_back(i);
  }
  return arrays;
}

TEST(AlignInfo, HasItsSize) {
  EXPECT_EQ(AnalyzedAudio::GetSizeOfAlignInfo(), 2544);
  MadeAudio audio(kLanguageEnglish);
  EXPECT_EQ(audio.GetSizeOfAlignInfo(), 2544);
}

TEST(AlignInfo, Vectors) {
  const nlohmann::json& vectors = test::LoadVectorJson("record.json");
  EXPECT_EQ(vectors["size"], kAlignInfoSize);
  ASSERT_EQ(vectors["cases"].size(), 12u);
  for (const nlohmann::json& entry : vectors["cases"]) {
    SCOPED_TRACE(entry["name"].get<std::string>());
    const Bytes record = RecordOf(static_cast<LanguageType>(entry["language"].get<int>()),
                                  test::ArraysOf(entry["input"]));
    const auto expected = test::LoadVector<std::uint8_t>(entry["record"].get<std::string>());
    const auto written = test::LoadVector<std::uint8_t>(entry["written_mask"].get<std::string>());
    ASSERT_EQ(expected.size(), kAlignInfoSize);
    ASSERT_EQ(written.size(), kAlignInfoSize);
    for (std::size_t i = 0; i < kAlignInfoSize; ++i) {
      // What the writer leaves alone is zero.
      ASSERT_EQ(record[i], written[i] == 1 ? expected[i] : 0) << "byte " << i;
    }
  }
}

// What docs/formats/alignment-record.md shows.
TEST(AlignInfo, TheDocumentedExample) {
  RecordingArrays arrays;
  arrays.num_samples = 5000;
  arrays.phonemes = "ma";
  arrays.start = {440, 1100};
  arrays.end = {1100, 1980};
  arrays.syllable_start = {0};
  arrays.syllable_pitch = {0};
  arrays.syllable_duration = {1540};
  arrays.syllable_mark = {0};
  arrays.syllable_intensity = {0.0};
  arrays.tone_prob = {{}};
  arrays.word_start = {0};
  arrays.pitch_segments = 1;
  const Bytes record = RecordOf(kLanguageJapanese, arrays);
  const auto starts_with = [&](std::size_t offset, const Bytes& bytes) {
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(),
                           record.begin() + static_cast<std::ptrdiff_t>(offset)))
        << offset;
  };
  starts_with(0, {0x88, 0x13, 0, 0});
  starts_with(4, {2, 0, 1, 0, 1, 0, 1, 0});
  starts_with(12, {0x6D, 0x61, 0});
  starts_with(140, {2, 0, 5, 0, 0});
  starts_with(396, {5, 0, 9, 0, 0});
  starts_with(908, {0x04, 0x06});
}

TEST(AlignInfo, TimesAreWholeFrames) {
  RecordingArrays arrays = Syllables(3);
  arrays.start = {0, 440, 439};
  arrays.end = {219, 2200, 660};
  const Bytes record = RecordOf(kLanguageEnglish, arrays);
  EXPECT_EQ(Int16At(record, 140 + 2), 2);
  EXPECT_EQ(Int16At(record, 140 + 4), 1);
  EXPECT_EQ(Int16At(record, 396), 0);
  EXPECT_EQ(Int16At(record, 396 + 2), 10);
}

TEST(AlignInfo, DurationsStayInSamplesAndInSixteenBits) {
  RecordingArrays arrays = Syllables(2);
  arrays.syllable_duration = {2640, 40000};
  const Bytes record = RecordOf(kLanguageEnglish, arrays);
  EXPECT_EQ(Int16At(record, 908), 2640);
  EXPECT_EQ(Int16At(record, 910), 40000 - 65536);
}

TEST(AlignInfo, ToneProbabilitiesAreCutToHundredths) {
  RecordingArrays arrays = Syllables(2);
  arrays.tone_prob[1] = {0.999, 0.29, 0.57, 1.0, 0.005};
  const Bytes record = RecordOf(kLanguageChinese, arrays);
  EXPECT_EQ(Int16At(record, 1904 + 10), 99);
  EXPECT_EQ(Int16At(record, 1904 + 12), static_cast<int>(0.29 * 100.0));  // 28: 28.999...
  EXPECT_EQ(Int16At(record, 1904 + 16), 100);
  EXPECT_EQ(Int16At(record, 1904 + 18), 0);
  EXPECT_EQ(Int16At(record, 1292), 1);
}

TEST(AlignInfo, OnlyChineseHasTones) {
  for (const LanguageType language : {kLanguageEnglish, kLanguageJapanese}) {
    const Bytes record = RecordOf(language, Syllables(64));
    for (std::size_t i = 1292; i < 1420; ++i) EXPECT_EQ(record[i], 0) << i;
    for (std::size_t i = 1904; i < 2544; ++i) EXPECT_EQ(record[i], 0) << i;
  }
}

TEST(AlignInfo, WaveformIsKeptInStepsOf128) {
  RecordingArrays arrays = Syllables(1);
  arrays.wave[0] = 29490;
  arrays.wave[1] = 127;
  arrays.wave[2] = 128;
  const Bytes record = RecordOf(kLanguageEnglish, arrays);
  EXPECT_EQ(record[1548], 230);
  EXPECT_EQ(record[1549], 0);
  EXPECT_EQ(record[1550], 1);
}

TEST(AlignInfo, AZeroByteFollowsThePhonemes) {
  const Bytes record = RecordOf(kLanguageEnglish, Syllables(3));
  EXPECT_EQ(std::string(record.begin() + 12, record.begin() + 16), std::string("aaa\0", 4));
}

// One more than there is room for, of each.
TEST(AlignInfo, CountsThatDoNotFitLeaveTheBufferAlone) {
  struct Case {
    int phonemes, syllables, words;
    const char* text;
  };
  for (const Case& c :
       {Case{128, 64, 64, "128 phonemes, more than 127"},
        Case{65, 65, 1, "65 syllables, more than 64"}, Case{65, 1, 65, "65 words, more than 64"},
        Case{512, 512, 256, "512 phonemes, more than 127"}}) {
    RecordingArrays arrays = Syllables(c.phonemes);
    arrays.syllable_start.resize(static_cast<std::size_t>(c.syllables));
    arrays.word_start.resize(static_cast<std::size_t>(c.words));
    MadeAudio audio(kLanguageChinese);
    Fill(audio, arrays);
    test::MessageCapture messages;
    Bytes buffer(kAlignInfoSize, 0xAA);
    EXPECT_EQ(audio.GetAlignInfo(buffer.data()), -1);
    EXPECT_EQ(messages.Of(MessageStream::kError),
              std::string("ERROR in AnalyzedAudio::GetAlignInfo(), ") + c.text + "\n");
    EXPECT_EQ(buffer, Bytes(kAlignInfoSize, 0xAA));
  }
}

TEST(AlignInfo, TheMostThatFits) {
  RecordingArrays arrays = Syllables(127);
  arrays.syllable_start.resize(64);
  arrays.word_start.resize(64);
  const Bytes record = RecordOf(kLanguageChinese, arrays);
  EXPECT_EQ(Int16At(record, 4), 127);
  EXPECT_EQ(Int16At(record, 6), 64);
  EXPECT_EQ(Int16At(record, 8), 64);
  EXPECT_EQ(record[12 + 126], 'a');
  EXPECT_EQ(record[12 + 127], 0);
}

TEST(AlignInfo, ValuesThatNoAnalysisMakesAreNoUndefinedBehaviour) {
  RecordingArrays arrays = Syllables(6);
  const double infinity = std::numeric_limits<double>::infinity();
  arrays.syllable_intensity = {infinity, -infinity, std::nan(""), 1e300, -1e300, 1e-300};
  arrays.tone_prob[0] = {infinity, -infinity, std::nan(""), 1e300, -327.679};
  arrays.syllable_pitch[0] = std::numeric_limits<int>::max();
  arrays.start[0] = std::numeric_limits<int>::min();
  arrays.wave[0] = std::numeric_limits<int>::min();
  const Bytes record = RecordOf(kLanguageChinese, arrays);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(Int16At(record, 1904 + 2 * i), 0);
  EXPECT_EQ(Int16At(record, 1912), -32767);
  std::array<std::uint8_t, kAlignInfoSize> bytes;
  std::ranges::copy(record, bytes.begin());
  const AlignInfo info = DecodeAlignInfo(bytes);
  EXPECT_EQ(info.syllable_intensity[0], std::numeric_limits<float>::infinity());
  EXPECT_EQ(info.syllable_intensity[3], std::numeric_limits<float>::infinity());
  EXPECT_EQ(info.syllable_intensity[4], -std::numeric_limits<float>::infinity());
  EXPECT_EQ(info.syllable_intensity[5], 0.0F);
}

TEST(AlignInfo, WithoutAlignmentOrBuffer) {
  test::MessageCapture messages;
  AnalyzedAudio fresh(kLanguageEnglish);
  Bytes buffer(kAlignInfoSize, 0xAA);
  EXPECT_EQ(fresh.GetAlignInfo(buffer.data()), -1);
  EXPECT_EQ(fresh.GetAlignInfo(nullptr), -1);
  AnalyzedAudio unknown(static_cast<LanguageType>(0));
  EXPECT_EQ(unknown.GetAlignInfo(buffer.data()), -1);
  EXPECT_EQ(buffer, Bytes(kAlignInfoSize, 0xAA));
  EXPECT_EQ(messages.All(),
            "ERROR in AnalyzedAudio::GetAlignInfo(), nothing is aligned\n"
            "ERROR in AnalyzedAudio::GetAlignInfo(), no buffer\n"
            "Error in AnalyzedAudio::AnalyzedAudio(), unknown Language Type\n"
            "ERROR in AnalyzedAudio::GetAlignInfo(), nothing is aligned\n");
}

TEST(AlignInfo, AlignedButNotAnalysedHasTheAlignmentOnly) {
  MadeAudio audio(kLanguageEnglish);
  Fill(audio, Syllables(2));
  audio.Hand().prosody = nullptr;
  audio.Hand().waveform = nullptr;
  const Bytes record = RecordOf(audio);
  EXPECT_EQ(Int16At(record, 4), 2);
  EXPECT_EQ(Int16At(record, 140 + 2), 1);
  for (std::size_t i = 780; i < 1420; ++i) EXPECT_EQ(record[i], 0) << i;
}

TEST(AlignInfo, ASentenceWithoutWordsIsARecordOfNothing) {
  RecordingArrays arrays;
  arrays.num_samples = 0x01020304;
  const Bytes record = RecordOf(kLanguageEnglish, arrays);
  EXPECT_EQ(Bytes(record.begin(), record.begin() + 4), (Bytes{4, 3, 2, 1}));
  EXPECT_EQ(Bytes(record.begin() + 4, record.end()), Bytes(kAlignInfoSize - 4, 0));
}

TEST(AlignInfo, ARecordThatNobodyFilledIsZero) {
  EXPECT_EQ(EncodeAlignInfo(AlignInfo()), (std::array<std::uint8_t, kAlignInfoSize>{}));
  EXPECT_EQ(DecodeAlignInfo(std::array<std::uint8_t, kAlignInfoSize>{}), AlignInfo());
}

TEST(AlignInfo, SoundCountsAreThoseThatThereIsRoomFor) {
  EXPECT_TRUE(HasSoundCounts(AlignInfo()));
  AlignInfo most;
  most.num_phonemes = 128;
  most.num_syllables = most.num_words = 64;
  EXPECT_TRUE(HasSoundCounts(most));
  for (std::int16_t AlignInfo::*const count :
       {&AlignInfo::num_phonemes, &AlignInfo::num_syllables, &AlignInfo::num_words}) {
    AlignInfo info = most;
    ++(info.*count);
    EXPECT_FALSE(HasSoundCounts(info));
    info.*count = -1;
    EXPECT_FALSE(HasSoundCounts(info));
    info.*count = 0;
    EXPECT_TRUE(HasSoundCounts(info));
  }
}

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
// Answers for every index, also where there is no such word.
class AnswersAlways final : public AnalyzedAudio {
 public:
  using AnalyzedAudio::AnalyzedAudio;
  int GetNumOfPhonemes() override { return 2; }
  const char* GetPhonemes() override { return "abcdef"; }
  int GetPhonemeStartSampleNum(int phon) override { return 220 * (phon + 1); }
  int GetPhonemeEndSampleNum(int phon) override { return 220 * (phon + 2); }
  int GetNumOfSyllables() override { return 2; }
  int GetSyllableStartPosition(int syl) override { return syl + 1; }
  int GetSyllablePitch(int syl) override { return syl + 100; }
  int GetSyllableDuration(int syl) override { return syl + 1; }
  double GetSyllableIntensity(int syl) override { return syl + 1.0; }
  int GetSyllableToneOrStress(int) override { return 4; }
  double GetSylToneProb(int, int) override { return 0.5; }
  int GetNumOfWords() override { return m_words; }
  int GetWordStartPosition(int word) override { return word + 5; }

  int m_words = 2;
};
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

TEST(AlignInfo, NoMoreIsAskedForThanThereIs) {
  AnswersAlways audio(kLanguageChinese);
  AlignInfo info;
  ASSERT_EQ(TakeDown(audio, info), 0);
  EXPECT_EQ(info.phonemes[1], 'b');
  EXPECT_EQ(info.phonemes[2], '\0');
  EXPECT_EQ(info.phoneme_start[1], 2);
  EXPECT_EQ(info.phoneme_start[2], 0);
  EXPECT_EQ(info.phoneme_end[1], 3);
  EXPECT_EQ(info.phoneme_end[2], 0);
  EXPECT_EQ(info.syllable_start[1], 2);
  EXPECT_EQ(info.syllable_start[2], 0);
  EXPECT_EQ(info.syllable_pitch[2], 0);
  EXPECT_EQ(info.syllable_duration[2], 0);
  EXPECT_EQ(info.syllable_intensity[2], 0.0F);
  EXPECT_EQ(info.tone_or_stress[1], 4);
  EXPECT_EQ(info.tone_or_stress[2], 0);
  EXPECT_EQ(info.tone_prob[1][4], 50);
  EXPECT_EQ(info.tone_prob[2][0], 0);
  EXPECT_EQ(info.word_start[1], 6);
  EXPECT_EQ(info.word_start[2], 0);
  audio.m_words = 0;
  ASSERT_EQ(TakeDown(audio, info), 0);
  EXPECT_EQ(info.word_start[0], 0);
}

// Every byte of a record belongs to one field, and to one only.
TEST(AlignInfo, DecodingAndEncodingGivesTheSameBytes) {
  std::array<std::uint8_t, kAlignInfoSize> bytes;
  unsigned state = 1;
  for (int round = 0; round < 100; ++round) {
    for (std::uint8_t& byte : bytes) {
      state = state * 1664525u + 1013904223u;
      byte = static_cast<std::uint8_t>(state >> 24);
    }
    ASSERT_EQ(EncodeAlignInfo(DecodeAlignInfo(bytes)), bytes);
  }
}

}  // namespace
}  // namespace veral3
