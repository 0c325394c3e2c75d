#include <gmock/gmock.h>

#include "training/features/FrameLabels.h"

namespace veral3::training {
namespace {

const CPhonemeSet& English() { return *PhonemeSetOf(kLanguageEnglish); }

TEST(Segments, AFrameTakesThePhonemeAtSample110OfItsShift) {
  // Frame 5 looks at sample 1210: a phoneme that starts there has it, one sample later has not.
  const std::vector<PhonemeLabel> at = {{'-', 0}, {'s', 1210}};
  EXPECT_EQ(SegmentsOf(at, 20, English())[1].first_frame, 5);
  const std::vector<PhonemeLabel> after = {{'-', 0}, {'s', 1211}};
  EXPECT_EQ(SegmentsOf(after, 20, English())[1].first_frame, 6);
}

TEST(Segments, PhonemesWithoutAFrameVanish) {
  const std::vector<PhonemeLabel> labels = {{'-', 0}, {'s', 1000}, {'t', 1050}, {'A', 2000}};
  const auto segments = SegmentsOf(labels, 20, English());
  ASSERT_EQ(segments.size(), 3u);
  EXPECT_EQ(segments[1].phoneme, English().GetPhonemeIndex('t'));
  const std::vector<PhonemeLabel> late = {{'-', 0}, {'s', 100000}};
  EXPECT_EQ(SegmentsOf(late, 20, English()).size(), 1u);
}

TEST(Segments, RefuseASymbolOfAnotherLanguage) {
  const std::vector<PhonemeLabel> labels = {{'-', 0}, {'X', 1000}};
  EXPECT_THROW(SegmentsOf(labels, 20, English()), std::runtime_error);
}

TEST(Segments, AnUnusedStretchHasNoPhoneme) {
  const std::vector<PhonemeLabel> labels = {{'-', 0}, {'?', 1000}, {'t', 2000}};
  const auto segments = SegmentsOf(labels, 20, English());
  ASSERT_EQ(segments.size(), 3u);
  EXPECT_EQ(segments[1].phoneme, -1);
  EXPECT_EQ(segments[1].first_frame, 5);
}

TEST(States, ArePhonemesInThirdsTheEarlierOnesLonger) {
  const auto states = [](int length, bool pause) {
    std::string text;
    for (int i = 0; i < length; ++i) text += static_cast<char>('0' + StateOf(i, length, pause));
    return text;
  };
  EXPECT_EQ(states(1, false), "0");
  EXPECT_EQ(states(3, false), "012");
  EXPECT_EQ(states(4, false), "0012");
  EXPECT_EQ(states(6, false), "001122");
  EXPECT_EQ(states(12, true), "000111111222");
  EXPECT_EQ(states(6, true), "001122");
}

TEST(StateLabels, FramesOfAnUnusedSegmentHaveNoStateAndItsBoundariesStay) {
  const std::vector<FrameSegment> segments = {{36, 0}, {0, 6}, {-1, 9}, {1, 12}, {36, 18}};
  std::vector<std::uint8_t> labels(24);
  for (const int shift : {-2, 0, 2}) {
    StateLabels(segments, 24, 36, std::vector<int>(5, shift), labels);
    EXPECT_EQ(labels[8] / 3, 0) << shift;
    for (std::size_t t = 9; t < 12; ++t) EXPECT_EQ(labels[t], 255) << shift;
    EXPECT_EQ(labels[12], 3) << shift;
    EXPECT_EQ(std::ranges::count(labels, 255), 3) << shift;
    EXPECT_EQ(labels[static_cast<std::size_t>(17 + shift)] / 3, 1) << shift;
    EXPECT_EQ(labels[static_cast<std::size_t>(18 + shift)] / 3, 36) << shift;
  }
}

TEST(StateLabels, MovedBoundariesLeaveEveryPhonemeAFrame) {
  const std::vector<FrameSegment> segments = {{36, 0}, {0, 10}, {1, 12}, {36, 14}};
  std::vector<std::uint8_t> labels(20);
  for (const int shift : {-2, 0, 2}) {
    const std::vector<int> shifts(4, shift);
    StateLabels(segments, 20, 36, shifts, labels);
    EXPECT_EQ(labels[0] / 3, 36);
    EXPECT_EQ(labels[19] / 3, 36);
    for (const int phoneme : {0, 1}) {
      EXPECT_TRUE(std::ranges::any_of(labels, [&](int l) { return l / 3 == phoneme; })) << shift;
    }
  }
  StateLabels(segments, 20, 36, {}, labels);
  EXPECT_EQ(labels[9], 36 * 3 + 2);
  EXPECT_EQ(labels[10], 0);
  EXPECT_EQ(labels[14], 36 * 3);
}

}  // namespace
}  // namespace veral3::training
