#include "signal/PitchPath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace veral3::test {
namespace {

class Random {
 public:
  double Next() {  // 0..1
    m_state = m_state * 1664525U + 1013904223U;
    return static_cast<double>(m_state >> 8) / (1 << 24);
  }

 private:
  std::uint32_t m_state = 11;
};

CPraPitchFrame Frame(double intensity, std::vector<CPraPitchCandidate> candidates) {
  CPraPitchFrame frame;
  frame.intensity = intensity;
  frame.candidates = std::move(candidates);
  frame.candidates.insert(frame.candidates.begin(), CPraPitchCandidate());
  return frame;
}

// What a way through the track is worth, from the published formulas.
double Worth(const CPraPitch& pitch, const std::vector<std::size_t>& way,
             const PitchPathSettings& s) {
  double worth = 0.0;
  for (std::size_t i = 0; i < way.size(); ++i) {
    const CPraPitchFrame& frame = pitch.frames[i];
    const double f = frame.candidates[way[i]].frequency;
    const bool voiced = f > 0.0 && f <= s.ceiling;
    worth += voiced ? frame.candidates[way[i]].strength - s.octave_cost * std::log2(s.ceiling / f)
                    : s.voicing_threshold +
                          std::max(0.0, 2.0 - frame.intensity / (s.silence_threshold /
                                                                 (1.0 + s.voicing_threshold)));
    if (i == 0) continue;
    const double g = pitch.frames[i - 1].candidates[way[i - 1]].frequency;
    const bool before = g > 0.0 && g <= s.ceiling;
    if (voiced != before) {
      worth -= s.voiced_unvoiced_cost * 0.01 / pitch.dx;
    } else if (voiced) {
      worth -= s.octave_jump_cost * 0.01 / pitch.dx * std::abs(std::log2(f / g));
    }
  }
  return worth;
}

TEST(PitchPath, UnvoicedStrength) {
  const PitchPathSettings settings;
  EXPECT_DOUBLE_EQ(UnvoicedStrength(1.0, settings), 0.45);
  EXPECT_DOUBLE_EQ(UnvoicedStrength(0.0, settings), 2.45);
  EXPECT_NEAR(UnvoicedStrength(0.03 / 1.45, settings), 1.45, 1e-12);
  EXPECT_NEAR(UnvoicedStrength(0.06 / 1.45, settings), 0.45, 1e-12);
}

TEST(PitchPath, IsTheBestOfAllWays) {
  Random random;
  for (int round = 0; round < 200; ++round) {
    CPraPitch pitch;
    pitch.dx = 0.002 + 0.01 * random.Next();
    for (int i = 0; i < 5; ++i) {
      std::vector<CPraPitchCandidate> candidates(1);
      const int voiced = static_cast<int>(random.Next() * 4.0);
      for (int k = 0; k < voiced; ++k) {
        candidates.emplace_back(75.0 + 400.0 * random.Next(), 0.2 + 0.8 * random.Next());
      }
      pitch.frames.push_back(Frame(random.Next() * 0.1, candidates));
    }
    pitch.nx = 5;
    const PitchPathSettings settings;

    std::vector<std::size_t> way(5, 1), best = way;
    double best_worth = -1e9;
    for (;;) {
      if (const double worth = Worth(pitch, way, settings); worth > best_worth) {
        best_worth = worth;
        best = way;
      }
      std::size_t i = 0;
      while (i < 5 && ++way[i] == pitch.frames[i].candidates.size()) way[i++] = 1;
      if (i == 5) break;
    }

    CPraPitch found = pitch;
    FindPitchPath(found, settings);
    for (std::size_t i = 0; i < 5; ++i) {
      EXPECT_EQ(found.frames[i].candidates[1].frequency,
                pitch.frames[i].candidates[best[i]].frequency);
      EXPECT_EQ(found.frames[i].CandidateCount(), pitch.frames[i].CandidateCount());
    }
    EXPECT_NEAR(Worth(found, std::vector<std::size_t>(5, 1), settings), best_worth, 1e-12);
  }
}

TEST(PitchPath, OctaveCostPrefersTheHigherOfTwoEquals) {
  CPraPitch pitch;
  pitch.dx = 0.01;
  for (int i = 0; i < 3; ++i) pitch.frames.push_back(Frame(1.0, {{}, {100.0, 0.9}, {200.0, 0.9}}));
  FindPitchPath(pitch, {});
  for (const auto& frame : pitch.frames) EXPECT_EQ(frame.Frequency(), 200.0);
}

TEST(PitchPath, AShortOctaveJumpCostsMoreThanItGains) {
  CPraPitch pitch;
  pitch.dx = 0.01;
  for (int i = 0; i < 5; ++i) {
    const double down = i == 2 ? 0.95 : 0.6;  // one frame in which the octave below looks better
    pitch.frames.push_back(Frame(1.0, {{}, {100.0, down}, {200.0, 0.8}}));
  }
  FindPitchPath(pitch, {});
  for (const auto& frame : pitch.frames) EXPECT_EQ(frame.Frequency(), 200.0);
}

TEST(PitchPath, TransitionsCostLessWithLongerSteps) {
  // The gain of the jump is 0.5, its cost twice 0.35 at 10 ms and twice 0.175 at 20 ms.
  for (const auto& [step, expected] : {std::pair{0.01, 200.0}, std::pair{0.02, 100.0}}) {
    CPraPitch pitch;
    pitch.dx = step;
    for (int i = 0; i < 5; ++i) {
      const double up = i == 2 ? 0.45 : 0.95;
      const double down = i == 2 ? 0.96 : 0.3;
      pitch.frames.push_back(Frame(1.0, {{}, {100.0, down}, {200.0, up}}));
    }
    FindPitchPath(pitch, {});
    EXPECT_EQ(pitch.frames[2].Frequency(), expected);
  }
}

TEST(PitchPath, ACandidateAboveTheCeilingIsUnvoiced) {
  CPraPitch pitch;
  pitch.dx = 0.01;
  pitch.frames.push_back(Frame(1.0, {{}, {500.0, 1.0}, {250.0, 0.6}}));
  FindPitchPath(pitch, {});
  EXPECT_EQ(pitch.frames[0].Frequency(), 250.0);
}

TEST(PitchPath, NothingToDo) {
  CPraPitch pitch;
  FindPitchPath(pitch, {});
  EXPECT_TRUE(pitch.frames.empty());
}

}  // namespace
}  // namespace veral3::test
