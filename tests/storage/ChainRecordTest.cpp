// Whole recordings to their records, and learners graded against tutors analysed and tutors read
// back, against results computed by an independent implementation.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/AlignInfo.h"
#include "grading/GradedAudio.h"
#include "storage/SavedAlignedAudio.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using nlohmann::json;
using Record = std::array<std::uint8_t, kAlignInfoSize>;

class ChainRecord : public testing::TestWithParam<int> {
 protected:
  ChainRecord() {
    test::LoadSmallEngine();
    m_case = test::LoadVectorJson("chain.json")["cases"][static_cast<std::size_t>(GetParam())];
  }

  LanguageType Language() const { return static_cast<LanguageType>(m_case["language"].get<int>()); }

  // `who`: "learner" or "tutor".
  void Analyse(AnalyzedAudio& audio, const char* who) {
    for (const json& sentence : m_case["sentences"]) {
      audio.AddPossibleSentence(sentence.get<std::string>().c_str());
    }
    auto samples = test::LoadVector<std::int16_t>(m_case[who]["samples"].get<std::string>());
    const auto count = static_cast<std::uint32_t>(samples.size());
    ASSERT_GE(audio.Align(count, samples.data()), 0);
    ASSERT_EQ(audio.Analyze(count, samples.data()), 0);
  }

  Record ReferenceRecord(const char* who) {
    const auto bytes = test::LoadVector<std::uint8_t>(m_case[who]["record"].get<std::string>());
    Record record{};
    EXPECT_EQ(bytes.size(), record.size());
    std::copy_n(bytes.begin(), std::min(bytes.size(), record.size()), record.begin());
    return record;
  }

  void Load(SavedAlignedAudio& audio, Record record) {
    HLYFile file;
    file.SetHLYVersion(5);
    file.SetAlignInfo(record.data(), static_cast<int>(record.size()));
    ASSERT_EQ(audio.LoadFromHLY(&file), 0);
  }

  json m_case;
};

Record RecordOf(AnalyzedAudio& audio) {
  Record record;
  EXPECT_EQ(audio.GetAlignInfo(record.data()), 0);
  return record;
}

template <typename A, typename B>
void ExpectClose(const A& actual, const B& expected, int tolerance, const char* what) {
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], tolerance) << what << " " << i;
  }
}

// The reference tracks pitch in arithmetic of its own: within 2 Hz, and its tone classifier follows
// from that. All else is exact.
TEST_P(ChainRecord, RecordsAreThoseOfTheReference) {
  for (const char* who : {"learner", "tutor"}) {
    SCOPED_TRACE(who);
    AnalyzedAudio audio(Language());
    Analyse(audio, who);
    AlignInfo got = DecodeAlignInfo(RecordOf(audio));
    AlignInfo expected = DecodeAlignInfo(ReferenceRecord(who));
    ExpectClose(got.syllable_pitch, expected.syllable_pitch, 2, "pitch");
    ExpectClose(got.pitch_contour, expected.pitch_contour, 3, "contour");
    for (std::size_t s = 0; s < got.tone_prob.size(); ++s) {
      ExpectClose(got.tone_prob[s], expected.tone_prob[s], 2, "tones");
    }
    got.syllable_pitch = expected.syllable_pitch;
    got.pitch_contour = expected.pitch_contour;
    got.tone_prob = expected.tone_prob;
    EXPECT_TRUE(got == expected);
  }
}

void ExpectGraded(GradedAudio& audio, int result, const json& expected) {
  EXPECT_EQ(result, expected["result"]);
  EXPECT_EQ(audio.GetTotalScore(), expected["total"]);
  EXPECT_EQ(audio.GetPronunScore(), expected["pronun"]);
  EXPECT_EQ(audio.GetPitchScore(), expected["pitch"]);
  EXPECT_EQ(audio.GetTimingScore(), expected["timing"]);
  EXPECT_EQ(audio.GetIntensityScore(), expected["intensity"]);
  const auto list = [](int count, auto get) {
    json values = json::array();
    for (int i = 0; i < count; ++i) values.push_back(get(i));
    return values;
  };
  const int syllables = audio.GetNumOfSyllables();
  const int words = audio.GetNumOfWords();
  const auto of_phonemes = [&](int i) { return audio.GetPhonemePonunScore(i); };
  EXPECT_EQ(list(audio.GetNumOfPhonemes(), of_phonemes), expected["phoneme_pronun"]);
  const std::pair<const char*, int (GradedAudio::*)(int)> of_syllables[] = {
      {"syl_pronun", &GradedAudio::GetSyllablePronunScore},
      {"syl_pitch", &GradedAudio::GetSyllablePitchScore},
      {"syl_timing", &GradedAudio::GetSyllableTimingScore},
      {"syl_intensity", &GradedAudio::GetSyllableIntensityScore}};
  for (const auto& [key, score] : of_syllables) {
    EXPECT_EQ(list(syllables, [&, get = score](int i) { return (audio.*get)(i); }), expected[key])
        << key;
  }
  const std::pair<const char*, int (GradedAudio::*)(int)> of_words[] = {
      {"word_pronun", &GradedAudio::GetWordPronunScore},
      {"word_pitch", &GradedAudio::GetWordPitchScore},
      {"word_timing", &GradedAudio::GetWordTimingScore},
      {"word_intensity", &GradedAudio::GetWordIntensityScore},
      {"word_total", &GradedAudio::GetWordScore}};
  for (const auto& [key, score] : of_words) {
    EXPECT_EQ(list(words, [&, get = score](int i) { return (audio.*get)(i); }), expected[key])
        << key;
  }
  const std::pair<const char*, char (GradedAudio::*)(int)> advice[] = {
      {"pitch_advice", &GradedAudio::GetSyllablePitchAdvice},
      {"timing_advice", &GradedAudio::GetSyllableTimingAdvice},
      {"intensity_advice", &GradedAudio::GetSyllableIntensityAdvice}};
  for (const auto& [key, letter] : advice) {
    std::string letters;
    for (int i = 0; i < syllables; ++i) letters += (audio.*letter)(i);
    EXPECT_EQ(letters, expected[key]) << key;
  }
  EXPECT_EQ(list(syllables, [&](int i) { return audio.GetSyllableUnnecessaryPause(i); }),
            expected["unnecessary_pause"]);
  const std::pair<const char*, double (GradedAudio::*)(int)> contrasts[] = {
      {"word_pitch_contrast", &GradedAudio::GetWordPitchConstrast},
      {"word_timing_contrast", &GradedAudio::GetWordTimingConstrast},
      {"word_intensity_contrast", &GradedAudio::GetWordIntensityConstrast}};
  for (const auto& [key, contrast] : contrasts) {
    for (int i = 0; i < words; ++i) {
      const json& value = expected[key][static_cast<std::size_t>(i)];
      if (value.is_null()) continue;
      EXPECT_NEAR((audio.*contrast)(i), value.get<double>(), 1e-12) << key;
    }
  }
}

TEST_P(ChainRecord, GradesAgainstATutorAnalysed) {
  GradedAudio learner(Language());
  Analyse(learner, "learner");
  AnalyzedAudio tutor(Language());
  Analyse(tutor, "tutor");
  ExpectGraded(learner, learner.GradeAgainstTutor(&tutor), m_case["grade_analysed_tutor"]);
}

TEST_P(ChainRecord, GradesAgainstATutorReadBack) {
  GradedAudio learner(Language());
  Analyse(learner, "learner");
  SavedAlignedAudio reference(Language());
  Load(reference, ReferenceRecord("tutor"));
  ExpectGraded(learner, learner.GradeAgainstTutor(&reference), m_case["grade_saved_tutor"]);

  AnalyzedAudio tutor(Language());
  Analyse(tutor, "tutor");
  SavedAlignedAudio own(Language());
  Load(own, RecordOf(tutor));
  ExpectGraded(learner, learner.GradeAgainstTutor(&own), m_case["grade_saved_tutor"]);
}

INSTANTIATE_TEST_SUITE_P(Languages, ChainRecord, testing::Values(0, 1, 2));

}  // namespace
}  // namespace veral3
