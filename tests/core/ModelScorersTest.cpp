#include "core/ModelScorers.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using test::MessageCapture;
using test::VectorPath;

TEST(ModelScorers, ClassifiersWithoutAModelSayNothing) {
  const MessageCapture messages;
  const DLPhonClassifier phonemes;
  const DLCTToneClassifier tones;
  const UGClassifier goodness;
  std::vector<float> inputs(kPhonemeInputSize);
  std::vector<double> scores(37);
  std::vector<ToneProbabilities> probabilities(1);
  EXPECT_FALSE(ScorerOf(nullptr));
  EXPECT_FALSE(ScorerOf(&phonemes)(inputs, scores));
  EXPECT_FALSE(ScorerOf(tones)(std::vector<ToneFeatures>(1), probabilities));
  EXPECT_FALSE(ScorerOf(goodness)(GoodnessFeatures{}).has_value());
  EXPECT_TRUE(messages.Entries().empty());
}

TEST(ModelScorers, TonesAreTheClassifiers) {
  const MessageCapture messages;
  DLCTToneClassifier classifier;
  ASSERT_GE(classifier.LoadFromFile(VectorPath("models/tone.bin").c_str()), 0);
  std::vector<ToneFeatures> features(3, ToneFeatures{});
  for (std::size_t i = 0; i < features.size(); ++i) features[i].fill(static_cast<int>(90 + 70 * i));
  std::vector<ToneProbabilities> rows(features.size());
  ASSERT_TRUE(ScorerOf(classifier)(features, rows));
  for (std::size_t i = 0; i < features.size(); ++i) {
    ToneProbabilities alone{};
    ASSERT_EQ(classifier.ClassifyTone(features[i].data(), alone.data()), 0);
    EXPECT_EQ(rows[i], alone);
  }
  EXPECT_NE(rows[0], rows[2]);
}

TEST(ModelScorers, NoPhonemesAreNotClassified) {
  const MessageCapture messages;
  DLPhonClassifier classifier;
  ASSERT_GE(classifier.LoadFromFile(VectorPath("models/phon_en.bin").c_str()), 0);
  EXPECT_TRUE(ScorerOf(&classifier)({}, {}));
}

}  // namespace
}  // namespace veral3
