// Pairs of learner and tutor, graded step by step, against results computed by an independent
// implementation.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/TopSyllables.h"
#include "grading/GradedResult.h"
#include "grading/GradingCases.h"
#include "grading/IntensityGrading.h"
#include "grading/PhonProbGrader.h"
#include "grading/PitchGrading.h"
#include "grading/PronunciationGrading.h"
#include "grading/TimingGrading.h"
#include "grading/TotalScore.h"
#include "grading/WordGrading.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using nlohmann::json;

void ExpectClose(double actual, const json& expected, const std::string& what) {
  const double value = expected.get<double>();
  EXPECT_NEAR(actual, value, std::abs(value) * 1e-12) << what;
}

void ExpectClose(const std::vector<double>& actual, const json& expected, const std::string& what) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  for (std::size_t i = 0; i < actual.size(); ++i) ExpectClose(actual[i], expected[i], what);
}

// What a step left unset before is null in the expectations.
template <typename T>
void ExpectEqual(const std::vector<T>& actual, const json& expected, const std::string& what) {
  if (expected.is_null()) return;
  ASSERT_EQ(actual.size(), expected.size()) << what;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (expected[i].is_null()) continue;
    EXPECT_EQ(static_cast<int>(actual[i]), expected[i].get<int>()) << what << " " << i;
  }
}

void ExpectGraded(const GradedResult& graded, const json& expected) {
  ExpectClose(std::vector<double>(graded.timing_traits.begin(), graded.timing_traits.end()),
              expected["traits"], "traits");
  ExpectClose(graded.prob_good_timing, expected["prob_good_timing"], "prob_good_timing");
  ExpectClose(graded.pitch_segment_ratio, expected["pitch_segment_ratio"], "segment ratio");
}

class GradingVectors : public testing::TestWithParam<const char*> {};

// One pair through all steps, before and after the goodness factor.
void CheckPair(const json& pair, const std::string& name) {
  SCOPED_TRACE(name);
  const LearnerView learner = test::LearnerOf(pair["learner"]);
  const RecordingView tutor = test::TutorOf(pair["tutor"]);
  const json& expected = pair["expected"];
  test::MessageCapture messages;

  GradedResult graded;
  const int result = GradeAgainstTutor(
      learner, tutor, [&] { return pair["learner"]["prob_good_align"].get<double>(); }, graded);
  EXPECT_EQ(result, expected["result"]);
  if (expected.contains("err")) {
    EXPECT_EQ(messages.StandardError(), expected["err"]);
  }
  if (!expected.contains("traits")) return;  // refused before anything was graded
  ExpectGraded(graded, expected);
  for (const auto& [key, actual] :
       {std::pair{"timing_percent", &graded.syllable_timing_percent},
        std::pair{"syl_timing", &graded.syllable_timing},
        std::pair{"intensity_percent", &graded.syllable_intensity_percent},
        std::pair{"syl_intensity", &graded.syllable_intensity},
        std::pair{"syl_pitch", &graded.syllable_pitch},
        std::pair{"phoneme_pronun", &graded.phoneme_pronunciation},
        std::pair{"syl_pronun", &graded.syllable_pronunciation},
        std::pair{"word_pronun", &graded.words.pronunciation},
        std::pair{"word_pitch", &graded.words.pitch},
        std::pair{"word_timing", &graded.words.timing},
        std::pair{"word_intensity", &graded.words.intensity},
        std::pair{"word_total", &graded.words.total}}) {
    if (expected.contains(key)) ExpectEqual(*actual, expected[key], key);
  }
  if (result < 0) return;
  EXPECT_EQ(graded.timing_advice, expected["timing_advice"]);
  EXPECT_EQ(graded.intensity_advice, expected["intensity_advice"]);
  EXPECT_EQ(graded.pitch_advice, expected["pitch_advice"]);
  EXPECT_EQ(graded.components.timing, expected["timing"]);
  EXPECT_EQ(graded.components.intensity, expected["intensity"]);
  EXPECT_EQ(graded.components.pitch, expected["pitch"]);
  EXPECT_EQ(graded.components.pronunciation, expected["pronun"]);
  EXPECT_EQ(graded.total, expected["total"]);
  ExpectClose(graded.goodness_factor, expected["prob_good_utt"], "factor");
  std::vector<bool> pauses = graded.unnecessary_pause;
  ExpectEqual(pauses, expected["unnecessary_pause"], "pauses");
  for (const auto& [key, actual] :
       {std::pair{"word_pitch_contrast", &graded.word_pitch_contrast},
        std::pair{"word_timing_contrast", &graded.word_timing_contrast},
        std::pair{"word_intensity_contrast", &graded.word_intensity_contrast}}) {
    if (!expected.contains(key) || expected[key].is_null()) continue;
    for (std::size_t i = 0; i < expected[key].size(); ++i) {
      if (expected[key][i].is_null()) continue;
      ASSERT_LT(i, actual->size());
      ExpectClose((*actual)[i], expected[key][i], key);
    }
  }
}

TEST_P(GradingVectors, Pairs) {
  const json data = test::LoadVectorJson(GetParam());
  int number = 0;
  for (const json& pair : data["pairs"]) {
    CheckPair(pair,
              pair.contains("name") ? pair["name"].get<std::string>() : std::to_string(number));
    ++number;
    if (testing::Test::HasFailure() && number > 40) FAIL() << "after " << number << " pairs";
  }
  EXPECT_GE(number, 20);
}

INSTANTIATE_TEST_SUITE_P(All, GradingVectors,
                         testing::Values("grading_en.json", "grading_zh.json", "grading_ja.json",
                                         "grading_edges.json"));

TEST_P(GradingVectors, PronunciationAlone) {
  const json data = test::LoadVectorJson(GetParam());
  for (const json& pair : data["pairs"]) {
    if (!pair.contains("pronun_only")) continue;
    const LearnerView learner = test::LearnerOf(pair["learner"]);
    GradedResult graded;
    const json& expected = pair["pronun_only"];
    const int result = GradePronunciationOnly(
        learner, [&] { return pair["learner"]["prob_good_align"].get<double>(); }, graded);
    EXPECT_EQ(result, expected["result"]);
    ExpectEqual(graded.phoneme_pronunciation, expected["phoneme"], "phoneme");
    ExpectEqual(graded.syllable_pronunciation, expected["syllable"], "syllable");
    EXPECT_EQ(graded.components.pitch, 100);
    EXPECT_EQ(graded.components.timing, 100);
    EXPECT_EQ(graded.components.intensity, 100);
  }
}

class GradingEdges : public testing::Test {
 protected:
  const json m_edges = test::LoadVectorJson("grading_edges.json");
};

TEST_F(GradingEdges, PhonemeScores) {
  for (const char* key : {"phon_score", "phon_score_normaliser_squared"}) {
    for (const json& row : m_edges[key]) {
      const auto language = static_cast<LanguageType>(row[0].get<int>());
      const CPhonemeSet& set = *PhonemeSetOf(language);
      const char symbol = row[1].get<std::string>()[0];
      std::vector<double> distribution(64, 0.0);
      distribution[static_cast<std::size_t>(std::max(set.GetPhonemeIndex(symbol), 0))] = row[2];
      EXPECT_EQ(PhonProbGraderOf(language)->ComputePhonScore(symbol, distribution), row[3])
          << row.dump();
    }
  }
}

TEST_F(GradingEdges, SyllablesFromPhonemes) {
  const test::MessageCapture messages;
  for (const json& row : m_edges["syllable_raw"]) {
    const auto language = static_cast<LanguageType>(row[0].get<int>());
    const int score = CombineSyllable(*PhonemeSetOf(language), language, row[1].get<std::string>(),
                                      row[2].get<std::vector<int>>());
    EXPECT_EQ(score, row[3].is_null() ? -1 : row[3].get<int>()) << row.dump();
  }
}

TEST_F(GradingEdges, WeightsOfTheComponents) {
  for (const json& row : m_edges["combine"]) {
    const ComponentScores scores{row[2][0], row[2][1], row[2][2], row[2][3]};
    EXPECT_NEAR(CombineScores(static_cast<LanguageType>(row[0].get<int>()), row[1], scores),
                row[3].get<double>(), 1e-11)
        << row.dump();
  }
}

TEST_F(GradingEdges, Tones) {
  for (const json& row : m_edges["tone_score"]) {
    EXPECT_EQ(GradeTone(row[0].get<ToneRow>(), row[1].get<ToneRow>()), row[2]) << row.dump();
  }
}

TEST_F(GradingEdges, ChineseLoudness) {
  for (const json& row : m_edges["chinese_loudness"]) {
    std::string advice;
    const int percent[] = {row[0].get<int>()};
    EXPECT_EQ(GradeSyllableLoudness(percent, advice), row[1]) << row.dump();
    EXPECT_EQ(advice, row[2]) << row.dump();
  }
}

TEST_F(GradingEdges, TopThree) {
  for (const json& row : m_edges["top3"]) {
    const auto values = row["values"].get<std::vector<int>>();
    const auto list = [](const TopSyllables& top) {
      return std::vector<int>{top.first, top.second, top.third};
    };
    const std::span<const int> all(values);
    EXPECT_EQ(list(FindTopSyllables(all, TieGoesTo::kLater)), row["pitch"]);
    EXPECT_EQ(list(FindTopSyllables(all, TieGoesTo::kEarlier)), row["duration"]);
    EXPECT_EQ(list(FindTopSyllables(all, TieGoesTo::kEarlier)), row["intensity"]);
  }
}

TEST_F(GradingEdges, Words) {
  for (const json& row : m_edges["words"]) {
    const WordSpans words{row["first"].get<std::vector<std::int32_t>>(),
                          row["per_word"].get<std::vector<std::int32_t>>()};
    const auto of = [&](const char* key) { return row["syllables"][key].get<std::vector<int>>(); };
    const WordGrades grades =
        GradeWords(words, of("pronun"), of("pitch"), of("timing"), of("intensity"));
    ExpectEqual(grades.pronunciation, row["expected"]["word_pronun"], "pronun");
    ExpectEqual(grades.pitch, row["expected"]["word_pitch"], "pitch");
    ExpectEqual(grades.timing, row["expected"]["word_timing"], "timing");
    ExpectEqual(grades.intensity, row["expected"]["word_intensity"], "intensity");
    ExpectEqual(grades.total, row["expected"]["word_total"], "total");
  }
}

TEST_F(GradingEdges, GoodnessFactor) {
  for (const json& row : m_edges["factor"]) {
    ExpectClose(GoodnessFactor(row[0]), row[1], "factor");
  }
  EXPECT_EQ(GoodnessFactor(0.0), 0.0);
}

TEST_F(GradingEdges, PronunciationAloneTakesTheProbabilityItself) {
  const json& row = m_edges["pronun_only"];
  GradedResult graded;
  EXPECT_EQ(GradePronunciationOnly(
                test::LearnerOf(row["learner"]),
                [&] { return row["learner"]["prob_good_align"].get<double>(); }, graded),
            row["result"]);
  EXPECT_EQ(graded.components.pronunciation, row["pronun"]);
}

}  // namespace
}  // namespace veral3
