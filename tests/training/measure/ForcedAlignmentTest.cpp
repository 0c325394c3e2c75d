#include "training/measure/ForcedAlignment.h"

#include <gtest/gtest.h>

#include "recognition/Models.h"

namespace veral3::training {
namespace {

Utterance Saying(std::initializer_list<PhonemeLabel> labels) {
  Utterance utterance;
  utterance.labels = labels;
  utterance.samples.assign(20000, 0);
  return utterance;
}

TEST(ForcedAlignment, AWordEndsAtAPause) {
  const Utterance utterance =
      Saying({{'-', 0}, {'s', 1000}, {'i', 3000}, {'-', 5000}, {'t', 9000}});
  EXPECT_EQ(WordsOfLabels(utterance).Count(), 2);
}

TEST(ForcedAlignment, RefusesWhatHasUnusedStretches) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageEnglish);
  const std::string model = std::string(VERAL3_SOURCE_DIR) + "/resources/EnglishFrame.model";
  ASSERT_GE(LoadModelFile(model.c_str(), kFrameModelEnglish), 0);
  const Utterance whole = Saying({{'-', 0}, {'s', 1000}, {'t', 9000}});
  EXPECT_TRUE(AlignToLabels(whole, set).has_value());
  const Utterance unused = Saying({{'-', 0}, {'s', 1000}, {'?', 3000}, {'t', 9000}});
  EXPECT_FALSE(AlignToLabels(unused, set).has_value());
  EXPECT_EQ(PhonemesOf(unused), "st");
}

}  // namespace
}  // namespace veral3::training
