#pragma once

#include <cstdint>

// The frame grid that front end, aligner, prosody and records share. Frame i covers the samples
// i * shift to i * shift + length - 1; a sample s lies in frame s / shift.
class CWaveFrameDef {
 public:
  virtual ~CWaveFrameDef() = default;

  std::int32_t sample_rate = 22050;   // samples a second
  std::int32_t bits_per_sample = 16;  // signed
  std::int32_t frame_length = 551;    // samples, 25 ms
  std::int32_t frame_shift = 220;     // samples, 9.977 ms
};

namespace veral3 {

// The same values where a constant is wanted.
inline constexpr int kSampleRate = 22050;
inline constexpr int kFrameLength = 551;
inline constexpr int kFrameShift = 220;

// Whole frames in a recording: 0 below one frame length.
constexpr int NumFrames(std::uint32_t num_samples) {
  if (num_samples < kFrameLength) return 0;
  return static_cast<int>((num_samples - kFrameLength) / kFrameShift + 1);
}

}  // namespace veral3
