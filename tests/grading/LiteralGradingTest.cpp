// Every grading of many random pairs against a second one that shares no code with it: pauses that
// the tutor does not make, recordings of other counts, syllables that can't be scored.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "grading/GradedResult.h"
#include "grading/LiteralGrading.h"
#include "grading/PhonProbGrader.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::LiteralGrades;
using test::Pair;

constexpr int kPairs = 12000;

void ExpectClose(double actual, double expected, const char* what) {
  EXPECT_NEAR(actual, expected, std::abs(expected) * 1e-12) << what;
}

void ExpectClose(const std::vector<double>& actual, const std::vector<double>& expected,
                 const char* what) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  for (std::size_t i = 0; i < actual.size(); ++i) ExpectClose(actual[i], expected[i], what);
}

// What the steps before the pronunciation make, also where that then fails.
void ExpectSameSteps(const GradedResult& graded, const LiteralGrades& expected) {
  for (std::size_t i = 0; i < 3; ++i) {
    ExpectClose(graded.timing_traits[i], expected.agreement[i], "agreement");
  }
  ExpectClose(graded.prob_good_timing, expected.good_timing, "good timing");
  EXPECT_EQ(graded.pitch_segment_ratio, expected.segment_ratio);
  EXPECT_EQ(graded.components.timing, expected.timing);
  EXPECT_EQ(graded.components.intensity, expected.intensity);
  EXPECT_EQ(graded.components.pitch, expected.pitch);
  EXPECT_EQ(graded.syllable_timing, expected.syllable_timing);
  EXPECT_EQ(graded.syllable_intensity, expected.syllable_intensity);
  EXPECT_EQ(graded.syllable_pitch, expected.syllable_pitch);
  EXPECT_EQ(graded.syllable_timing_percent, expected.timing_percent);
  EXPECT_EQ(graded.syllable_intensity_percent, expected.intensity_percent);
  EXPECT_EQ(graded.unnecessary_pause, expected.pause);
  EXPECT_EQ(graded.timing_advice, expected.timing_advice);
  EXPECT_EQ(graded.intensity_advice, expected.intensity_advice);
  EXPECT_EQ(graded.pitch_advice, expected.pitch_advice);
  EXPECT_EQ(graded.correct_tone, expected.correct_tone);
  EXPECT_EQ(graded.student_tone, expected.student_tone);
  ExpectClose(graded.word_pitch_contrast, expected.pitch_contrast, "pitch contrast");
  ExpectClose(graded.word_timing_contrast, expected.timing_contrast, "timing contrast");
  ExpectClose(graded.word_intensity_contrast, expected.intensity_contrast, "intensity contrast");
  EXPECT_EQ(graded.phoneme_pronunciation, expected.phoneme_pronunciation);
  EXPECT_EQ(graded.syllable_pronunciation, expected.syllable_pronunciation);
}

void ExpectSame(const GradedResult& graded, const LiteralGrades& expected) {
  ExpectSameSteps(graded, expected);
  EXPECT_EQ(graded.components.pronunciation, expected.pronunciation);
  EXPECT_EQ(graded.words.pronunciation, expected.word_pronunciation);
  EXPECT_EQ(graded.words.pitch, expected.word_pitch);
  EXPECT_EQ(graded.words.timing, expected.word_timing);
  EXPECT_EQ(graded.words.intensity, expected.word_intensity);
  EXPECT_EQ(graded.words.total, expected.word_total);
  ExpectClose(graded.goodness_factor, expected.factor, "factor");
  EXPECT_EQ(graded.total, expected.total);
}

// How often what the pairs are there for came up.
struct Seen {
  int pauses = 0;
  int other_counts = 0;  // Chinese pairs of which one has more syllables
  int failed = 0;
  int refused = 0;
};

void Count(const Pair& pair, const LiteralGrades& grades, Seen& seen) {
  for (const bool pause : grades.pause) seen.pauses += pause ? 1 : 0;
  if (pair.learner.language == kLanguageChinese && !grades.refused &&
      pair.learner.NumSyllables() != pair.tutor.NumSyllables()) {
    ++seen.other_counts;
  }
  seen.failed += grades.failed ? 1 : 0;
  seen.refused += grades.refused ? 1 : 0;
}

Seen CompareAll(std::uint32_t seed, Pair (*make)(test::Generator&)) {
  test::MessageCapture messages;
  test::Generator random(seed);
  Seen seen;
  for (int number = 0; number < kPairs; ++number) {
    SCOPED_TRACE("pair " + std::to_string(number));
    const Pair pair = make(random);
    const LiteralGrades expected = test::GradeLiterally(pair);
    messages.Clear();
    GradedResult graded;
    const int result = GradeAgainstTutor(
        pair.learner, pair.tutor, [&] { return pair.probability; }, graded);
    EXPECT_EQ(result, expected.result);
    EXPECT_EQ(messages.StandardError(), expected.messages);
    EXPECT_EQ(graded.complete, !expected.failed && !expected.refused);
    if (expected.refused) {
      EXPECT_EQ(graded.timing_advice, "");
    } else if (expected.failed) {
      ExpectSameSteps(graded, expected);
    } else {
      ExpectSame(graded, expected);
    }
    Count(pair, expected, seen);
    if (testing::Test::HasFailure()) break;
  }
  return seen;
}

TEST(LiteralGrading, PairsThatARecogniserGives) {
  const Seen seen = CompareAll(11, test::MakePair);
  EXPECT_GT(seen.pauses, 5000);
  EXPECT_GT(seen.other_counts, 500);
}

TEST(LiteralGrading, OddPairs) {
  const Seen seen = CompareAll(12, test::MakeOddPair);
  EXPECT_GT(seen.pauses, 5000);
  EXPECT_GT(seen.other_counts, 1000);
  EXPECT_GT(seen.failed, 500);
  EXPECT_GT(seen.refused, 100);
}

TEST(LiteralGrading, Normalisers) {
  for (const LanguageType language : {kLanguageEnglish, kLanguageChinese, kLanguageJapanese}) {
    const auto normalisers = PhonemeNormalisersOf(language);
    EXPECT_EQ(std::vector<double>(normalisers.begin(), normalisers.end()),
              test::LiteralNormalisers(language));
  }
}

TEST(LiteralGrading, PronunciationAlone) {
  const test::MessageCapture messages;
  test::Generator random(13);
  for (int number = 0; number < 2000; ++number) {
    SCOPED_TRACE("pair " + std::to_string(number));
    Pair pair = test::MakeOddPair(random);
    pair.tutor = pair.learner;
    const double probability = pair.probability;
    pair.probability = 1.0;
    const LiteralGrades expected = test::GradeLiterally(pair);
    if (expected.failed) continue;
    GradedResult graded;
    EXPECT_EQ(GradePronunciationOnly(
                  pair.learner, [&] { return probability; }, graded),
              static_cast<int>(expected.pronunciation * probability));
    EXPECT_EQ(graded.total, static_cast<int>(expected.pronunciation * probability));
    EXPECT_EQ(graded.components.pronunciation, expected.pronunciation);  // not scaled
    EXPECT_EQ(graded.phoneme_pronunciation, expected.phoneme_pronunciation);
    EXPECT_EQ(graded.syllable_pronunciation, expected.syllable_pronunciation);
    EXPECT_TRUE(graded.complete);
    EXPECT_TRUE(graded.syllable_pitch.empty());
    EXPECT_TRUE(graded.words.total.empty());
    if (testing::Test::HasFailure()) break;
  }
}

}  // namespace
}  // namespace veral3
