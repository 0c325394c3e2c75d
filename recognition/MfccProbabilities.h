#pragma once

#include <span>
#include <vector>

#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"

// How well the frames of an aligned recording fit the states that the best path gives them. Pure
// functions over an alignment; the aligner stores what they return in it.
namespace veral3 {

// One value a frame: the sum of the frame's scores for the three states of the phoneme (or pause)
// that the path is in. The last frame, the end node's, has 0. Reads path and frame_scores.
std::vector<double> PathPosterior(const CPhonemeSet& set, const AlignmentResult& alignment);

// Geometric mean of the path posterior over the frames `begin` to `end` - 1: the product, then the
// root. 1 for an empty range.
double GeometricMean(std::span<const double> path_posterior, int begin, int end);

// The geometric mean over each phoneme's frames. Reads path_posterior.
std::vector<double> PhonemeProbabilities(const AlignmentResult& alignment);

// The geometric mean over each gap's frames: before the first phoneme, between phonemes, after the
// last up to the end node's frame; one more than there are phonemes. A gap of no frames gives 1.
// Without any phoneme there is no speech for a gap to lie beside: a single 0. Reads path_posterior.
std::vector<double> PauseProbabilities(const AlignmentResult& alignment);

}  // namespace veral3
