#include "core/PitchSegments.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using test::MessageCapture;

// 'V' is a voiced frame, 'U' an unvoiced one.
std::vector<std::int32_t> Track(std::string_view frames) {
  std::vector<std::int32_t> pitch;
  for (const char frame : frames) pitch.push_back(frame == 'V' ? 150 : 0);
  return pitch;
}

PitchSegmentCounts English(std::string_view frames) {
  return CountPitchSegments(kLanguageEnglish, Track(frames));
}
PitchSegmentCounts Chinese(std::string_view frames) {
  return CountPitchSegments(kLanguageChinese, Track(frames));
}
PitchSegmentCounts Japanese(std::string_view frames) {
  return CountPitchSegments(kLanguageJapanese, Track(frames));
}

TEST(PitchSegments, MatchTheReferenceVectors) {
  const auto cases = test::LoadVectorJson("prosody.json").at("pitch_segments_of_syllable");
  ASSERT_EQ(cases.size(), 219U);
  for (const auto& c : cases) {
    const auto pitch = c.at("pitch").get<std::vector<std::int32_t>>();
    const std::size_t from = c.at("from");
    const std::size_t to = c.at("to");
    const auto expected = c.at("expected").get<std::vector<std::int32_t>>();
    EXPECT_EQ(CountPitchSegments(static_cast<LanguageType>(c.at("language").get<int>()),
                                 std::span(pitch).subspan(from, to - from)),
              (PitchSegmentCounts{expected[0], expected[1], expected[2]}))
        << c;
  }
}

TEST(PitchSegments, UnvoicedSyllableHasNone) {
  EXPECT_EQ(English(""), PitchSegmentCounts{});
  EXPECT_EQ(English("UUUUUUUU"), PitchSegmentCounts{});
  EXPECT_EQ(Japanese("UUUUUUUU"), PitchSegmentCounts{});
}

TEST(PitchSegments, EnglishNeedsThreeFrames) {
  EXPECT_EQ(English("VV"), (PitchSegmentCounts{0, 0, 2}));
  EXPECT_EQ(English("VVV"), (PitchSegmentCounts{1, 0, 3}));
  EXPECT_EQ(English("VVVVVVVV"), (PitchSegmentCounts{1, 0, 8}));
}

TEST(PitchSegments, FrameThatEndsADipDoesNotJoinTheRun) {
  EXPECT_EQ(English("VVUVVV"), (PitchSegmentCounts{0, 0, 5}));
  EXPECT_EQ(English("VVUVVVV"), (PitchSegmentCounts{1, 0, 6}));
}

TEST(PitchSegments, OtherLanguagesNeedTwoFramesAndAGapOfTwo) {
  EXPECT_EQ(Chinese("VVUUVVV"), (PitchSegmentCounts{2, 2, 5}));
  EXPECT_EQ(Japanese("VVUUVVV"), (PitchSegmentCounts{2, 2, 5}));
  EXPECT_EQ(Chinese("VVUUVV"), (PitchSegmentCounts{1, 2, 4}));  // one frame ends the gap
  EXPECT_EQ(Chinese("VVUVVV"), (PitchSegmentCounts{1, 0, 5}));  // a dip is no gap
}

TEST(PitchSegments, EnglishGapsBelowFourDoNotSplit) {
  EXPECT_EQ(English("VVVUUUVVVV"), (PitchSegmentCounts{1, 3, 7}));
  EXPECT_EQ(English("VVVUUUUVVVV"), (PitchSegmentCounts{2, 4, 7}));
}

TEST(PitchSegments, LeadingUnvoicedFramesAreSkipped) {
  EXPECT_EQ(English("UUUUVVV"), (PitchSegmentCounts{1, 0, 3}));
  EXPECT_EQ(Chinese("UVVUU"), (PitchSegmentCounts{1, 0, 2}));
}

TEST(PitchSegments, GapBeforeTheFirstSegmentStopsGrowingAtTwo) {
  // Nothing has counted yet, so the gap stays at 2 and English never sees one of 4.
  EXPECT_EQ(English("VUUUUUUVVVVVVVV"), (PitchSegmentCounts{0, 2, 9}));
  EXPECT_EQ(Chinese("VUUUUUUVVVVVVVV"), (PitchSegmentCounts{1, 2, 9}));
}

TEST(PitchSegments, OpenGapAtTheEndIsNotCounted) {
  EXPECT_EQ(Chinese("VVVUUUUU"), (PitchSegmentCounts{1, 0, 3}));
}

TEST(UtterancePitchSegments, MatchTheReferenceVectors) {
  const auto cases = test::LoadVectorJson("prosody.json").at("utterance_segments");
  ASSERT_EQ(cases.size(), 91U);
  for (const auto& c : cases) {
    MessageCapture messages;
    const int expected = c.at("expected");
    EXPECT_EQ(CountUtterancePitchSegments(c.at("pitch").get<std::vector<std::int32_t>>(),
                                          c.at("intensity").get<std::vector<double>>(),
                                          c.at("background")),
              expected)
        << c;
    EXPECT_EQ(messages.StandardError(), expected == 0 ? "Error! nNumPitchSegments==0\n" : "");
  }
}

int CountLoud(std::string_view frames) {
  const std::vector<double> intensity(frames.size(), 100.0);
  return CountUtterancePitchSegments(Track(frames), intensity, 10.0);
}

TEST(UtterancePitchSegments, RunsBeginWithTwoFramesAndEndWithTwo) {
  EXPECT_EQ(CountLoud("VV"), 1);
  EXPECT_EQ(CountLoud("VVUVUVUVV"), 1);
  EXPECT_EQ(CountLoud("VVUUVV"), 2);
  EXPECT_EQ(CountLoud("VVUVUUVUVV"), 2);
  EXPECT_EQ(CountLoud("UVVU"), 1);
}

TEST(UtterancePitchSegments, NoneIsReported) {
  const MessageCapture messages;
  EXPECT_EQ(CountLoud(""), 0);
  EXPECT_EQ(CountLoud("VUVUUV"), 0);
  ASSERT_EQ(messages.Entries().size(), 2U);
  EXPECT_EQ(messages.Entries()[0].text, "Error! nNumPitchSegments==0\n");
  EXPECT_EQ(messages.Entries()[0].stream, MessageStream::kError);
}

TEST(UtterancePitchSegments, TwiceTheBackgroundIsNotLoudYet) {
  const MessageCapture messages;
  EXPECT_EQ(CountUtterancePitchSegments(Track("VV"), std::vector<double>{20.0, 20.0}, 10.0), 0);
  EXPECT_EQ(CountUtterancePitchSegments(Track("VV"), std::vector<double>{20.5, 20.5}, 10.0), 1);
}

TEST(UtterancePitchSegments, ShorterArrayCounts) {
  const MessageCapture messages;
  // What lies behind the end of a span would count.
  const std::vector<std::int32_t> track = Track("VVUUVV");
  const std::vector<double> loud(6, 9.0);
  EXPECT_EQ(CountUtterancePitchSegments(track, std::span(loud).first(1), 1.0), 0);
  EXPECT_EQ(CountUtterancePitchSegments(track, std::span(loud).first(5), 1.0), 1);
  EXPECT_EQ(CountUtterancePitchSegments(std::span(track).first(1), loud, 1.0), 0);
  EXPECT_EQ(CountUtterancePitchSegments(std::span(track).first(2), loud, 1.0), 1);
  EXPECT_EQ(CountUtterancePitchSegments(track, loud, 1.0), 2);
  EXPECT_EQ(CountUtterancePitchSegments(Track("VVVV"), std::vector<double>{9.0}, 1.0), 0);
  EXPECT_EQ(CountUtterancePitchSegments(Track("VV"), std::vector<double>(9, 9.0), 1.0), 1);
}

}  // namespace
}  // namespace veral3
