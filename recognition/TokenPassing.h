#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "recognition/DecodingNetwork.h"

namespace veral3 {

// A node entered, and the frame at which it was entered.
struct PathStep {
  std::int32_t node;
  std::int32_t frame;
};

struct BestPath {
  double score = 0.0;            // natural logarithm, an initial 1.0 included
  std::vector<PathStep> steps;   // in time order, from the start node to the end node
  std::size_t history_room = 0;  // entries that the decoding had memory for in the end
};

// Probabilities below this, and the end node, cost kNextToNothing: like certainties.
inline constexpr double kLeastProbability = 1e-200;
inline constexpr double kNextToNothing = -2.2250738585072014e-303;

// Exact search for the best path of `num_frames` steps, one state a frame, that enters the end
// node at the last frame: token passing with one survivor a node and frame.
//
// `frame_scores`: num_frames rows of 3 x set size probabilities, in state order. Nodes whose
// phoneme the set lacks are never entered. Work is linear in frames x nodes; memory follows the
// live paths. Nothing but the arguments is read, so any number of threads may decode at once.
//
// Nothing, with a message, when no path ends at the last frame.
//
// Equal scores are decided as by token lists to whose front new tokens go and which are walked
// from the front: among what enters a node in one frame, the predecessor created first wins, and
// what enters wins over what stays in states 0 and 1.
//
// A token that stays in a state 2 enters it anew every frame, so its steps say so.
std::optional<BestPath> PassTokens(const DecodingNetwork& network, const CPhonemeSet& set,
                                   std::span<const double> frame_scores, int num_frames);

}  // namespace veral3
