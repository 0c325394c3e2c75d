#include "core/Tones.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::MessageCapture;

// Three syllables of 6 frames: voiced 100.., unvoiced, voiced 300...
struct Utterance {
  std::vector<std::int32_t> pitch = {0, 101, 102, 0, 103, 104, 0, 0, 0,
                                     0, 0,   0,   0, 301, 302, 0, 0, 303};
  std::vector<FrameSpan> spans = {{0, 6}, {6, 12}, {12, 18}};
  std::vector<PitchSegmentCounts> segments = {{1, 0, 4}, {0, 0, 0}, {2, 2, 3}};
};

// Gives tone (first voiced pitch / 100) the probability 1, and counts its calls.
struct FakeClassifier {
  int* calls;
  int* rows;
  bool operator()(std::span<const ToneFeatures> features,
                  std::span<ToneProbabilities> probabilities) const {
    ++*calls;
    for (std::size_t i = 0; i < features.size(); ++i) {
      ++*rows;
      probabilities[i].fill(0.0);
      probabilities[i][static_cast<std::size_t>(features[i][4] / 100)] = 1.0;
    }
    return true;
  }
};

TEST(ToneFeatures, AreTheSyllableAndItsNeighbours) {
  const Utterance u;
  const ToneFeatures first = ToneFeaturesOf(u.pitch, u.spans, 200, 6, 0);
  EXPECT_EQ(std::vector<int>(first.begin(), first.begin() + 9),
            (std::vector<int>{200, 6, 0, 0, 101, 102, 103, 104, 0}));
  const ToneFeatures second = ToneFeaturesOf(u.pitch, u.spans, 200, 6, 1);
  EXPECT_EQ(std::vector<int>(second.begin(), second.begin() + 5),
            (std::vector<int>{200, 6, 104, 301, 0}));
  const ToneFeatures third = ToneFeaturesOf(u.pitch, u.spans, 200, 6, 2);
  EXPECT_EQ(std::vector<int>(third.begin(), third.begin() + 8),
            (std::vector<int>{200, 6, 0, 0, 301, 302, 303, 0}));
}

TEST(ToneFeatures, HoldAtMostSixtyFourPitches) {
  const std::vector<std::int32_t> pitch(100, 150);
  const std::vector<FrameSpan> spans = {{0, 100}};
  const ToneFeatures features = ToneFeaturesOf(pitch, spans, 150, 100, 0);
  EXPECT_EQ(features[67], 150);
  const ToneFeatures shorter = ToneFeaturesOf(pitch, std::vector<FrameSpan>{{0, 63}}, 150, 63, 0);
  EXPECT_EQ(shorter[66], 150);
  EXPECT_EQ(shorter[67], 0);
}

TEST(ToneFeatures, OfNoSyllableAreTheAverages) {
  const Utterance u;
  for (const int syllable : {-1, 3, INT_MAX}) {
    ToneFeatures expected{};
    expected[0] = 200;
    expected[1] = 6;
    EXPECT_EQ(ToneFeaturesOf(u.pitch, u.spans, 200, 6, syllable), expected);
  }
}

TEST(ClassifyTones, ClassifiesAllInOneBatch) {
  const Utterance u;
  int calls = 0;
  int rows = 0;
  const auto tones =
      ClassifyTones(u.pitch, u.spans, u.segments, 200, 6, FakeClassifier{&calls, &rows});
  EXPECT_EQ(tones,
            (std::vector<ToneProbabilities>{{0, 1, 0, 0, 0}, {1, 0, 0, 0, 0}, {0, 0, 0, 1, 0}}));
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(rows, 3);
}

TEST(ClassifyTones, ThreeSegmentsGiveAZeroRow) {
  Utterance u;
  u.segments[0].segments = 3;
  int calls = 0;
  int rows = 0;
  const auto tones =
      ClassifyTones(u.pitch, u.spans, u.segments, 200, 6, FakeClassifier{&calls, &rows});
  EXPECT_EQ(tones,
            (std::vector<ToneProbabilities>{{0, 0, 0, 0, 0}, {1, 0, 0, 0, 0}, {0, 0, 0, 1, 0}}));
  EXPECT_EQ(rows, 2);
}

TEST(ClassifyTones, MissingModelIsReportedOnce) {
  const Utterance u;
  const auto without_model = [](std::span<const ToneFeatures>, std::span<ToneProbabilities> rows) {
    rows[0].fill(9.0);
    return false;
  };
  for (const ToneScorer& classifier : {ToneScorer(), ToneScorer(without_model)}) {
    const MessageCapture messages;
    const auto tones = ClassifyTones(u.pitch, u.spans, u.segments, 200, 6, classifier);
    EXPECT_EQ(tones, std::vector<ToneProbabilities>(3, ToneProbabilities{}));
    ASSERT_EQ(messages.Entries().size(), 1U);
    EXPECT_EQ(messages.StandardError(),
              "ERROR in AnalyzedAudio::AnalyzeCTTone(), no tone model is loaded.\n");
  }
}

TEST(ClassifyTones, NothingToClassifyNeedsNoModel) {
  const MessageCapture messages;
  EXPECT_TRUE(ClassifyTones({}, {}, {}, 0, 0, {}).empty());
  EXPECT_TRUE(messages.Entries().empty());
}

TEST(ClassifyTones, AbsurdOutputsBecomeZero) {
  const Utterance u;
  const auto tones =
      ClassifyTones(u.pitch, u.spans, u.segments, 200, 6,
                    [](std::span<const ToneFeatures>, std::span<ToneProbabilities> rows) {
                      for (auto& row : rows) {
                        row = {std::numeric_limits<double>::quiet_NaN(), 0.25,
                               std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), 0.5};
                      }
                      return true;
                    });
  EXPECT_EQ(tones[0], (ToneProbabilities{0.0, 0.25, 0.0, 0.0, 0.5}));
}

}  // namespace
}  // namespace veral3
