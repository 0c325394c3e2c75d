#include "signal/PitchPath.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace veral3 {
namespace {

// One candidate of the frame at hand, with the best way that leads to it.
struct Node {
  bool voiced;
  double octaves;  // log2 of the frequency, where voiced
  double score;    // strengths minus costs of the best way
};

}  // namespace

double UnvoicedStrength(double intensity, const PitchPathSettings& settings) {
  const double loudness =
      intensity / (settings.silence_threshold / (1.0 + settings.voicing_threshold));
  return settings.voicing_threshold + std::max(0.0, 2.0 - loudness);
}

void FindPitchPath(CPraPitch& pitch, const PitchPathSettings& settings) {
  if (pitch.frames.empty()) return;
  const double step_factor = 0.01 / pitch.dx;
  const double jump_cost = settings.octave_jump_cost * step_factor;
  const double voicing_cost = settings.voiced_unvoiced_cost * step_factor;
  const double ceiling_octaves = std::log2(settings.ceiling);

  std::size_t total = 0;
  for (const CPraPitchFrame& frame : pitch.frames) {
    total += static_cast<std::size_t>(frame.CandidateCount());
  }
  std::vector<std::int32_t> back;  // for each candidate of each frame, the one before it
  back.reserve(total);

  std::vector<Node> previous, current;
  for (const CPraPitchFrame& frame : pitch.frames) {
    current.clear();
    const double unvoiced_strength = UnvoicedStrength(frame.intensity, settings);
    for (std::int32_t i = 1; i <= frame.CandidateCount(); ++i) {
      const CPraPitchCandidate& candidate = frame.candidates[static_cast<std::size_t>(i)];
      Node node{candidate.frequency > 0.0 && candidate.frequency <= settings.ceiling, 0.0,
                unvoiced_strength};
      if (node.voiced) {
        node.octaves = std::log2(candidate.frequency);
        node.score = candidate.strength - settings.octave_cost * (ceiling_octaves - node.octaves);
      }
      std::int32_t best = 0;
      double best_score = 0.0;
      for (std::size_t p = 0; p < previous.size(); ++p) {
        const Node& from = previous[p];
        double cost = 0.0;
        if (from.voiced != node.voiced) {
          cost = voicing_cost;
        } else if (node.voiced) {
          cost = jump_cost * std::abs(from.octaves - node.octaves);
        }
        const double score = from.score - cost;
        if (p == 0 || score > best_score) {
          best = static_cast<std::int32_t>(p);
          best_score = score;
        }
      }
      node.score += best_score;
      back.push_back(best);
      current.push_back(node);
    }
    std::swap(previous, current);
  }

  const auto last =
      std::max_element(previous.begin(), previous.end(),
                       [](const Node& a, const Node& b) { return a.score < b.score; });
  auto chosen = static_cast<std::size_t>(last - previous.begin());
  std::size_t first = back.size();  // of the frame at hand
  for (auto frame = pitch.frames.rbegin(); frame != pitch.frames.rend(); ++frame) {
    first -= static_cast<std::size_t>(frame->CandidateCount());
    if (chosen != 0) std::swap(frame->candidates[1], frame->candidates[chosen + 1]);
    chosen = static_cast<std::size_t>(back[first + chosen]);
  }
}

}  // namespace veral3
