#include "signal/CPraAutoCorrPDA.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <numbers>
#include <vector>

#include "support/MessageCapture.h"

namespace veral3::test {
namespace {

constexpr double kPeriod = 1.0 / 22050.0;

// Harmonics of equal strength below 4 kHz.
std::vector<std::int16_t> Buzz(std::size_t n, double hertz) {
  std::vector<std::int16_t> samples(n);
  const int harmonics = static_cast<int>(4000.0 / hertz);
  for (std::size_t i = 0; i < n; ++i) {
    double value = 0.0;
    for (int h = 1; h <= harmonics; ++h) {
      value += std::sin(2.0 * std::numbers::pi * h * hertz * static_cast<double>(i) * kPeriod);
    }
    samples[i] = static_cast<std::int16_t>(20000.0 * value / harmonics);
  }
  return samples;
}

std::unique_ptr<CPraPitch> Detect(const std::vector<std::int16_t>& samples, double floor,
                                  double ceiling, double step = 0.0, double dx = kPeriod) {
  return CPraAutoCorrPDA().SoundToPitch(samples.data(), static_cast<std::uint32_t>(samples.size()),
                                        dx, step, floor, ceiling);
}

TEST(PitchDetector, Grid) {
  const auto track = Detect(Buzz(660, 200.0), 75.0, 450.0);
  ASSERT_NE(track, nullptr);
  EXPECT_EQ(track->nx, 1);
  EXPECT_EQ(track->frames.size(), 1U);
  EXPECT_EQ(track->dx, 0.5 / 75.0);
  EXPECT_NEAR(track->x1, 659.0 / 2.0 * kPeriod, 1e-15);
  EXPECT_EQ(track->xmin, 0.0);
  EXPECT_EQ(track->xmax, 660.0 * kPeriod);
  EXPECT_EQ(track->floor, 75.0);
  EXPECT_EQ(track->ceiling, 450.0);
  EXPECT_EQ(track->max_candidates, 15);
}

// Two periods of the floor, 588 samples at 75 Hz: as long a sound has one frame, a shorter one
// none, and each further step of 147 samples one more.
TEST(PitchDetector, TheWindowIs588Samples) {
  for (const auto& [samples, frames] :
       {std::pair{588U, 1}, {600U, 1}, {734U, 1}, {736U, 2}, {881U, 2}, {883U, 3}, {22000U, 146}}) {
    const auto track = Detect(Buzz(samples, 200.0), 75.0, 450.0);
    ASSERT_NE(track, nullptr) << samples;
    EXPECT_EQ(track->nx, frames) << samples;
  }
  const MessageCapture messages;
  EXPECT_EQ(Detect(Buzz(587, 200.0), 75.0, 450.0), nullptr);
  EXPECT_EQ(messages.Of(MessageStream::kError),
            "For this Sound, the parameter 'minimum pitch'\nmay not be less than 75.127768 Hz.\n");
}

// Of them 586 are read, as many before the centre as after it: of 660 those from 37 to 622.
TEST(PitchDetector, AFrameReads586Samples) {
  const std::vector<std::int16_t> sound = Buzz(660, 200.0);
  const auto candidates = [](const std::vector<std::int16_t>& samples) {
    const auto track = Detect(samples, 75.0, 450.0);
    std::vector<double> values;
    for (const CPraPitchCandidate& candidate : track->frames.at(0).candidates) {
      values.push_back(candidate.frequency);
      values.push_back(candidate.strength);
    }
    return values;
  };
  const std::vector<double> expected = candidates(sound);
  for (std::size_t at = 0; at < 660; ++at) {
    std::vector<std::int16_t> other = sound;
    other[at] = static_cast<std::int16_t>(other[at] + 500);
    EXPECT_EQ(candidates(other) != expected, at >= 37 && at <= 622) << at;
  }
}

TEST(PitchDetector, CandidatesOfAFrame) {
  const auto track = Detect(Buzz(5000, 200.0), 75.0, 450.0);
  ASSERT_NE(track, nullptr);
  for (const CPraPitchFrame& frame : track->frames) {
    ASSERT_GE(frame.CandidateCount(), 3);  // unvoiced, the period, twice the period
    EXPECT_EQ(frame.candidates.size(), static_cast<std::size_t>(frame.CandidateCount()) + 1);
    EXPECT_NEAR(frame.Frequency(), 200.0, 0.1);
    EXPECT_GT(frame.intensity, 0.9);
    EXPECT_LE(frame.intensity, 1.0);
    int unvoiced = 0;
    for (std::int32_t i = 1; i <= frame.CandidateCount(); ++i) {
      const CPraPitchCandidate& candidate = frame.candidates[static_cast<std::size_t>(i)];
      EXPECT_LE(candidate.strength, 1.0);
      if (candidate.frequency == 0.0) {
        ++unvoiced;
        EXPECT_EQ(candidate.strength, 0.0);
      } else {
        EXPECT_GE(candidate.frequency, 75.0);
        EXPECT_LE(candidate.frequency, 450.0);
        EXPECT_GT(candidate.strength, 0.2);
      }
    }
    EXPECT_EQ(unvoiced, 1);
  }
}

TEST(PitchDetector, CandidatesAreLimited) {
  // At 4 kHz every sixth lag or so is a maximum: far more than the places.
  std::vector<std::int16_t> samples(2000);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<std::int16_t>(
        9000.0 * std::sin(2.0 * std::numbers::pi * 4000.0 * static_cast<double>(i) * kPeriod));
  }
  const auto track = Detect(samples, 75.0, 450.0);
  CPraAutoCorrPDA::Settings unlimited;
  unlimited.max_candidates = 1000;
  const auto all = CPraAutoCorrPDA().Analyze(samples, kPeriod, unlimited);
  ASSERT_NE(track, nullptr);
  ASSERT_NE(all, nullptr);

  // Those are kept that a strength with a share of the height speaks for.
  const auto strengths = [](const CPraPitchFrame& frame) {
    std::vector<double> values;
    for (std::size_t i = 1; i < frame.candidates.size(); ++i) {
      const CPraPitchCandidate& candidate = frame.candidates[i];
      if (candidate.frequency == 0.0) continue;
      values.push_back(candidate.strength + 0.01 * std::log2(candidate.frequency));
    }
    std::sort(values.rbegin(), values.rend());
    return values;
  };
  for (std::size_t i = 0; i < track->frames.size(); ++i) {
    EXPECT_EQ(track->frames[i].CandidateCount(), 15);
    std::vector<double> strongest = strengths(all->frames[i]);
    ASSERT_GT(strongest.size(), 30U);
    strongest.resize(14);
    EXPECT_EQ(strengths(track->frames[i]), strongest);
  }
}

// A tone whose loudness swells 100 times a second: the shortest periods of the range are its
// weakest, and the first found is given up for a better one like any other.
TEST(PitchDetector, TheFirstCandidateIsGivenUpToo) {
  std::vector<std::int16_t> samples(2000);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double time = static_cast<double>(i) * kPeriod;
    samples[i] =
        static_cast<std::int16_t>(5000.0 * (1.0 + std::cos(2.0 * std::numbers::pi * 100.0 * time)) *
                                  std::sin(2.0 * std::numbers::pi * 3000.0 * time));
  }
  CPraAutoCorrPDA::Settings settings;
  settings.ceiling = 150.0;
  settings.max_candidates = 3;
  const auto few = CPraAutoCorrPDA().Analyze(samples, kPeriod, settings);
  settings.max_candidates = 1000;
  const auto all = CPraAutoCorrPDA().Analyze(samples, kPeriod, settings);
  ASSERT_NE(few, nullptr);
  ASSERT_NE(all, nullptr);
  for (std::size_t i = 0; i < few->frames.size(); ++i) {
    const auto voiced = [](const CPraPitchFrame& frame) {
      std::vector<std::pair<double, double>> found;  // by what they count
      for (std::size_t k = 1; k < frame.candidates.size(); ++k) {
        const CPraPitchCandidate& c = frame.candidates[k];
        if (c.frequency > 0.0) {
          found.emplace_back(c.strength + 0.01 * std::log2(c.frequency), c.frequency);
        }
      }
      return found;
    };
    auto expected = voiced(all->frames[i]);
    ASSERT_GT(expected.size(), 10U);
    const double first = std::max_element(expected.begin(), expected.end(), [](auto& a, auto& b) {
                           return a.second < b.second;
                         })->second;
    std::sort(expected.rbegin(), expected.rend());
    expected.resize(2);
    EXPECT_NE(expected[0].second, first);
    EXPECT_NE(expected[1].second, first);
    auto kept = voiced(few->frames[i]);
    std::sort(kept.rbegin(), kept.rend());
    EXPECT_EQ(kept, expected);
  }
}

// Where every candidate counts the same, the earlier ones, of the shorter periods, stay.
TEST(PitchDetector, OfEqualCandidatesTheEarlierStay) {
  std::vector<std::int16_t> samples(2000);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<std::int16_t>(
        9000.0 * std::sin(2.0 * std::numbers::pi * 4000.0 * static_cast<double>(i) * kPeriod));
  }
  CPraAutoCorrPDA::Settings settings;
  settings.octave_cost = std::numeric_limits<double>::infinity();
  const auto frequencies = [&](std::int32_t limit) {
    settings.max_candidates = limit;
    const auto track = CPraAutoCorrPDA().Analyze(samples, kPeriod, settings);
    std::vector<double> found;
    for (const CPraPitchCandidate& candidate : track->frames.at(0).candidates) {
      if (candidate.frequency > 0.0) found.push_back(candidate.frequency);
    }
    std::sort(found.rbegin(), found.rend());
    return found;
  };
  std::vector<double> expected = frequencies(1000);
  ASSERT_GT(expected.size(), 30U);
  expected.resize(14);
  EXPECT_EQ(frequencies(15), expected);
}

TEST(PitchDetector, AWideRangeRaisesTheNumberOfCandidates) {
  const auto track = Detect(Buzz(5000, 200.0), 75.0, 3000.0);
  ASSERT_NE(track, nullptr);
  EXPECT_EQ(track->max_candidates, 40);
}

TEST(PitchDetector, TheCeilingIsHalfTheSamplingRateAtMost) {
  const auto track = Detect(Buzz(5000, 200.0), 75.0, 1e9);
  ASSERT_NE(track, nullptr);
  EXPECT_EQ(track->ceiling, 11025.0);
  EXPECT_EQ(track->max_candidates, 147);
}

TEST(PitchDetector, AStepOfOnesOwn) {
  const auto track = Detect(Buzz(5000, 200.0), 75.0, 450.0, 0.01);
  ASSERT_NE(track, nullptr);
  EXPECT_EQ(track->dx, 0.01);
  EXPECT_EQ(track->nx, 21);
  EXPECT_LE(Detect(Buzz(1000, 200.0), 75.0, 450.0, 1e-30)->nx, 1000 - 588 + 1);
  EXPECT_EQ(Detect(Buzz(1000, 200.0), 75.0, 450.0, 1e30)->nx, 1);
}

TEST(PitchDetector, SilenceHasFramesButNoVoice) {
  const auto track = Detect(std::vector<std::int16_t>(5000, 123), 75.0, 450.0);
  ASSERT_NE(track, nullptr);
  EXPECT_GT(track->nx, 0);
  for (const CPraPitchFrame& frame : track->frames) {
    EXPECT_EQ(frame.CandidateCount(), 1);
    EXPECT_EQ(frame.Frequency(), 0.0);
    EXPECT_EQ(frame.intensity, 0.0);
  }
}

// As loud as the hundredth part of the loudest, a voice is taken for noise: its share of the peak
// lies below the silence threshold of 0.03. Below a threshold of 0.001 it does not.
TEST(PitchDetector, ASoftVoiceCountsAboveTheSilenceThreshold) {
  std::vector<std::int16_t> samples = Buzz(6000, 200.0);
  for (const std::int16_t sample : Buzz(6000, 200.0)) {
    samples.push_back(static_cast<std::int16_t>(sample / 100));
  }
  CPraAutoCorrPDA::Settings settings;
  for (const auto& [threshold, hertz] : {std::pair{0.03, 0.0}, {0.001, 200.0}}) {
    settings.silence_threshold = threshold;
    const auto track = CPraAutoCorrPDA().Analyze(samples, kPeriod, settings);
    ASSERT_NE(track, nullptr);
    int soft = 0;
    for (std::int32_t i = 1; i <= track->nx; ++i) {
      const CPraPitchFrame& frame = track->Frame(i);
      const double centre = (track->x1 + (i - 1) * track->dx) / kPeriod;  // [samples]
      if (centre < 5700.0) {
        EXPECT_NEAR(frame.Frequency(), 200.0, 0.5) << i;
        EXPECT_GT(frame.intensity, 0.9) << i;
      } else if (centre > 6300.0) {
        ++soft;
        EXPECT_NEAR(frame.Frequency(), hertz, 1.0) << i;
        EXPECT_NEAR(frame.intensity, 0.01, 0.001) << i;
      }
    }
    EXPECT_GT(soft, 20);
  }
}

// 200 Hz repeats itself at 100 Hz as well, though less clearly: where jumps cost more than all that
// this loses, a voice that rises from 100 to 200 Hz is followed an octave too low.
TEST(PitchDetector, JumpsOfAnOctaveHaveTheirPrice) {
  std::vector<std::int16_t> samples = Buzz(9000, 100.0);
  const std::vector<std::int16_t> higher = Buzz(2205, 200.0);
  samples.insert(samples.end(), higher.begin(), higher.end());
  CPraAutoCorrPDA::Settings settings;
  settings.voiced_unvoiced_cost = 10.0;  // no way round by an unvoiced frame
  for (const auto& [cost, hertz] : {std::pair{10.0, 100.0}, {0.0, 200.0}}) {
    settings.octave_jump_cost = cost;
    const auto track = CPraAutoCorrPDA().Analyze(samples, kPeriod, settings);
    ASSERT_NE(track, nullptr);
    for (std::int32_t i = 1; i <= track->nx; ++i) {
      const double centre = (track->x1 + (i - 1) * track->dx) / kPeriod;
      if (centre < 8700.0) {
        EXPECT_NEAR(track->Frame(i).Frequency(), 100.0, 0.5) << i;
      } else if (centre > 9300.0) {
        EXPECT_NEAR(track->Frame(i).Frequency(), hertz, 0.5) << i;
      }
    }
  }
}

// Its peak is half a step.
TEST(PitchDetector, TheSoftestSquareHasAPitch) {
  std::vector<std::int16_t> samples(5000);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = i % 110 < 55 ? 1 : 0;
  const auto track = Detect(samples, 75.0, 450.0);
  ASSERT_NE(track, nullptr);
  for (const CPraPitchFrame& frame : track->frames) {
    EXPECT_NEAR(frame.Frequency(), 22050.0 / 110.0, 0.5);
    EXPECT_GT(frame.intensity, 0.9);
  }
}

TEST(PitchDetector, TooShortForTheFloor) {
  MessageCapture messages;
  EXPECT_EQ(Detect(Buzz(587, 200.0), 75.0, 450.0), nullptr);
  EXPECT_EQ(messages.StandardError(),
            "For this Sound, the parameter 'minimum pitch'\nmay not be less than 75.127768 Hz.\n");
  messages.Clear();
  EXPECT_EQ(Detect({}, 75.0, 450.0), nullptr);
  EXPECT_EQ(messages.StandardError(),
            "For this Sound, the parameter 'minimum pitch'\nmay not be less than inf Hz.\n");
  messages.Clear();
  EXPECT_EQ(CPraAutoCorrPDA().SoundToPitch(nullptr, 1000, kPeriod, 0.0, 75.0, 450.0), nullptr);
  EXPECT_NE(messages.StandardError(), "");
}

TEST(PitchDetector, TooFewSamplesInTheWindow) {
  MessageCapture messages;
  EXPECT_EQ(Detect(Buzz(5000, 200.0), 8000.0, 9000.0), nullptr);
  EXPECT_EQ(messages.StandardError(), "Analysis window too short.\n");
}

TEST(PitchDetector, ShorterThanTheWindowByRounding) {
  // The quotients may disagree in the last place: then the second check refuses.
  MessageCapture messages;
  const std::vector<std::int16_t> samples(1000);
  int refused = 0;
  for (std::uint32_t n = 100; n <= 1000; ++n) {
    const double floor = 2.0 / (n * kPeriod);
    const auto track = CPraAutoCorrPDA().SoundToPitch(samples.data(), n, kPeriod, 0.0, floor, 450);
    if (track) continue;
    ++refused;
    EXPECT_EQ(messages.StandardError().rfind("Wav duration 0.0", 0), 0U)
        << messages.StandardError();
    EXPECT_NE(messages.StandardError().find(" shorter than window length 0.0"), std::string::npos);
    EXPECT_EQ(messages.StandardError().substr(messages.StandardError().size() - 2), ".\n");
    messages.Clear();
  }
  EXPECT_GT(refused, 0);
}

// Runs out of memory at the candidates of one frame.
class PoorDetector : public CPraAutoCorrPDA {
 protected:
  void StoreCandidates(CPraPitchFrame& frame,
                       std::span<const CPraPitchCandidate> candidates) const override {
    if (++m_frame == 3) throw std::bad_alloc();
    CPraAutoCorrPDA::StoreCandidates(frame, candidates);
  }

 private:
  mutable int m_frame = 0;
};

TEST(PitchDetector, OutOfMemory) {
  MessageCapture messages;
  const auto samples = Buzz(5000, 200.0);
  EXPECT_THROW(PoorDetector().SoundToPitch(samples.data(), 5000, kPeriod, 0.0, 75.0, 450.0),
               std::bad_alloc);
  EXPECT_EQ(messages.StandardError(), "Pitch not created.\n");
}

TEST(PitchDetector, AbsurdArguments) {
  MessageCapture messages;
  const auto samples = Buzz(2000, 200.0);
  const double kNan = std::numeric_limits<double>::quiet_NaN();
  const double kInfinity = std::numeric_limits<double>::infinity();
  const double values[] = {kNan, kInfinity, -kInfinity, 0.0, -1.0, 1e-300, 1e300, 75.0, 450.0};
  for (const double floor : values) {
    for (const double ceiling : values) {
      for (const double step : {0.0, 0.01, kNan, kInfinity}) {
        for (const double dx : {kPeriod, 0.0, -1.0, kNan, kInfinity, 1e300, 1e-300}) {
          const auto track = Detect(samples, floor, ceiling, step, dx);
          if (!track) continue;
          for (const CPraPitchFrame& frame : track->frames) {
            ASSERT_TRUE(std::isfinite(frame.Frequency()));
          }
        }
      }
    }
  }
  EXPECT_NE(messages.StandardError(), "");
}

TEST(PitchRangeEstimate, WidthsOfTheGaps) {
  // The lower gap is more than 60 Hz wide, the upper one more than 50.
  const std::vector<double> at_the_widths = {100, 160, 165, 170, 175, 180, 185, 235};
  EXPECT_FALSE(EstimateRangeOfSorted(at_the_widths).gap_found);
  const std::vector<double> low = {100, 160.5, 165, 170, 175, 180, 185, 235};
  EXPECT_TRUE(EstimateRangeOfSorted(low).gap_found);
  EXPECT_EQ(EstimateRangeOfSorted(low).low, 160.5);
  EXPECT_EQ(EstimateRangeOfSorted(low).high, 235.0);
  const std::vector<double> high = {100, 160, 165, 170, 175, 180, 185, 235.5};
  EXPECT_TRUE(EstimateRangeOfSorted(high).gap_found);
  EXPECT_EQ(EstimateRangeOfSorted(high).low, 100.0);
  EXPECT_EQ(EstimateRangeOfSorted(high).high, 185.0);
}

// Of eight values gaps count before the second and the third, and before the last.
TEST(PitchRangeEstimate, GapsInTheMiddleDoNotCount) {
  const std::vector<double> middle = {100, 101, 102, 200, 201, 202, 300, 301};
  EXPECT_FALSE(EstimateRangeOfSorted(middle).gap_found);
  EXPECT_EQ(EstimateRangeOfSorted(middle).low, 100.0);
  EXPECT_EQ(EstimateRangeOfSorted(middle).high, 301.0);
  const std::vector<double> outer = {100, 101, 200, 201, 202, 203, 204, 300};
  EXPECT_TRUE(EstimateRangeOfSorted(outer).gap_found);
  EXPECT_EQ(EstimateRangeOfSorted(outer).low, 200.0);
  EXPECT_EQ(EstimateRangeOfSorted(outer).high, 204.0);
  // Of four the first step counts and no upper one, of five the last one too.
  EXPECT_EQ(EstimateRangeOfSorted(std::vector<double>{100, 200, 201, 300}).low, 200.0);
  EXPECT_EQ(EstimateRangeOfSorted(std::vector<double>{100, 200, 201, 300}).high, 300.0);
  EXPECT_EQ(EstimateRangeOfSorted(std::vector<double>{100, 101, 102, 103, 300}).high, 103.0);
  // Of several gaps the inner one at the bottom and the inner one at the top.
  const std::vector<double> two = {80, 150, 250, 251, 252, 253, 254, 255, 256, 257, 350, 450};
  EXPECT_EQ(EstimateRangeOfSorted(two).low, 250.0);
  EXPECT_EQ(EstimateRangeOfSorted(two).high, 257.0);
}

// What lies at the floor or at the ceiling is voiced; with a floor of 0 so is 0.
TEST(PitchRangeEstimate, TheLimitsThemselvesCount) {
  CPraPitch track;
  for (const double frequency : {75.0, 100.0, 120.0, 130.0}) {
    CPraPitchFrame frame;
    frame.candidates = {{}, {frequency, 0.9}, {}};
    track.frames.push_back(frame);
  }
  track.nx = 4;
  track.floor = 75.0;
  track.ceiling = 130.0;
  double low = 0.0, high = 0.0;
  EXPECT_FALSE(CPraAutoCorrPDA().EstimatePitchRange(track, low, high));
  EXPECT_EQ(low, 75.0);
  EXPECT_EQ(high, 130.0);
  track.floor = 0.0;
  track.frames[2].candidates[1].frequency = 0.0;
  track.frames[0].candidates[1].frequency = 60.0;
  EXPECT_FALSE(CPraAutoCorrPDA().EstimatePitchRange(track, low, high));
  EXPECT_EQ(low, 0.0);
}

TEST(PitchTrack, AcceptsTheLimitsThemselves) {
  CPraPitch track;
  track.floor = 75.0;
  track.ceiling = 450.0;
  EXPECT_TRUE(track.Accepts(75.0));
  EXPECT_TRUE(track.Accepts(450.0));
  EXPECT_FALSE(track.Accepts(74.999));
  EXPECT_FALSE(track.Accepts(450.001));
  track.floor = 0.0;
  EXPECT_TRUE(track.Accepts(0.0));
  track.floor = -10.0;
  EXPECT_TRUE(track.Accepts(0.0));
  EXPECT_FALSE(track.Accepts(-5.0));
}

TEST(PitchRangeEstimate, Few) {
  EXPECT_EQ(EstimateRangeOfSorted({}).low, 0.0);
  EXPECT_EQ(EstimateRangeOfSorted({}).high, 0.0);
  // Below four values nothing lies beyond a gap below; with three or fewer nothing above.
  const std::vector<double> three = {80.0, 200.0, 400.0};
  EXPECT_FALSE(EstimateRangeOfSorted(three).gap_found);
  EXPECT_EQ(EstimateRangeOfSorted(three).low, 80.0);
  EXPECT_EQ(EstimateRangeOfSorted(three).high, 400.0);
}

TEST(PitchRangeEstimate, ReadsTheChosenCandidatesThatPass) {
  CPraPitch track;
  track.floor = 75.0;
  track.ceiling = 450.0;
  for (const double frequency : {210.0, 0.0, 60.0, 200.0, 500.0, 205.0}) {
    CPraPitchFrame frame;
    frame.candidates = {{}, {frequency, 0.9}, {90.0, 0.5}};
    track.frames.push_back(frame);
  }
  track.frames.back().candidates.pop_back();  // one candidate only: unvoiced
  track.nx = static_cast<std::int32_t>(track.frames.size());
  double low = -1.0, high = -1.0;
  EXPECT_FALSE(CPraAutoCorrPDA().EstimatePitchRange(track, low, high));
  EXPECT_EQ(low, 200.0);
  EXPECT_EQ(high, 210.0);
}

}  // namespace
}  // namespace veral3::test
