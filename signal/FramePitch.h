#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "signal/CPraAutoCorrPDA.h"

// The pitch of a recording on the feature frame grid (signal/CWaveFrameDef.h): detected over a wide
// range to learn the speaker's, again over the speaker's own where stray values lie far from it,
// then averaged into the frames.
//
//   std::vector<int> frame_pitch(NumFrames(n));
//   CalculateFramePitch(samples, n, frame_pitch);
//
// Samples are 16 bit, mono, 22050 Hz. Nothing is shared between calls: threads may analyse at once,
// and the same samples always give the same bits.
namespace veral3 {

inline constexpr double kWidestFloor = 75.0;     // Hz
inline constexpr double kWidestCeiling = 450.0;  // Hz
inline constexpr std::uint32_t kLeastPitchSamples = 660;

// Fills `frame_pitch` with whole hertz, 0 where a frame has no voiced pitch; `frame_pitch` has a
// place for each of NumFrames(n) frames. All are 0 when there are fewer than 660 samples or the
// first detection fails, as are those after the end of the track.
void CalculateFramePitch(const std::int16_t* samples, std::uint32_t n, std::span<int> frame_pitch);

// The same with a detector of the caller's.
void CalculateFramePitch(const CPraAutoCorrPDA& detector, const std::int16_t* samples,
                         std::uint32_t n, std::span<int> frame_pitch);

// The track before it is mapped to frames. Its floor and ceiling are the speaker's range and 10 Hz
// on either side: what they do not accept is not the speaker's pitch. None when the first detection
// fails; a second one that fails leaves the first one's track.
std::unique_ptr<CPraPitch> TrackSpeakerPitch(const CPraAutoCorrPDA& detector,
                                             const std::int16_t* samples, std::uint32_t n);

// Each place of `frame_pitch` is the mean of the accepted frequencies of the track's frames that
// lie in it, cut to a whole number, 0 when there are none. A track frame on the boundary counts in
// both its neighbours. Places after the end of the track are left as they are.
void MapTrackToFrames(const CPraPitch& track, std::span<int> frame_pitch);

}  // namespace veral3
