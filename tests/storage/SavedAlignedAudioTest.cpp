#include "storage/SavedAlignedAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "core/AlignInfo.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using nlohmann::json;
using Record = std::array<std::uint8_t, kAlignInfoSize>;

static_assert(!std::has_virtual_destructor_v<SavedAlignedAudio>);

int Load(SavedAlignedAudio& audio, Record record, const wchar_t* sentence = L"A B",
         std::uint8_t version = 5) {
  HLYFile file;
  file.SetHLYVersion(version);
  file.SetSentence(sentence);
  file.SetAlignInfo(record.data(), static_cast<int>(record.size()));
  return audio.LoadFromHLY(&file);
}

int Load(SavedAlignedAudio& audio, const AlignInfo& info) {
  return Load(audio, EncodeAlignInfo(info));
}

class SavedAlignedAudioTest : public testing::Test {
 protected:
  test::MessageCapture m_messages;
};

TEST_F(SavedAlignedAudioTest, ReadsBackTheVectors) {
  for (const json& entry : test::LoadVectorJson("record.json")["cases"]) {
    SCOPED_TRACE(entry["name"].get<std::string>());
    const auto bytes = test::LoadVector<std::uint8_t>(entry["record"].get<std::string>());
    Record record;
    ASSERT_EQ(bytes.size(), record.size());
    std::ranges::copy(bytes, record.begin());
    SavedAlignedAudio audio(static_cast<LanguageType>(entry["language"].get<int>()));
    ASSERT_EQ(Load(audio, record), 0);
    const json& expected = entry["read_back"];
    EXPECT_EQ(audio.GetLanguageType(), expected["language"]);
    EXPECT_EQ(audio.GetNumOfSamples(), expected["n_samples"]);
    EXPECT_EQ(audio.GetNumOfPhonemes(), expected["num_phonemes"]);
    EXPECT_EQ(audio.GetNumOfSyllables(), expected["num_syllables"]);
    EXPECT_EQ(audio.GetNumOfWords(), expected["num_words"]);
    EXPECT_EQ(audio.GetUttNumOfPitchSegments(), expected["utt_segments"]);
    EXPECT_EQ(audio.GetPhonemes(), expected["phonemes"].get<std::string>());
    EXPECT_EQ(audio.GetUttStartSampleNum(), expected["utt_start"]);
    EXPECT_EQ(audio.GetUttEndSampleNum(), expected["utt_end"]);
    const auto expect = [&](const char* key, auto get) {
      const json& values = expected[key];
      ASSERT_FALSE(values.empty()) << key;
      for (std::size_t i = 0; i < values.size(); ++i) {
        const json value = get(static_cast<int>(i));
        EXPECT_EQ(value, values[i]) << key << " " << i;
      }
    };
    expect("start", [&](int i) { return audio.GetPhonemeStartSampleNum(i); });
    expect("end", [&](int i) { return audio.GetPhonemeEndSampleNum(i); });
    expect("syl_start", [&](int i) { return audio.GetSyllableStartPosition(i); });
    expect("syl_pitch", [&](int i) { return audio.GetSyllablePitch(i); });
    expect("syl_duration", [&](int i) { return audio.GetSyllableDuration(i); });
    expect("syl_intensity", [&](int i) { return audio.GetSyllableIntensity(i); });
    expect("word_start", [&](int i) { return audio.GetWordStartPosition(i); });
    expect("word_pitch", [&](int i) { return audio.GetWordPitch(i); });
    expect("wave", [&](int i) { return audio.GetWaveY(i); });
    expect("pitch_contour", [&](int i) { return audio.GetPitchContour(i); });
    expect("intensity_contour", [&](int i) { return audio.GetIntensityContour(i); });
    if (entry["language"] != 2) continue;
    expect("syl_tone", [&](int i) { return audio.GetSyllableToneOrStress(i); });
    expect("tone_prob", [&](int i) {
      json row;
      for (int k = 0; k < 5; ++k) row.push_back(audio.GetSylToneProb(i, k));
      return row;
    });
  }
}

// The pitch of a word tells which syllables are its own.
TEST_F(SavedAlignedAudioTest, WordsAreMadeOfSyllables) {
  for (const json& entry : test::LoadVectorJson("record.json")["word_tables"]) {
    AlignInfo info;
    const auto syllables = entry["syl_start"].get<std::vector<std::int16_t>>();
    const auto words = entry["word_start"].get<std::vector<std::int16_t>>();
    std::ranges::copy(syllables, info.syllable_start.begin());
    std::ranges::copy(words, info.word_start.begin());
    info.num_syllables = static_cast<std::int16_t>(syllables.size());
    info.num_words = static_cast<std::int16_t>(words.size());
    for (std::size_t i = 0; i < syllables.size(); ++i) {
      info.syllable_pitch[i] = static_cast<std::int16_t>(1 << 2 * i);
    }
    SavedAlignedAudio audio(kLanguageEnglish);
    ASSERT_EQ(Load(audio, info), 0);
    for (std::size_t w = 0; w < words.size(); ++w) {
      const int first = entry["first"][w], count = entry["per_word"][w];
      int sum = 0;
      for (int i = first; i < first + count; ++i) sum += 1 << 2 * i;
      EXPECT_EQ(audio.GetWordPitch(static_cast<int>(w)), sum / count) << entry.dump();
    }
  }
}

TEST_F(SavedAlignedAudioTest, WordTables) {
  AlignInfo info;
  info.num_syllables = 5;
  info.num_words = 3;
  info.syllable_start = {0, 1, 3, 5, 7};
  info.word_start = {0, 3, 7};
  info.syllable_pitch = {100, 201, 300, 401, 50};
  SavedAlignedAudio audio(kLanguageEnglish);
  ASSERT_EQ(Load(audio, info), 0);
  EXPECT_EQ(audio.GetWordPitch(0), 150);  // 150.5
  EXPECT_EQ(audio.GetWordPitch(1), 350);
  EXPECT_EQ(audio.GetWordPitch(2), 50);
  EXPECT_EQ(audio.GetWordPitch(3), 0);
  EXPECT_EQ(audio.GetWordPitch(-1), 0);
}

TEST_F(SavedAlignedAudioTest, AWordWithoutSyllablesHasNoPitch) {
  AlignInfo info;
  info.num_syllables = 1;
  info.num_words = 3;
  info.word_start = {0, 0, 9};
  info.syllable_pitch = {100};
  SavedAlignedAudio audio(kLanguageEnglish);
  ASSERT_EQ(Load(audio, info), 0);
  EXPECT_EQ(audio.GetWordPitch(0), 0);
  EXPECT_EQ(audio.GetWordPitch(1), 100);
  EXPECT_EQ(audio.GetWordPitch(2), 0);
}

TEST_F(SavedAlignedAudioTest, LoadVectors) {
  for (const json& entry : test::LoadVectorJson("record.json")["load_from_hly"]) {
    SCOPED_TRACE(entry.dump());
    std::vector<unsigned char> bytes(3000, 0);
    HLYFile file;
    file.SetHLYVersion(entry["version"]);
    file.SetAlignInfo(bytes.data(), entry["size"]);
    SavedAlignedAudio audio(kLanguageEnglish);
    m_messages.Clear();
    EXPECT_EQ(audio.LoadFromHLY(&file), entry["result"]);
    EXPECT_EQ(m_messages.Of(MessageStream::kError), entry["stderr"].get<std::string>());
    EXPECT_EQ(m_messages.Entries().size(), entry["stderr"].get<std::string>().empty() ? 0u : 1u);
  }
}

TEST_F(SavedAlignedAudioTest, TheLongerRecordsFirstBytesCount) {
  std::vector<unsigned char> bytes(2600, 0xEE);
  AlignInfo info;
  info.num_samples = 1234;
  std::ranges::copy(EncodeAlignInfo(info), bytes.begin());
  HLYFile file;
  file.SetHLYVersion(5);
  file.SetAlignInfo(bytes.data(), 2600);
  SavedAlignedAudio audio(kLanguageEnglish);
  EXPECT_EQ(audio.LoadFromHLY(&file), 0);
  EXPECT_EQ(audio.GetNumOfSamples(), 1234);
}

TEST_F(SavedAlignedAudioTest, WhatIsRefusedLeavesTheRecordingAsItWas) {
  AlignInfo info;
  info.num_samples = 1234;
  SavedAlignedAudio audio(kLanguageEnglish);
  ASSERT_EQ(Load(audio, EncodeAlignInfo(info), L"FIRST"), 0);
  info.num_samples = 99;

  EXPECT_EQ(Load(audio, EncodeAlignInfo(info), L"SECOND", 4), -1);
  EXPECT_EQ(audio.GetMatchedSentence(), L"FIRST");

  Record record = EncodeAlignInfo(info);
  HLYFile file;
  file.SetHLYVersion(5);
  file.SetSentence(L"THIRD");
  file.SetAlignInfo(record.data(), 2543);
  EXPECT_EQ(audio.LoadFromHLY(&file), -1);
  EXPECT_EQ(audio.GetMatchedSentence(), L"THIRD");  // taken before the size is looked at
  file.SetAlignInfo(nullptr, 2544);
  EXPECT_EQ(audio.LoadFromHLY(&file), -1);
  EXPECT_EQ(audio.LoadFromHLY(nullptr), -1);
  file.SetAlignInfo(record.data(), -1);
  EXPECT_EQ(audio.LoadFromHLY(&file), -1);
  EXPECT_EQ(audio.GetNumOfSamples(), 1234);
  EXPECT_EQ(m_messages.Entries().size(), 5u);
}

TEST_F(SavedAlignedAudioTest, RefusalsInWords) {
  Record record{};
  HLYFile file;
  SavedAlignedAudio audio(kLanguageEnglish);
  const auto said = [&](HLYFile* from, int result) {
    m_messages.Clear();
    EXPECT_EQ(audio.LoadFromHLY(from), result);
    EXPECT_EQ(m_messages.All(), m_messages.Of(MessageStream::kError));
    return m_messages.All();
  };
  EXPECT_EQ(said(nullptr, -1), "AlignedAudio::LoadFromHLY(): Error, no HLY file.\n");
  file.SetHLYVersion(4);
  file.SetAlignInfo(record.data(), 2544);
  EXPECT_EQ(said(&file, -1),
            "AlignedAudio::LoadFromHLY(): Error, cannot load alined data from an old HLY file with "
            "Version = [\x04]\n");
  file.SetHLYVersion(5);
  EXPECT_EQ(said(&file, 0), "");
  file.SetAlignInfo(record.data(), 2543);
  EXPECT_EQ(said(&file, -1),
            "AlignedAudio::LoadFromHLY(): Error, incorrect size of align info in HLY file.\n");
  file.SetAlignInfo(nullptr, 2544);
  EXPECT_EQ(said(&file, -1), "AlignedAudio::LoadFromHLY(): Error, no align info in HLY file.\n");
  std::vector<unsigned char> longer(2545, 0);
  file.SetAlignInfo(longer.data(), 2545);
  EXPECT_EQ(said(&file, 0),
            "AlignedAudio::LoadFromHLY(): Warning, larger align info in the HLY file. Is this a "
            "new version of HLY file format?\n");
}

// A sentence for which there was no memory is not taken for an empty one.
TEST_F(SavedAlignedAudioTest, ALostSentenceIsRefused) {
  AlignInfo info;
  info.num_samples = 1234;
  SavedAlignedAudio audio(kLanguageEnglish);
  ASSERT_EQ(Load(audio, info), 0);
  info.num_samples = 99;
  Record record = EncodeAlignInfo(info);
  HLYFile file;
  file.SetHLYVersion(5);
  CString sentence(L"A");
  constexpr std::size_t kTooLong = std::numeric_limits<std::size_t>::max() / 4;
  sentence += std::wstring_view(L"B", kTooLong);  // found to be too long before it is read
  ASSERT_TRUE(sentence.IsLost());
  file.SetSentence(sentence);
  file.SetAlignInfo(record.data(), static_cast<int>(record.size()));
  EXPECT_EQ(audio.LoadFromHLY(&file), -1);
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "ERROR in SavedAlignedAudio::LoadFromHLY(), out of memory\n");
  EXPECT_EQ(audio.GetNumOfSamples(), 1234);
}

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

// An application's own kind of stored recording, which fails when it is asked.
class Failing final : public SavedAlignedAudio {
 public:
  using SavedAlignedAudio::SavedAlignedAudio;
  int GetNumOfWords() override { throw std::runtime_error("no words here"); }
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

TEST_F(SavedAlignedAudioTest, ADumpThatFailsIsAMessage) {
  Failing audio(kLanguageEnglish);
  audio.DumpData();
  ASSERT_FALSE(m_messages.Entries().empty());
  EXPECT_EQ(m_messages.Entries().back().text,
            "ERROR in SavedAlignedAudio::DumpData(), no words here\n");
}

// Each count has its own bound: what lies behind it in the record is not read.
TEST_F(SavedAlignedAudioTest, CountsBoundTheirArrays) {
  AlignInfo info;
  info.num_phonemes = 3;
  info.num_syllables = 2;
  info.num_words = 1;
  info.phonemes = {'a', 'b', 'c', 'd'};
  info.phoneme_start = {1, 2, 3, 4};
  info.phoneme_end = {2, 3, 4, 5};
  info.syllable_start = {0, 1, 2};
  info.syllable_pitch = {100, 201, 900};
  info.syllable_duration = {10, 20, 30};
  info.syllable_intensity = {1.0F, 2.0F, 3.0F};
  info.tone_or_stress = {4, 5, 6};
  info.word_start = {0, 1};
  info.num_pitch_segments = 9;
  info.tone_prob[1] = {1, 2, 3, 4, 5};
  info.wave[99] = 7;
  info.pitch_contour[127] = 8;
  info.intensity_contour[0] = 9;
  info.intensity_contour[127] = 10;
  SavedAlignedAudio audio(kLanguageChinese);
  ASSERT_EQ(Load(audio, info), 0);
  EXPECT_EQ(audio.GetPhonemeStartSampleNum(2), 660);
  EXPECT_EQ(audio.GetPhonemeStartSampleNum(3), 0);
  EXPECT_EQ(audio.GetPhonemeEndSampleNum(2), 880);
  EXPECT_EQ(audio.GetPhonemeEndSampleNum(3), 0);
  EXPECT_EQ(audio.GetUttStartSampleNum(), 220);
  EXPECT_EQ(audio.GetUttEndSampleNum(), 880);
  EXPECT_EQ(audio.GetSyllableStartPosition(1), 1);
  EXPECT_EQ(audio.GetSyllableStartPosition(2), 0);
  EXPECT_EQ(audio.GetSyllablePitch(1), 201);
  EXPECT_EQ(audio.GetSyllablePitch(2), 0);
  EXPECT_EQ(audio.GetSyllableDuration(1), 20);
  EXPECT_EQ(audio.GetSyllableDuration(2), 0);
  EXPECT_EQ(audio.GetSyllableIntensity(1), 2.0);
  EXPECT_EQ(audio.GetSyllableIntensity(2), 0.0);
  EXPECT_EQ(audio.GetSyllableToneOrStress(1), 5);
  EXPECT_EQ(audio.GetSyllableToneOrStress(2), 0);
  EXPECT_EQ(audio.GetWordStartPosition(0), 0);
  EXPECT_EQ(audio.GetWordStartPosition(1), 0);
  EXPECT_EQ(audio.GetWordPitch(0), 150);
  EXPECT_EQ(audio.GetUttNumOfPitchSegments(), 9);
  EXPECT_DOUBLE_EQ(audio.GetSylToneProb(1, 0), 0.01);
  EXPECT_DOUBLE_EQ(audio.GetSylToneProb(1, 4), 0.05);
  EXPECT_EQ(audio.GetWaveY(99), 7 * 128);
  EXPECT_EQ(audio.GetPitchContour(127), 8);
  EXPECT_EQ(audio.GetIntensityContour(0), 9);
  EXPECT_EQ(audio.GetIntensityContour(127), 10);
  EXPECT_EQ(audio.GetIntensityContour(128), 0);
  EXPECT_EQ(audio.GetPitchContour(-1), 0);
}

TEST_F(SavedAlignedAudioTest, CountsThatNoRecordHasAreRefused) {
  struct Case {
    std::int16_t phonemes, syllables, words;
    int result;
  };
  for (const Case& c :
       {Case{128, 64, 64, 0}, Case{129, 64, 64, -1}, Case{128, 65, 64, -1}, Case{128, 64, 65, -1},
        Case{-1, 0, 0, -1}, Case{0, -1, 0, -1}, Case{0, 0, -1, -1}, Case{32767, 32767, 32767, -1},
        Case{-32768, -32768, -32768, -1}, Case{0, 0, 0, 0}}) {
    AlignInfo info;
    info.num_phonemes = c.phonemes;
    info.num_syllables = c.syllables;
    info.num_words = c.words;
    SavedAlignedAudio audio(kLanguageEnglish);
    m_messages.Clear();
    EXPECT_EQ(Load(audio, info), c.result);
    EXPECT_EQ(m_messages.All(),
              c.result == 0
                  ? ""
                  : "AlignedAudio::LoadFromHLY(): Error, damaged align info in HLY file: " +
                        std::to_string(c.phonemes) + " phonemes, " + std::to_string(c.syllables) +
                        " syllables, " + std::to_string(c.words) + " words.\n");
  }
}

TEST_F(SavedAlignedAudioTest, AnIntensityThatIsNoFiniteNumberIsRefused) {
  using Limits = std::numeric_limits<float>;
  AlignInfo info;
  info.num_samples = 1234;
  info.num_syllables = 3;
  info.syllable_intensity = {1.0F, -2.0F, Limits::max()};
  info.syllable_intensity[3] = Limits::infinity();  // no syllable's
  SavedAlignedAudio audio(kLanguageEnglish);
  ASSERT_EQ(Load(audio, info), 0);
  EXPECT_EQ(m_messages.All(), "");
  info.num_samples = 99;
  for (const float bad : {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()}) {
    AlignInfo damaged = info;
    for (const std::size_t syllable : {2u, 1u, 0u}) {
      m_messages.Clear();
      damaged.syllable_intensity[syllable] = bad;  // the first bad one is named
      EXPECT_EQ(Load(audio, damaged), -1) << bad;
      EXPECT_EQ(
          m_messages.All(),
          "AlignedAudio::LoadFromHLY(): Error, damaged align info in HLY file: the intensity of "
          "syllable " +
              std::to_string(syllable) + " is not a finite number.\n");
      EXPECT_EQ(audio.GetNumOfSamples(), 1234);
      EXPECT_EQ(audio.GetSyllableIntensity(1), -2.0);
    }
  }
}

TEST_F(SavedAlignedAudioTest, APhonemeStringWithoutAnEndEndsWithItsField) {
  AlignInfo info;
  info.num_phonemes = 128;
  info.phonemes.fill('a');
  info.phoneme_start.fill(0x6161);  // what lies behind the field
  SavedAlignedAudio audio(kLanguageEnglish);
  ASSERT_EQ(Load(audio, info), 0);
  EXPECT_EQ(std::string(audio.GetPhonemes()), std::string(128, 'a'));
}

TEST_F(SavedAlignedAudioTest, UnitsOfTheRecord) {
  AlignInfo info;
  info.num_phonemes = 2;
  info.num_syllables = 1;
  info.phoneme_end = {10, 20};
  info.syllable_duration = {2640};
  info.syllable_intensity = {0.1F};
  info.tone_prob[0] = {99, 0, 0, 0, 1};
  info.wave[0] = 230;
  info.wave[1] = 255;
  info.pitch_contour[127] = 255;
  SavedAlignedAudio audio(kLanguageChinese);
  ASSERT_EQ(Load(audio, info), 0);
  EXPECT_EQ(audio.GetPhonemeEndSampleNum(0), 2200);
  EXPECT_EQ(audio.GetUttEndSampleNum(), 4400);
  EXPECT_EQ(audio.GetSyllableDuration(0), 2640);
  EXPECT_EQ(audio.GetSyllableIntensity(0), static_cast<double>(0.1F));
  EXPECT_EQ(audio.GetSylToneProb(0, 0), 99 * 0.01);
  EXPECT_EQ(audio.GetWaveY(0), 29440);
  EXPECT_EQ(audio.GetWaveY(1), 32640);
  EXPECT_EQ(audio.GetPitchContour(127), 255);
}

// An index is checked against the counts, so nothing is told of what nobody wrote.
TEST_F(SavedAlignedAudioTest, IndicesOutOfRangeReadZero) {
  Record bytes;
  bytes.fill(0x55);
  AlignInfo info = DecodeAlignInfo(bytes);
  info.num_phonemes = 2;
  info.num_syllables = 2;
  info.num_words = 2;
  SavedAlignedAudio audio(kLanguageChinese);
  ASSERT_EQ(Load(audio, info), 0);
  EXPECT_NE(audio.GetSylToneProb(1, 4), 0.0);
  for (const int i :
       {-1, 2, 64, 128, 100000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(audio.GetPhonemeStartSampleNum(i), 0);
    EXPECT_EQ(audio.GetPhonemeEndSampleNum(i), 0);
    EXPECT_EQ(audio.GetSyllableStartPosition(i), 0);
    EXPECT_EQ(audio.GetWordStartPosition(i), 0);
    EXPECT_EQ(audio.GetSyllablePitch(i), 0);
    EXPECT_EQ(audio.GetSylToneProb(i, 0), 0.0);
    EXPECT_EQ(audio.GetSyllableToneOrStress(i), 0);
    EXPECT_EQ(audio.GetSyllableDuration(i), 0);
    EXPECT_EQ(audio.GetSyllableIntensity(i), 0.0);
    EXPECT_EQ(audio.GetWordPitch(i), 0);
  }
  EXPECT_EQ(audio.GetSylToneProb(0, 5), 0.0);
  EXPECT_EQ(audio.GetSylToneProb(0, -1), 0.0);
  EXPECT_EQ(audio.GetWaveY(100), 0);
  EXPECT_EQ(audio.GetWaveY(-1), 0);
  EXPECT_EQ(audio.GetPitchContour(128), 0);
  EXPECT_EQ(audio.GetIntensityContour(-1), 0);
}

TEST_F(SavedAlignedAudioTest, BeforeLoadingEverythingReadsZero) {
  SavedAlignedAudio audio(kLanguageJapanese);
  EXPECT_EQ(audio.GetLanguageType(), kLanguageJapanese);
  EXPECT_STREQ(audio.GetPhonemes(), "");
  EXPECT_TRUE(audio.GetMatchedSentence().IsEmpty());
  EXPECT_EQ(audio.GetNumOfSamples(), 0);
  EXPECT_EQ(audio.GetNumOfPhonemes(), 0);
  EXPECT_EQ(audio.GetUttStartSampleNum(), 0);
  EXPECT_EQ(audio.GetUttEndSampleNum(), 0);
  EXPECT_EQ(audio.GetUttAveragePitch(), 0);
  EXPECT_EQ(audio.GetWaveY(0), 0);
  EXPECT_EQ(audio.GetWordPitch(0), 0);
  audio.DumpData();
}

TEST_F(SavedAlignedAudioTest, LoadingDoesNotChangeTheLanguage) {
  HLYFile file;
  file.SetHLYVersion(5);
  file.SetL2Type(HLYFile::kL2Chinese);
  Record record{};
  file.SetAlignInfo(record.data(), 2544);
  SavedAlignedAudio audio(kLanguageEnglish);
  ASSERT_EQ(audio.LoadFromHLY(&file), 0);
  EXPECT_EQ(audio.GetLanguageType(), kLanguageEnglish);
}

TEST_F(SavedAlignedAudioTest, CopiesAreIndependentAndOutliveTheirSource) {
  AlignInfo info;
  info.num_samples = 1;
  SavedAlignedAudio assigned(kLanguageChinese);
  const auto copy_of_first = [&] {
    SavedAlignedAudio first(kLanguageEnglish);
    EXPECT_EQ(Load(first, EncodeAlignInfo(info), L"FIRST"), 0);
    SavedAlignedAudio copy(first);
    assigned = first;
    info.num_samples = 2;
    EXPECT_EQ(Load(first, EncodeAlignInfo(info), L"SECOND"), 0);
    EXPECT_EQ(first.GetNumOfSamples(), 2);
    return copy;
  };
  SavedAlignedAudio copy = copy_of_first();
  for (SavedAlignedAudio* audio : {&copy, &assigned}) {
    EXPECT_EQ(audio->GetNumOfSamples(), 1);
    EXPECT_EQ(audio->GetMatchedSentence(), L"FIRST");
    EXPECT_EQ(audio->GetLanguageType(), kLanguageEnglish);
  }
}

std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST_F(SavedAlignedAudioTest, DumpedToTheLetter) {
  AlignInfo info;
  info.num_samples = 5000;
  info.num_phonemes = 2;
  info.num_syllables = 2;
  info.num_words = 1;
  info.num_pitch_segments = 3;
  info.phonemes[0] = 'm';
  info.phonemes[1] = 'a';
  info.phoneme_start = {2, 5};
  info.phoneme_end = {5, 9};
  info.syllable_start = {0, 1};
  info.syllable_pitch = {200, 180};
  info.syllable_duration = {660, 880};
  info.syllable_intensity = {1.5F, 12345678.0F};
  info.tone_or_stress = {3, 4};
  info.tone_prob[0] = {1, 2, 3, 90, 4};
  info.word_start = {0};
  info.wave.fill(230);
  info.pitch_contour.fill(65);
  info.intensity_contour.fill(255);
  SavedAlignedAudio audio(kLanguageChinese);
  ASSERT_EQ(Load(audio, EncodeAlignInfo(info), L"\u5ABD\u554A"), 0);
  m_messages.Clear();
  audio.DumpData();
  const std::string expected =
      "----- SavedAlignedAudio::DumpData() -----\n"
      "Language Type = ZH\n"
      "GetMatchedSentence() = [\xE5\xAA\xBD\xE5\x95\x8A]\n"
      "Size of AlignInfo = 2544 Bytes\n"
      "--- Per Utterance ---\n"
      "GetNumOfSamples() = 5000\n"
      "GetNumOfPhonemes() = 2\n"
      "GetNumOfSyllables() = 2\n"
      "GetNumOfWords() = 1\n"
      "GetUttNumOfPitchSegments() = 3\n"
      "--- Per Phoneme ---\n"
      "m_strPhonemes = [ma]\n"
      "m_strPhonemes[0] = <m>\n"
      "m_strPhonemes[1] = <a>\n"
      "GetPhonemeStartSampleNum() = [440 1100 ]\n"
      "GetPhonemeEndSampleNum() = [1100 1980 ]\n"
      "--- Per Syllable ---\n"
      "GetSyllableStartPos() = [0 1 ]\n"
      "GetSyllablePitch() = [200 180 ]\n"
      "GetSyllableDuration() = [660 880 ]\n"
      "m_fSyllableIntensityArry = [1.5 1.23457e+07 ]\n"
      "--- Per Word ---\n"
      "GetWordStartPos() = [0 ]\n"
      "--- Chinese tones Per Syllable(=word) ---\n"
      "m_nSyllableToneOrStress = [3 4 ]\n"
      "m_nSyllableToneProb = [\n"
      "1 2 3 90 4 \n"
      "0 0 0 0 0 \n"
      "]\n"
      "--- Contour ---\n"
      "m_cWaveY = [" +
      Repeated("230 ", 100) +
      "]\n"
      "m_cPitchContour = [" +
      Repeated("65 ", 128) +
      "]\n"
      "m_cIntensityContour = [" +
      Repeated("255 ", 128) + "]\n";
  EXPECT_EQ(m_messages.All(), expected);
  EXPECT_EQ(m_messages.StandardOutput(), "");
  EXPECT_EQ(m_messages.Of(MessageStream::kWideError),
            "GetMatchedSentence() = [\xE5\xAA\xBD\xE5\x95\x8A]\n");
}

TEST_F(SavedAlignedAudioTest, DumpNamesTheLanguage) {
  for (const auto& [language, name] : {std::pair{1, "EN"}, std::pair{2, "ZH"}, std::pair{3, "JP"},
                                       std::pair{0, "Error!"}, std::pair{9, "Error!"}}) {
    m_messages.Clear();
    SavedAlignedAudio(static_cast<LanguageType>(language)).DumpData();
    EXPECT_THAT(m_messages.All(),
                testing::HasSubstr(std::string("Language Type = ") + name + "\n"));
  }
}

}  // namespace
}  // namespace veral3
