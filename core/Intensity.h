#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/FrameSpan.h"
#include "recognition/AlignmentResult.h"

// How loud a recording is, frame by frame and syllable by syllable. Intensity is energy: the sum of
// the squared samples of a frame, 551 samples long.
namespace veral3 {

struct IntensityMeasures {
  std::vector<double> frame;         // one a frame
  double background = 0.0;           // mean of the last 3 frames, 0 with 3 frames or fewer
  double mean_speech = 0.0;          // mean of all frames in syllables
  int loud_frames_before = 0;        // frames above 0.3 x mean_speech before the first phoneme
  int loud_frames_after = 0;         // likewise from the end of the last phoneme on
  double speech_to_utterance = 0.0;  // energy of the syllables / energy of all frames
  std::vector<double> syllable;      // the loudest frame of each syllable
  std::vector<double> convexity;     // IntensityConvexity of each syllable
};

// The energy of every frame that the samples fill, of at most `max_frames`.
std::vector<double> FrameIntensities(std::span<const std::int16_t> samples, int max_frames);

// Mean of the last 3 frames, which hold no speech in a recording that ends with a silence.
double BackgroundIntensity(std::span<const double> intensity);

// Measures the recording that `alignment` is of. In a recording of total energy 0 the ratio of
// speech to utterance is `previous_ratio` / 1e-20, where `previous_ratio` is what this object had
// before (0 for a new one); every other value is finite. Without phonemes all counts and ratios
// are 0.
IntensityMeasures MeasureIntensity(const AlignmentResult& alignment,
                                   std::span<const std::int16_t> samples, double previous_ratio);

}  // namespace veral3
