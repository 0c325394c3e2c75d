#include "signal/FramePitch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <thread>
#include <vector>

#include "signal/CWaveFrameDef.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

using testing::Each;

nlohmann::json Cases(const char* name, std::size_t count) {
  nlohmann::json cases = LoadVectorJson("pitch.json").at(name);
  EXPECT_EQ(cases.size(), count);
  return cases;
}

std::vector<int> FramePitch(const std::vector<std::int16_t>& samples) {
  const auto n = static_cast<std::uint32_t>(samples.size());
  std::vector<int> frames(static_cast<std::size_t>(NumFrames(n)), -1);
  CalculateFramePitch(samples.data(), n, frames);
  return frames;
}

std::vector<std::int16_t> Tone(std::size_t n, double hertz, double amplitude, double offset = 0) {
  std::vector<std::int16_t> samples(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double phase = 2.0 * std::numbers::pi * hertz * static_cast<double>(i) / kSampleRate;
    samples[i] = static_cast<std::int16_t>(offset + amplitude * std::sin(phase));
  }
  return samples;
}

std::vector<std::int16_t> WhiteNoise(std::size_t n) {
  std::vector<std::int16_t> samples(n);
  std::uint32_t state = 7;
  for (std::int16_t& sample : samples) {
    state = state * 1664525U + 1013904223U;
    sample = static_cast<std::int16_t>(static_cast<int>(state >> 16) - 32768);
  }
  return samples;
}

// A track of one candidate a frame besides the unvoiced one.
CPraPitch TrackOf(const std::vector<double>& frequencies, double x1, double step) {
  CPraPitch track;
  track.nx = static_cast<std::int32_t>(frequencies.size());
  track.x1 = x1;
  track.dx = step;
  track.floor = 75.0;
  track.ceiling = 450.0;
  for (const double frequency : frequencies) {
    CPraPitchFrame frame;
    frame.candidates = {{}, {frequency, 0.9}, {}};
    track.frames.push_back(frame);
  }
  return track;
}

TEST(FramePitchVectors, Signals) {
  for (const auto& c : Cases("signals", 20)) {
    SCOPED_TRACE(c.at("name").get<std::string>());
    const auto samples = LoadVector<std::int16_t>(c.at("samples"));
    const auto& expected = c.at("frame_pitch");
    std::vector<int> frames = FramePitch(samples);
    ASSERT_EQ(frames.size(), expected.size());
    for (std::size_t i = 0; i < frames.size(); ++i) {
      if (c.at("firm")[i] == 0) continue;
      const int value = expected[i].is_null() ? 0 : expected[i].get<int>();
      EXPECT_EQ(frames[i] != 0, value != 0) << "frame " << i;
      EXPECT_NEAR(frames[i], value, c.at("tol_hz").get<int>()) << "frame " << i;
    }
  }
}

TEST(FramePitchVectors, Grids) {
  for (const auto& c : Cases("signals", 20)) {
    const auto& info = c.at("info");
    if (info.empty()) continue;
    SCOPED_TRACE(c.at("name").get<std::string>());
    const auto samples = LoadVector<std::int16_t>(c.at("samples"));
    const auto track = TrackSpeakerPitch(CPraAutoCorrPDA(), samples.data(),
                                         static_cast<std::uint32_t>(samples.size()));
    ASSERT_NE(track, nullptr);
    EXPECT_EQ(track->nx, info.at("nx").get<int>());
    // A fitted floor is a measured one.
    const double tolerance = info.at("second_run").get<bool>() ? 1e-5 : 1e-15;
    EXPECT_NEAR(track->dx, info.at("step").get<double>(), tolerance);
    EXPECT_NEAR(track->x1, info.at("x1").get<double>(), tolerance);
    if (info.at("high").get<double>() == 0.0) continue;
    EXPECT_NEAR(track->floor, info.at("low").get<double>() - 10.0, 0.2);
    EXPECT_NEAR(track->ceiling, info.at("high").get<double>() + 10.0, 0.2);
  }
}

TEST(FramePitchVectors, RangeEstimate) {
  for (const auto& c : Cases("range_estimate", 52)) {
    const auto sorted = c.at("sorted").get<std::vector<double>>();
    const PitchRange range = EstimateRangeOfSorted(sorted);
    EXPECT_EQ(range.low, c.at("low").get<double>()) << c;
    EXPECT_EQ(range.high, c.at("high").get<double>()) << c;
    EXPECT_EQ(range.gap_found, c.at("gap").get<bool>()) << c;
  }
}

TEST(FramePitchVectors, FrameMapping) {
  for (const auto& c : Cases("frame_mapping", 9)) {
    CPraPitch track = TrackOf(c.at("track_frequency"), c.at("x1"), c.at("step"));
    track.floor = c.at("floor");
    track.ceiling = c.at("ceiling");
    ASSERT_EQ(track.nx, c.at("nx").get<int>());
    std::vector<int> expected;
    for (const auto& value : c.at("expected")) {
      expected.push_back(value.is_null() ? 0 : value.get<int>());
    }
    ASSERT_EQ(static_cast<int>(expected.size()), NumFrames(c.at("num_samples")));
    std::vector<int> frames(expected.size(), 0);
    MapTrackToFrames(track, frames);
    EXPECT_EQ(frames, expected);
  }
}

TEST(FrameMapping, MeansAreCutNotRounded) {
  const CPraPitch track = TrackOf({199.8, 200.0, 199.9}, 0.001, 0.003);
  std::vector<int> frames(1);
  MapTrackToFrames(track, frames);
  EXPECT_EQ(frames[0], 199);
}

TEST(FrameMapping, ABoundaryFrameCountsInBothNeighbours) {
  // One track frame for every feature frame, at its start: frame i means track frames i and i + 1.
  const CPraPitch track = TrackOf({100.0, 200.0, 300.0, 400.0}, 0.0, 220.0 / 22050.0);
  std::vector<int> frames(3);
  MapTrackToFrames(track, frames);
  EXPECT_EQ(frames, (std::vector<int>{150, 250, 350}));
}

TEST(FrameMapping, RejectedFramesDoNotCount) {
  CPraPitch track = TrackOf({100.0, 90.0, 0.0, 310.0, 120.0}, 0.0, 0.001);
  track.floor = 95.0;
  track.ceiling = 300.0;
  track.frames[4].candidates.pop_back();  // a single candidate reads as unvoiced
  std::vector<int> frames(1);
  MapTrackToFrames(track, frames);
  EXPECT_EQ(frames[0], 100);
}

TEST(FrameMapping, PlacesOutsideTheTrack) {
  // Before the first frame a place is 0; after the last it stays as it was.
  const CPraPitch track = TrackOf({100.0, 100.0}, 0.025, 0.005);
  std::vector<int> frames(6, -7);
  MapTrackToFrames(track, frames);
  EXPECT_EQ(frames, (std::vector<int>{0, 0, 100, 100, -7, -7}));
}

TEST(FramePitch, ShortRecordings) {
  MessageCapture messages;
  for (const std::size_t n : {0U, 1U, 550U, 551U, 659U}) {
    EXPECT_THAT(FramePitch(Tone(n, 200.0, 10000.0)), Each(0)) << n;
  }
  EXPECT_EQ(messages.All(), "");

  // From 660 samples on there is a track, of one frame here; its centre lies beyond the only
  // feature frame's.
  const auto samples = Tone(660, 200.0, 10000.0);
  const auto track = TrackSpeakerPitch(CPraAutoCorrPDA(), samples.data(), 660);
  ASSERT_NE(track, nullptr);
  ASSERT_EQ(track->nx, 1);
  EXPECT_NEAR(track->Frame(1).Frequency(), 200.0, 0.01);
  EXPECT_EQ(FramePitch(samples), std::vector<int>{0});
}

TEST(FramePitch, TheArrayMayBeOfAnotherSize) {
  const auto samples = Tone(22050, 200.0, 10000.0);
  std::vector<int> few(3, -1), many(200, -1);
  CalculateFramePitch(samples.data(), 22050, few);
  CalculateFramePitch(samples.data(), 22050, many);
  EXPECT_EQ(few, std::vector<int>(many.begin(), many.begin() + 3));
  EXPECT_THAT(std::vector<int>(many.begin() + NumFrames(22050), many.end()), Each(0));
}

TEST(FramePitch, NoSamples) {
  std::vector<int> frames(4, -1);
  CalculateFramePitch(nullptr, 22050, frames);
  EXPECT_THAT(frames, Each(0));
}

TEST(FramePitch, SoundsWithoutPitch) {
  EXPECT_THAT(FramePitch(std::vector<std::int16_t>(11025)), Each(0));         // silence
  EXPECT_THAT(FramePitch(std::vector<std::int16_t>(11025, 20000)), Each(0));  // constant
  EXPECT_THAT(FramePitch(std::vector<std::int16_t>(11025, -32768)), Each(0));
  EXPECT_THAT(FramePitch(WhiteNoise(11025)), Each(0));
}

TEST(FramePitch, NoVoicedFrameLeavesTheFloor) {
  const std::vector<std::int16_t> silence(11025);
  const auto track = TrackSpeakerPitch(CPraAutoCorrPDA(), silence.data(), 11025);
  ASSERT_NE(track, nullptr);
  EXPECT_EQ(track->floor, 75.0);
  EXPECT_EQ(track->ceiling, 10.0);
}

TEST(FramePitch, TonesAndSquares) {
  for (const double hertz : {80.0, 123.0, 200.0, 333.0, 440.0}) {
    const auto square = [&] {
      auto samples = Tone(11025, hertz, 10000.0);
      for (auto& sample : samples) sample = sample < 0 ? -32768 : 32767;
      return samples;
    }();
    for (const auto& samples : {Tone(11025, hertz, 10000.0), Tone(11025, hertz, 2.0),
                                Tone(11025, hertz, 10000.0, 20000.0), square}) {
      const std::vector<int> frames = FramePitch(samples);
      EXPECT_EQ(frames[0], 0);  // before the first window's centre
      for (std::size_t i = 1; i + 1 < frames.size(); ++i) EXPECT_NEAR(frames[i], hertz, 2.0);
    }
  }
}

// The two runs, with what each was asked for; the second may be made to fail.
class RecordingDetector : public CPraAutoCorrPDA {
 public:
  explicit RecordingDetector(int failing_call) : m_failing_call(failing_call) {}

  std::unique_ptr<CPraPitch> SoundToPitch(const std::int16_t* samples, std::uint32_t n, double dx,
                                          double time_step, double floor,
                                          double ceiling) const override {
    calls.emplace_back(floor, ceiling);
    if (static_cast<int>(calls.size()) == m_failing_call) return nullptr;
    return CPraAutoCorrPDA::SoundToPitch(samples, n, dx, time_step, floor, ceiling);
  }

  mutable std::vector<std::pair<double, double>> calls;

 private:
  int m_failing_call;
};

TEST(TwoRuns, AStrayReadingIsCutOff) {
  const auto samples = LoadVector<std::int16_t>("pitch/high_outlier.s16");
  const auto n = static_cast<std::uint32_t>(samples.size());
  RecordingDetector detector(0);
  const auto track = TrackSpeakerPitch(detector, samples.data(), n);
  ASSERT_EQ(detector.calls.size(), 2U);
  EXPECT_EQ(detector.calls[0], (std::pair{75.0, 450.0}));

  CPraAutoCorrPDA plain;
  const auto first = plain.SoundToPitch(samples.data(), n, 1.0 / kSampleRate, 0.0, 75.0, 450.0);
  double low = 0.0, high = 0.0;
  EXPECT_TRUE(plain.EstimatePitchRange(*first, low, high));
  EXPECT_EQ(detector.calls[1], (std::pair{std::max(low - 30.0, 75.0), high + 30.0}));
  EXPECT_LT(track->ceiling, 140.0);
}

TEST(TwoRuns, ASecondRunThatFailsLeavesTheFirst) {
  const auto samples = LoadVector<std::int16_t>("pitch/high_outlier.s16");
  const auto n = static_cast<std::uint32_t>(samples.size());
  RecordingDetector detector(2);
  const auto track = TrackSpeakerPitch(detector, samples.data(), n);
  ASSERT_EQ(detector.calls.size(), 2U);
  ASSERT_NE(track, nullptr);
  EXPECT_EQ(track->dx, 0.5 / 75.0);
  // The range of the first run holds: what it cut off is not voiced.
  EXPECT_NEAR(track->ceiling, detector.calls[1].second - 20.0, 1e-9);
}

TEST(TwoRuns, AFirstRunThatFailsGivesNothing) {
  const auto samples = Tone(11025, 200.0, 10000.0);
  std::vector<int> frames(static_cast<std::size_t>(NumFrames(11025)), -1);
  CalculateFramePitch(RecordingDetector(1), samples.data(), 11025, frames);
  EXPECT_THAT(frames, Each(0));
}

TEST(TwoRuns, AWideRangeWithoutGapNeedsOne) {
  std::vector<std::int16_t> samples(44100);  // a glide from 80 to 300 Hz
  double phase = 0.0;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double hertz = 80.0 * std::pow(300.0 / 80.0, static_cast<double>(i) / 44100.0);
    phase += 2.0 * std::numbers::pi * hertz / kSampleRate;
    samples[i] = static_cast<std::int16_t>(9000.0 * (std::sin(phase) + std::sin(2.0 * phase)));
  }
  RecordingDetector detector(0);
  const auto track = TrackSpeakerPitch(detector, samples.data(), 44100);
  EXPECT_EQ(detector.calls.size(), 1U);
  double lowest = 1e9, highest = 0.0;
  for (const CPraPitchFrame& frame : track->frames) {
    if (frame.Frequency() == 0.0) continue;
    lowest = std::min(lowest, frame.Frequency());
    highest = std::max(highest, frame.Frequency());
  }
  EXPECT_EQ(track->floor, lowest - 10.0);
  EXPECT_EQ(track->ceiling, highest + 10.0);
  EXPECT_LT(lowest, 85.0);
  EXPECT_GT(highest, 290.0);
}

// From 75 to 450 Hz, also where the period is longer or shorter: what is voiced lies within.
TEST(FramePitch, LiesWithinTheWidestRange) {
  int lowest = 1000, highest = 0;
  for (double hertz = 20.0; hertz < 2000.0; hertz *= 1.01) {
    for (const int frame : FramePitch(Tone(6615, hertz, 20000.0))) {
      if (frame == 0) continue;
      lowest = std::min(lowest, frame);
      highest = std::max(highest, frame);
    }
  }
  EXPECT_GE(lowest, 75);
  EXPECT_LT(lowest, 80);
  EXPECT_LE(highest, 450);
  EXPECT_GT(highest, 440);
}

TEST(FramePitch, LongRecordings) {
  auto samples = Tone(30 * 22050, 150.0, 8000.0);
  const std::vector<int> frames = FramePitch(samples);
  ASSERT_EQ(frames.size(), 3005U);
  for (std::size_t i = 1; i + 1 < frames.size(); ++i) ASSERT_NEAR(frames[i], 150, 1);
}

TEST(FramePitch, ThreadsGiveTheSameBits) {
  const CPraAutoCorrPDA detector;
  const char* const names[] = {"pitch/speech_like_0.s16", "pitch/high_outlier.s16"};
  const auto frequencies = [&](const char* name) {
    const auto samples = LoadVector<std::int16_t>(name);
    std::vector<double> values;
    for (int repeat = 0; repeat < 3; ++repeat) {
      const auto track =
          TrackSpeakerPitch(detector, samples.data(), static_cast<std::uint32_t>(samples.size()));
      for (const CPraPitchFrame& frame : track->frames) {
        for (const CPraPitchCandidate& candidate : frame.candidates) {
          values.push_back(candidate.frequency);
          values.push_back(candidate.strength);
        }
      }
    }
    return values;
  };
  std::vector<double> alone[2], together[2];
  for (std::size_t i = 0; i < 2; ++i) alone[i] = frequencies(names[i]);
  std::thread other([&] { together[1] = frequencies(names[1]); });
  together[0] = frequencies(names[0]);
  other.join();
  for (std::size_t i = 0; i < 2; ++i) EXPECT_EQ(alone[i], together[i]);
}

}  // namespace
}  // namespace veral3::test
