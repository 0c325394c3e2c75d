#include "core/BadSyllables.h"

#include <gtest/gtest.h>

#include "core/Alignments.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using test::MakeAlignment;
using test::MessageCapture;
using Ints = std::vector<std::int32_t>;
using Doubles = std::vector<double>;
using Segments = std::vector<PitchSegmentCounts>;

AlignmentResult OneSyllable(double pause_prob) {
  AlignmentResult alignment = MakeAlignment(20, {{'a', 2, 10}}, {0});
  alignment.pause_mfcc_prob[0] = pause_prob;
  return alignment;
}

double Goodness(LanguageType language, double pause_prob, int loud, double convexity,
                int segments) {
  return SyllableGoodness(language, OneSyllable(pause_prob), Ints{loud, 0}, Doubles{convexity},
                          Segments{{segments, 0, 0}})
      .at(0);
}

TEST(SyllableGoodness, MatchesTheReferenceRules) {
  const auto rules = test::LoadVectorJson("pronun.json").at("goodness_rules");
  ASSERT_EQ(rules.size(), 24U);
  for (const auto& r : rules) {
    const double expected = r.at("expected");
    EXPECT_NEAR(Goodness(static_cast<LanguageType>(r.at("language").get<int>()), r.at("pause_prob"),
                         r.at("loud"), r.at("convexity"), r.at("segments")),
                expected, 1e-12 * expected)
        << r;
  }
}

TEST(SyllableGoodness, QuietGapKeepsItWhateverThePause) {
  EXPECT_EQ(Goodness(kLanguageEnglish, 1e-9, 0, 0.0, 0), 1.0);
  EXPECT_LT(Goodness(kLanguageEnglish, 1e-9, 1, 0.0, 0), 1e-7);
  EXPECT_EQ(Goodness(kLanguageEnglish, 0.0, 1, 0.0, 0), 0.0);
}

TEST(SyllableGoodness, FiveSegmentsHalveIt) {
  EXPECT_EQ(Goodness(kLanguageEnglish, 1.0, 0, 1.0, 5), 0.5);
  EXPECT_EQ(Goodness(kLanguageChinese, 1.0, 0, 1.0, 5), 0.5);
  EXPECT_EQ(Goodness(kLanguageEnglish, 1.0, 0, 1.0, 2), 1.0);
  EXPECT_EQ(Goodness(kLanguageEnglish, 1.0, 0, 0.0, 5), 1.0);
}

TEST(SyllableGoodness, JapaneseIsHardlyEverPenalisedForSegments) {
  EXPECT_EQ(Goodness(kLanguageJapanese, 1.0, 0, 20184000000.0, 9), 1.0);
  EXPECT_EQ(Goodness(kLanguageJapanese, 1.0, 0, 20184000001.0, 9), 0.3);
}

TEST(SyllableGoodness, PauseIsThatBeforeTheSyllablesFirstPhoneme) {
  AlignmentResult alignment = MakeAlignment(30, {{'s', 0, 4}, {'a', 4, 9}, {'t', 12, 20}}, {0, 2});
  alignment.pause_mfcc_prob = {1.0, 1e-5, 0.042268, 1e-5};
  const Doubles goodness = SyllableGoodness(kLanguageEnglish, alignment, Ints{1, 1, 1}, {}, {});
  EXPECT_EQ(goodness, (Doubles{1.0, 0.5}));
}

TEST(SyllableGoodness, PronunciationAloneLooksAtThePause) {
  EXPECT_EQ(SyllableGoodnessPronunOnly(kLanguageEnglish, OneSyllable(0.042268), Ints{1, 0}),
            Doubles{0.5});
  EXPECT_EQ(SyllableGoodnessPronunOnly(kLanguageEnglish, OneSyllable(0.9), Ints{1, 0}),
            Doubles{1.0});
}

TEST(SyllableGoodness, UnknownLanguageIsReported) {
  const MessageCapture messages;
  EXPECT_EQ(Goodness(static_cast<LanguageType>(4), 1e-9, 3, 0.0, 0), 1.0);
  EXPECT_EQ(messages.StandardError(),
            "Error in GradedAudio::MarkBadSyllables(), unknown LanguageType.\n");
}

TEST(SyllableGoodness, MissingMeasuresTakeNothingFromIt) {
  AlignmentResult alignment = MakeAlignment(30, {{'s', 0, 4}, {'a', 4, 9}}, {0, 1});
  EXPECT_EQ(SyllableGoodness(kLanguageEnglish, alignment, {}, {}, {}), (Doubles{1.0, 1.0}));
  alignment.pause_mfcc_prob.clear();
  EXPECT_EQ(SyllableGoodness(kLanguageEnglish, alignment, Ints{1, 1, 1}, {}, {}),
            (Doubles{1.0, 1.0}));
  EXPECT_TRUE(SyllableGoodness(kLanguageEnglish, MakeAlignment(9, {}, {}, {}), {}, {}, {}).empty());
}

}  // namespace
}  // namespace veral3
