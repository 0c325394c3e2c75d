#include "recognition/FrameScores.h"

#include <gmock/gmock.h>

#include <cmath>

#include "common/LanguageType.h"
#include "recognition/Models.h"
#include "recognition/keras/NetworkBuilder.h"
#include "signal/Mfcc.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

std::vector<float> Frames(int count) {
  std::vector<float> mfcc(static_cast<std::size_t>(count * kMfccSize));
  for (std::size_t i = 0; i < mfcc.size(); ++i) {
    mfcc[i] = 3.0f * std::sin(0.7f * static_cast<float>(i));
  }
  return mfcc;
}

TEST(FrameScores, ReferenceInputBlocks) {
  for (const nlohmann::json& c : LoadVectorJson("keras.json").at("frame_classifier_input_blocks")) {
    const int frames = c.at("frames");
    std::vector<float> mfcc(static_cast<std::size_t>(frames * kMfccSize));
    for (std::size_t i = 0; i < mfcc.size(); ++i) mfcc[i] = static_cast<float>(i);
    for (int t = 0; t < frames; ++t) {
      std::array<float, kFrameInputSize> input;
      AssembleFrameInput(mfcc, t, input);
      for (std::size_t b = 0; b < 5; ++b) {
        const int frame = c.at("indices").at(static_cast<std::size_t>(t)).at(b);
        for (std::size_t i = 0; i < kMfccSize; ++i) {
          ASSERT_EQ(input[b * kMfccSize + i],
                    static_cast<float>(frame * kMfccSize) + static_cast<float>(i));
        }
      }
    }
  }
}

// Block by block, with the bits of all at once.
TEST(FrameScores, VisitedBlocksAreTheWhole) {
  MessageCapture messages;
  ASSERT_GE(LoadModelFile(VectorPath("models/frame_ja.bin").string().c_str(), kFrameModelJapanese),
            0);
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageJapanese);
  for (const int frames : {0, 1, 256, 257, 600}) {
    const std::vector<float> mfcc = Frames(frames);
    std::vector<double> scores(static_cast<std::size_t>(frames) * 78);
    ASSERT_EQ(ComputeFrameScores(set, mfcc, scores), 0);
    std::vector<double> visited;
    EXPECT_EQ(VisitFrameScores(set, mfcc,
                               [&](std::size_t first, std::span<const double> rows) {
                                 EXPECT_EQ(first * 78, visited.size());
                                 EXPECT_LE(rows.size(), 256u * 78u);
                                 visited.insert(visited.end(), rows.begin(), rows.end());
                               }),
              0);
    EXPECT_EQ(visited, scores);
  }
}

// Recordings of less, just as many and more frames than are scored at once.
TEST(FrameScores, EveryFrameAsIfScoredAlone) {
  MessageCapture messages;
  ASSERT_GE(LoadModelFile(VectorPath("models/frame_ja.bin").string().c_str(), kFrameModelJapanese),
            0);
  messages.Clear();
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageJapanese);
  for (const int frames : {0, 1, 2, 3, 255, 256, 257, 600}) {
    const std::vector<float> mfcc = Frames(frames);
    std::vector<double> scores(static_cast<std::size_t>(frames) * 78, -1.0);
    EXPECT_EQ(ComputeFrameScores(set, mfcc, scores), 0);
    std::vector<double> alone(scores.size());
    for (int t = 0; t < frames; ++t) {
      std::array<float, kFrameInputSize> input;
      AssembleFrameInput(mfcc, t, input);
      FrameClassifierOf(CPhonemeSet::kJapanese)
          ->ClassifyFrame(input.data(), kFrameInputSize, &alone[static_cast<std::size_t>(t) * 78],
                          78);
    }
    EXPECT_EQ(Bits(scores), Bits(alone));
    EXPECT_THAT(scores, testing::Each(testing::Ge(1e-6)));
  }
  EXPECT_EQ(messages.All(), "");
}

TEST(FrameScores, WithoutAModelScoresStay) {
  MessageCapture messages;
  LoadModelFile("/no/such", kFrameModelEnglish);  // whatever was loaded before is gone
  messages.Clear();
  const std::vector<float> mfcc = Frames(3);
  std::vector<double> scores(3 * 111, 5.0);
  EXPECT_EQ(ComputeFrameScores(*PhonemeSetOf(kLanguageEnglish), mfcc, scores), -1);
  EXPECT_THAT(scores, testing::Each(5.0));
  EXPECT_EQ(messages.StandardError(),
            "ERROR in FrameClassifier::ClassifyFrame(), no model is loaded.\n");
}

class UnknownSet : public CPhonemeSet {
 public:
  UnknownSet() : CPhonemeSet("ab-", "ab-", 99) {}
  int GetSize() const override { return 3; }
  bool IsVowel(wchar_t) const override { return false; }
  bool IsConsonant(wchar_t) const override { return true; }
};

TEST(FrameScores, UnknownSet) {
  MessageCapture messages;
  std::vector<double> scores(9, 5.0);
  EXPECT_EQ(ComputeFrameScores(UnknownSet(), Frames(1), scores), -1);
  EXPECT_THAT(scores, testing::Each(5.0));
  EXPECT_EQ(messages.StandardError(),
            "Error, unknown phoneme set in ViterbiAligner::PassToken()\n");
}

TEST(FrameScores, TooLittleRoom) {
  MessageCapture messages;
  std::vector<double> scores(77);
  EXPECT_EQ(ComputeFrameScores(*PhonemeSetOf(kLanguageJapanese), Frames(1), scores), -1);
  EXPECT_EQ(messages.Entries().size(), 1u);
}

}  // namespace
}  // namespace veral3::test
