// What holds for every grading, on random pairs of recordings.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "grading/GradedResult.h"
#include "grading/RandomPairs.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

constexpr int kPairs = 12000;

using test::Generator;
using test::MakePair;
using test::Pair;

LearnerView WithoutFaults(LearnerView learner) {
  std::ranges::fill(learner.goodness, 1.0);
  return learner;
}

int Grade(const Pair& pair, GradedResult& graded) {
  return GradeAgainstTutor(
      pair.learner, pair.tutor, [&] { return pair.probability; }, graded);
}

using Scores = std::vector<const std::vector<int>*>;
Scores ScoresOf(const GradedResult& graded) {
  return {&graded.phoneme_pronunciation, &graded.syllable_pronunciation,
          &graded.syllable_pitch,        &graded.syllable_timing,
          &graded.syllable_intensity,    &graded.words.pronunciation,
          &graded.words.pitch,           &graded.words.timing,
          &graded.words.intensity,       &graded.words.total};
}

void ExpectScore(int score, const char* what) {
  EXPECT_GE(score, 0) << what;
  EXPECT_LE(score, 100) << what;
}

void ExpectLetters(std::string_view advice, std::string_view letters, std::size_t count) {
  EXPECT_EQ(advice.size(), count);
  EXPECT_EQ(advice.find_first_not_of(letters), std::string_view::npos) << advice;
}

void ExpectContrasts(const std::vector<double>& contrasts) {
  for (const double contrast : contrasts) {
    EXPECT_TRUE(contrast >= 0.0 && contrast <= 1e10) << contrast;
  }
}

void ExpectInRange(const Pair& pair, const GradedResult& graded) {
  const LearnerView& learner = pair.learner;
  const auto syllables = static_cast<std::size_t>(learner.NumSyllables());
  const auto words = static_cast<std::size_t>(learner.NumWords());
  ExpectScore(graded.total, "total");
  ExpectScore(graded.components.pronunciation, "pronunciation");
  ExpectScore(graded.components.pitch, "pitch");
  ExpectScore(graded.components.timing, "timing");
  ExpectScore(graded.components.intensity, "intensity");
  for (const std::vector<int>* scores : ScoresOf(graded)) {
    for (const int score : *scores) ExpectScore(score, "array");
  }
  EXPECT_EQ(graded.phoneme_pronunciation.size(), learner.phonemes.size());
  EXPECT_EQ(graded.syllable_pitch.size(), syllables);
  EXPECT_EQ(graded.syllable_timing.size(), syllables);
  EXPECT_EQ(graded.unnecessary_pause.size(), syllables);
  EXPECT_EQ(graded.words.total.size(), words);
  for (const int percent : graded.syllable_timing_percent) EXPECT_GE(percent, 0);
  for (const int percent : graded.syllable_intensity_percent) EXPECT_GE(percent, 0);
  EXPECT_TRUE(graded.goodness_factor >= 0.0 && graded.goodness_factor <= 1.0);
  EXPECT_TRUE(graded.prob_good_timing >= 0.0 && graded.prob_good_timing <= 1.0);
  for (const double trait : graded.timing_traits) EXPECT_TRUE(trait >= 0.0 && trait <= 1.0);

  if (learner.language == kLanguageChinese) {
    const auto graded_tones = static_cast<std::size_t>(pair.tutor.NumSyllables());
    ExpectLetters(graded.pitch_advice, "01234", graded_tones);
  } else {
    ExpectLetters(graded.pitch_advice, "-hHlL", syllables);
  }
  ExpectLetters(graded.timing_advice, "-lLsS", syllables);
  ExpectLetters(graded.intensity_advice, "-hHlL", syllables);
  ExpectContrasts(graded.word_pitch_contrast);
  ExpectContrasts(graded.word_timing_contrast);
  ExpectContrasts(graded.word_intensity_contrast);
}

// No score of `lower` is above that of `higher`.
void ExpectNowhereHigher(const GradedResult& lower, const GradedResult& higher) {
  EXPECT_LE(lower.total, higher.total);
  EXPECT_LE(lower.components.pronunciation, higher.components.pronunciation);
  EXPECT_LE(lower.components.pitch, higher.components.pitch);
  EXPECT_LE(lower.components.timing, higher.components.timing);
  EXPECT_LE(lower.components.intensity, higher.components.intensity);
  const Scores low = ScoresOf(lower);
  const Scores high = ScoresOf(higher);
  for (std::size_t i = 0; i < low.size(); ++i) {
    ASSERT_EQ(low[i]->size(), high[i]->size()) << i;
    for (std::size_t k = 0; k < low[i]->size(); ++k) EXPECT_LE((*low[i])[k], (*high[i])[k]) << i;
  }
}

template <typename Check>
void ForEachPair(std::uint32_t seed, const Check& check) {
  const test::MessageCapture messages;
  Generator random(seed);
  for (int number = 0; number < kPairs; ++number) {
    SCOPED_TRACE("pair " + std::to_string(number));
    check(MakePair(random));
    if (testing::Test::HasFailure()) return;
  }
}

TEST(GradingProperties, EverythingIsInItsRange) {
  int graded_pairs = 0;
  ForEachPair(1, [&](const Pair& pair) {
    GradedResult graded;
    const int total = Grade(pair, graded);
    ASSERT_GE(total, 0);
    EXPECT_EQ(total, graded.total);
    ExpectInRange(pair, graded);
    ++graded_pairs;
  });
  EXPECT_EQ(graded_pairs, kPairs);
}

TEST(GradingProperties, TheTutorHimselfHasNoFault) {
  ForEachPair(2, [](const Pair& pair) {
    const Pair same = {WithoutFaults(pair.learner), pair.learner, 1.0};
    GradedResult graded;
    ASSERT_GE(Grade(same, graded), 0);
    EXPECT_EQ(graded.components.pitch, 100);
    EXPECT_EQ(graded.components.timing, 100);
    EXPECT_EQ(graded.components.intensity, 100);
    for (const auto* scores :
         {&graded.syllable_pitch, &graded.syllable_timing, &graded.syllable_intensity}) {
      EXPECT_EQ(std::ranges::count(*scores, 100), std::ssize(*scores));
    }
    EXPECT_EQ(std::ranges::count(graded.unnecessary_pause, true), 0);
    EXPECT_EQ(graded.timing_advice.find_first_not_of('-'), std::string::npos);
    EXPECT_EQ(graded.intensity_advice.find_first_not_of('-'), std::string::npos);
  });
}

TEST(GradingProperties, GoodnessOfTheReadingOnlyLowers) {
  ForEachPair(3, [](const Pair& pair) {
    GradedResult graded;
    Grade(pair, graded);
    Pair certain = pair;
    certain.probability = 1.0;
    GradedResult unscaled;
    Grade(certain, unscaled);
    ExpectNowhereHigher(graded, unscaled);
    EXPECT_EQ(graded.syllable_pronunciation, unscaled.syllable_pronunciation);
    EXPECT_EQ(graded.pitch_advice, unscaled.pitch_advice);
  });
}

TEST(GradingProperties, FaultsOfSyllablesOnlyLower) {
  ForEachPair(4, [](const Pair& pair) {
    GradedResult graded;
    Grade(pair, graded);
    Pair faultless = pair;
    faultless.learner = WithoutFaults(pair.learner);
    GradedResult better;
    Grade(faultless, better);
    ExpectNowhereHigher(graded, better);
  });
}

// A pause that the tutor makes too costs nothing; one that he does not make never helps.
TEST(GradingProperties, PausesOnlyLowerTiming) {
  ForEachPair(5, [](const Pair& pair) {
    Pair paused = {WithoutFaults(pair.learner), pair.learner, 1.0};
    if (paused.learner.NumSyllables() < 2) return;
    const int at = paused.learner.syllable_start[1];
    for (int p = at; p < paused.learner.NumPhonemes(); ++p) {
      paused.learner.phoneme_start[static_cast<std::size_t>(p)] += 11026;
      paused.learner.phoneme_end[static_cast<std::size_t>(p)] += 11026;
    }
    const int tutors_pause = paused.tutor.PhonemeStart(at) - paused.tutor.PhonemeEnd(at - 1);
    GradedResult graded;
    ASSERT_GE(Grade(paused, graded), 0);
    EXPECT_EQ(graded.unnecessary_pause[1], tutors_pause <= 5512);
    if (tutors_pause <= 5512) {
      EXPECT_EQ(graded.syllable_timing[1], 0);
      EXPECT_LE(graded.components.timing, 70);
    }
    EXPECT_EQ(graded.components.pitch, 100);
    EXPECT_EQ(graded.components.intensity, 100);
  });
}

TEST(GradingProperties, GradingTwiceAndInBetweenGivesTheSame) {
  ForEachPair(6, [](const Pair& pair) {
    GradedResult once;
    Grade(pair, once);
    GradedResult twice;
    GradePronunciationOnly(
        pair.learner, [&] { return pair.probability; }, twice);
    Grade(pair, twice);
    EXPECT_EQ(once.total, twice.total);
    const Scores first = ScoresOf(once);
    const Scores second = ScoresOf(twice);
    for (std::size_t i = 0; i < first.size(); ++i) EXPECT_EQ(*first[i], *second[i]) << i;
    EXPECT_EQ(once.pitch_advice, twice.pitch_advice);
  });
}

// A syllable without a vowel ends a grading where the language has none such; what was made before
// stays in range.
TEST(GradingProperties, SyllablesWithoutVowelsEndAGradingCleanly) {
  int refused = 0;
  ForEachPair(7, [&](const Pair& pair) {
    Pair broken = pair;
    for (char& symbol : broken.learner.phonemes) symbol = 's';
    GradedResult graded;
    const int total = Grade(broken, graded);
    if (total >= 0) return;
    ++refused;
    EXPECT_EQ(total, -1);
    EXPECT_FALSE(graded.complete);
    for (const std::vector<int>* scores : ScoresOf(graded)) {
      for (const int score : *scores) ExpectScore(score, "array");
    }
  });
  EXPECT_GT(refused, 2000);
}

}  // namespace
}  // namespace veral3
