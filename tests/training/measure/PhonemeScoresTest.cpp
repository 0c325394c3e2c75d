#include "training/measure/PhonemeScores.h"

#include <gmock/gmock.h>

#include "grading/PhonProbGrader.h"

namespace veral3::training {
namespace {

std::vector<double> Only(LanguageType language, char symbol, double probability) {
  const CPhonemeSet& set = *PhonemeSetOf(language);
  std::vector<double> distribution(static_cast<std::size_t>(set.GetSize()), 0.0);
  distribution[static_cast<std::size_t>(set.GetPhonemeIndex(symbol))] = probability;
  return distribution;
}

TEST(UnclippedScore, LosesTwentyFivePointsAPowerOfTen) {
  // The normaliser of English i is above 1 and asks for nothing less.
  EXPECT_NEAR(UnclippedScore(kLanguageEnglish, 'i', Only(kLanguageEnglish, 'i', 1.0)), 100.0, 1e-9);
  EXPECT_NEAR(UnclippedScore(kLanguageEnglish, 'i', Only(kLanguageEnglish, 'i', 0.1)), 75.0, 1e-9);
  EXPECT_NEAR(UnclippedScore(kLanguageEnglish, 'i', Only(kLanguageEnglish, 'i', 1e-6)), -50.0,
              1e-9);
}

TEST(UnclippedScore, GoesOnWhereGradingStops) {
  // The Japanese f has .021641746: probability 1 is 25 x 2 x 1.66471 = 83.2 above full marks.
  EXPECT_NEAR(UnclippedScore(kLanguageJapanese, 'f', Only(kLanguageJapanese, 'f', 1.0)), 183.2,
              0.1);
  EXPECT_NEAR(UnclippedScore(kLanguageJapanese, 'f', Only(kLanguageJapanese, 'f', 1e-8)),
              183.2 - 200.0, 0.1);
  EXPECT_EQ(UnclippedScore(kLanguageJapanese, 'f', Only(kLanguageJapanese, 'f', 0.0)), -200.0);
}

TEST(UnclippedScore, IsTheGradeWithinItsRange) {
  const auto distribution = Only(kLanguageEnglish, 'T', 0.01);
  EXPECT_EQ(PhonProbGraderOf(kLanguageEnglish)->ComputePhonScore('T', distribution),
            static_cast<int>(UnclippedScore(kLanguageEnglish, 'T', distribution)));
}

}  // namespace
}  // namespace veral3::training
