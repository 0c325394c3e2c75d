#pragma once

#include <cstdint>
#include <optional>
#include <span>

// What the samples of a recording tell of how it was made: clipping, noise, a cut.
namespace veral3::tools {

// Share of the samples, 0 to 1, that lie flat at the recording's highest or lowest value: in runs
// of three and more within a hundredth of it. Speech that was not clipped has next to none. What
// was clipped below full scale and then resampled does not show; neither does what is softer than
// kLeastPeak, where neighbouring samples are often alike.
inline constexpr int kLeastPeak = 256;
double ClippedShare(std::span<const std::int16_t> samples);

// Levels of frames (551 samples, every 220), [dB]. The loud level of the speech is what a tenth of
// the frames between `start` and `end` pass; the soft level of the recording what a twentieth of
// all its frames stay under, those apart in which every sample is 0.
struct SoundLevels {
  double range_db = 0.0;  // the loud level over the soft one
  double start_db = 0.0;  // the recording's first frame over the loud level: mostly negative
  double end_db = 0.0;    // its last frame, likewise
};

// Nothing where the recording or the speech has no frame with a sound. `start`, `end`: samples.
std::optional<SoundLevels> MeasureLevels(std::span<const std::int16_t> samples, int start, int end);

}  // namespace veral3::tools
