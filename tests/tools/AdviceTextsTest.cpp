#include "tools/AdviceTexts.h"

#include <gtest/gtest.h>

namespace veral3::tools {
namespace {

TEST(AdviceTexts, LettersInWords) {
  const auto english = kLanguageEnglish;
  EXPECT_EQ(AdviceOf(AdviceKind::kPitch, english, 'h'), "pitch too high");
  EXPECT_EQ(AdviceOf(AdviceKind::kPitch, english, 'H'), "pitch much too high");
  EXPECT_EQ(AdviceOf(AdviceKind::kPitch, english, 'l'), "pitch should be higher");
  EXPECT_EQ(AdviceOf(AdviceKind::kPitch, kLanguageJapanese, 'L'), "pitch should be much higher");
  EXPECT_EQ(AdviceOf(AdviceKind::kTiming, english, 'l'), "too long");
  EXPECT_EQ(AdviceOf(AdviceKind::kTiming, english, 'L'), "much too long");
  EXPECT_EQ(AdviceOf(AdviceKind::kTiming, english, 's'), "too short");
  EXPECT_EQ(AdviceOf(AdviceKind::kTiming, english, 'S'), "much too short");
  EXPECT_EQ(AdviceOf(AdviceKind::kIntensity, kLanguageChinese, 'h'), "too loud");
  EXPECT_EQ(AdviceOf(AdviceKind::kIntensity, english, 'L'), "much too soft");
  EXPECT_EQ(AdviceOf(AdviceKind::kPitch, kLanguageChinese, '3'), "said most like tone 3");
  EXPECT_EQ(AdviceOf(AdviceKind::kPitch, kLanguageChinese, '0'), "said most like the neutral tone");
}

TEST(AdviceTexts, LengthsMaySayOtherwise) {
  for (const char letter : {'l', 'L'}) {
    EXPECT_TRUE(ContradictsLengths(letter, 19, 20)) << letter;
    EXPECT_TRUE(ContradictsLengths(letter, 20, 20)) << letter;
    EXPECT_FALSE(ContradictsLengths(letter, 21, 20)) << letter;
  }
  for (const char letter : {'s', 'S'}) {
    EXPECT_FALSE(ContradictsLengths(letter, 19, 20)) << letter;
    EXPECT_TRUE(ContradictsLengths(letter, 20, 20)) << letter;
    EXPECT_TRUE(ContradictsLengths(letter, 21, 20)) << letter;
  }
  for (const char letter : {'-', '\0', 'h'}) EXPECT_FALSE(ContradictsLengths(letter, 20, 20));
}

TEST(AdviceTexts, NothingForNone) {
  for (const AdviceKind kind : {AdviceKind::kPitch, AdviceKind::kTiming, AdviceKind::kIntensity}) {
    for (const char letter : {'-', '\0', 'x'}) {
      EXPECT_EQ(AdviceOf(kind, kLanguageEnglish, letter), "");
    }
  }
  EXPECT_EQ(AdviceOf(AdviceKind::kPitch, kLanguageChinese, 'h'), "");
  EXPECT_EQ(AdviceTextsOf(AdviceKind::kPitch, kLanguageChinese).size(), 5u);
  EXPECT_EQ(AdviceTextsOf(AdviceKind::kPitch, kLanguageEnglish).front().letter, '-');
}

}  // namespace
}  // namespace veral3::tools
