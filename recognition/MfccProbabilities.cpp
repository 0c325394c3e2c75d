#include "recognition/MfccProbabilities.h"

#include <cmath>
#include <cstddef>

namespace veral3 {

namespace {

std::size_t Index(int i) { return static_cast<std::size_t>(i); }

int StartFrame(const AlignmentResult& alignment, int phoneme) {
  return FrameOfSample(alignment.phoneme_start[Index(phoneme)]);
}

int EndFrame(const AlignmentResult& alignment, int phoneme) {
  return FrameOfSample(alignment.phoneme_end[Index(phoneme)]);
}

}  // namespace

std::vector<double> PathPosterior(const CPhonemeSet& set, const AlignmentResult& alignment) {
  std::vector<double> posterior(Index(alignment.num_frames), 0.0);
  for (std::size_t k = 0; k + 1 < alignment.path.size(); ++k) {
    const int begin = FrameOfSample(alignment.path[k].time);
    const int end = FrameOfSample(alignment.path[k + 1].time);
    const int first_state = set.GetStateIndex(alignment.path[k].phoneme, 0);
    if (first_state < 0) continue;  // the start node, which lasts no frame
    for (int frame = begin; frame < end; ++frame) {
      const auto scores = alignment.FrameScores(frame).subspan(Index(first_state), 3);
      posterior[Index(frame)] = scores[0] + scores[1] + scores[2];
    }
  }
  return posterior;
}

double GeometricMean(std::span<const double> path_posterior, int begin, int end) {
  if (begin >= end) return 1.0;
  double product = 1.0;
  for (int frame = begin; frame < end; ++frame) product *= path_posterior[Index(frame)];
  return std::pow(product, 1.0 / (end - begin));
}

std::vector<double> PhonemeProbabilities(const AlignmentResult& alignment) {
  std::vector<double> probabilities;
  probabilities.reserve(alignment.phonemes.size());
  for (int i = 0; i < alignment.NumPhonemes(); ++i) {
    probabilities.push_back(
        GeometricMean(alignment.path_posterior, StartFrame(alignment, i), EndFrame(alignment, i)));
  }
  return probabilities;
}

std::vector<double> PauseProbabilities(const AlignmentResult& alignment) {
  const int count = alignment.NumPhonemes();
  if (count == 0) return {0.0};
  std::vector<double> probabilities;
  probabilities.reserve(Index(count) + 1);
  for (int gap = 0; gap <= count; ++gap) {
    const int begin = gap == 0 ? 0 : EndFrame(alignment, gap - 1);
    const int end = gap == count ? alignment.num_frames - 1 : StartFrame(alignment, gap);
    probabilities.push_back(GeometricMean(alignment.path_posterior, begin, end));
  }
  return probabilities;
}

}  // namespace veral3
