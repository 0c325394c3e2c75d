#include "tools/GradeFigures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SampleReport.h"

namespace veral3::tools {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

DrawnRecording Words(std::vector<DrawnRecording::Span> words) {
  DrawnRecording recording;
  recording.utterance = {words.front().start, words.back().end};
  recording.words = std::move(words);
  return recording;
}

TEST(WarpedTime, WordsOfTheTutorLieUnderTheLearners) {
  const DrawnRecording tutor = Words({{1000, 2000}, {2000, 5000}});
  const DrawnRecording learner = Words({{0, 4000}, {6000, 8000}});
  EXPECT_DOUBLE_EQ(WarpedTime(tutor, learner, 0.0), 0.0);
  EXPECT_DOUBLE_EQ(WarpedTime(tutor, learner, 0.125), 0.25);  // half of the first word
  EXPECT_DOUBLE_EQ(WarpedTime(tutor, learner, 0.25), 0.5);    // its end; the next begins later
  EXPECT_DOUBLE_EQ(WarpedTime(tutor, learner, 0.625), 0.875);
  EXPECT_DOUBLE_EQ(WarpedTime(tutor, learner, 1.0), 1.0);
}

TEST(WarpedTime, NeverRunsBack) {
  const DrawnRecording tutor = Words({{0, 100}, {50, 400}, {400, 400}, {500, 800}});
  const DrawnRecording learner = Words({{0, 300}, {200, 350}, {350, 600}, {600, 800}});
  double before = 0.0;
  for (int i = 0; i <= 100; ++i) {
    const double now = WarpedTime(tutor, learner, i / 100.0);
    EXPECT_GE(now, before);
    EXPECT_LE(now, 1.0);
    before = now;
  }
}

TEST(WarpedTime, OtherNumbersOfWordsAndEmptyUtterancesStayAsTheyAre) {
  EXPECT_EQ(WarpedTime(Words({{0, 100}}), Words({{0, 50}, {50, 100}}), 0.3), 0.3);
  const double place = WarpedTime(Words({{5, 5}}), Words({{7, 7}}), 0.5);
  EXPECT_GE(place, 0.0);
  EXPECT_LE(place, 1.0);
}

TEST(EnvelopeOf, SmallestAndLargestOfEachColumn) {
  DrawnRecording recording;
  recording.samples = {0, 50, -100, 0, 25, 25, 0, -50};
  recording.utterance = {0, 8};
  const Envelope envelope = EnvelopeOf(recording, {0, 8}, 4);
  EXPECT_EQ(envelope.high, (std::vector<double>{0.5, 0.0, 0.25, 0.0}));
  EXPECT_EQ(envelope.low, (std::vector<double>{0.0, -1.0, 0.0, -0.5}));
}

TEST(EnvelopeOf, SpansOutsideTheRecordingAreSilence) {
  DrawnRecording recording;
  recording.samples = {100, -100};
  recording.utterance = {0, 2};
  for (const DrawnRecording::Span span : {DrawnRecording::Span{5, 9}, {2, 1}, {-9, -5}, {1, 1}}) {
    const Envelope envelope = EnvelopeOf(recording, span, 3);
    EXPECT_EQ(envelope.high, (std::vector<double>(3, 0.0)));
    EXPECT_EQ(envelope.low, (std::vector<double>(3, 0.0)));
  }
}

TEST(Figures, AreLabelledAndHoldNoText) {
  const DrawnRecording drawn = test::SampleGrade().drawn;
  const std::string wave = WaveFigure(drawn, drawn.utterance, true, "learner", "Wave of <a>");
  EXPECT_THAT(wave, StartsWith("<svg class=\"wave learner\" viewBox=\"0 0 1000 100\""));
  EXPECT_THAT(wave, HasSubstr("role=\"img\" aria-label=\"Wave of &lt;a&gt;\""));
  EXPECT_THAT(wave, HasSubstr("<line class=\"edge\" x1=\"428.6\""));  // the second word
  EXPECT_THAT(wave, Not(HasSubstr("<text")));
  EXPECT_THAT(wave, Not(HasSubstr("nan")));
  const std::string bars = BarsFigure(0.5, 1.0, "Length");
  EXPECT_THAT(bars, HasSubstr("class=\"learner\" x=\"0\" y=\"5\" width=\"500.0\""));
  EXPECT_THAT(bars, HasSubstr("class=\"tutor\" x=\"0\" y=\"55\" width=\"1000.0\""));
}

TEST(Figures, PitchIsDrawnWhereItIsVoiced) {
  DrawnRecording drawn = test::SampleGrade().drawn;
  drawn.contours.pitch.assign(128, 0);
  EXPECT_THAT(CurveFigure(drawn, nullptr, Curve::kPitch, ""), Not(HasSubstr("polyline")));
  drawn.contours.pitch[3] = 100;
  drawn.contours.pitch[4] = 229;
  drawn.contours.pitch[64] = 150;
  const std::string figure = CurveFigure(drawn, nullptr, Curve::kPitch, "");
  // Lowest voiced point at the foot, highest at the top, a lone point as a short line.
  EXPECT_THAT(figure, HasSubstr("points=\"23.4,95.0 31.2,5.0 35.2,5.0\""));
  EXPECT_THAT(figure, HasSubstr("points=\"500.0,60.1 504.0,60.1\""));
  EXPECT_THAT(CurveFigure(drawn, &drawn, Curve::kIntensity, ""),
              testing::AllOf(HasSubstr("polyline class=\"tutor\""),
                             HasSubstr("polyline class=\"learner\"")));
}

}  // namespace
}  // namespace veral3::tools
