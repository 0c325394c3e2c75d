#include "signal/FramePitch.h"

#include <algorithm>
#include <cmath>

#include "signal/CWaveFrameDef.h"

namespace veral3 {
namespace {

constexpr double kSamplePeriod = 1.0 / kSampleRate;  // s
constexpr double kRangeMargin = 30.0;                // Hz around the speaker's range, detecting
constexpr double kVoicingMargin = 10.0;              // Hz around it, accepting

}  // namespace

std::unique_ptr<CPraPitch> TrackSpeakerPitch(const CPraAutoCorrPDA& detector,
                                             const std::int16_t* samples, std::uint32_t n) {
  auto track = detector.SoundToPitch(samples, n, kSamplePeriod, 0.0, kWidestFloor, kWidestCeiling);
  if (!track) return nullptr;

  double low = 0.0, high = 0.0;
  if (detector.EstimatePitchRange(*track, low, high)) {
    const double floor = std::max(low - kRangeMargin, kWidestFloor);
    const double ceiling = std::min(high + kRangeMargin, kWidestCeiling);
    if (auto second = detector.SoundToPitch(samples, n, kSamplePeriod, 0.0, floor, ceiling)) {
      track = std::move(second);
      detector.EstimatePitchRange(*track, low, high);
    }
  }
  if (low - kVoicingMargin >= 0.0) track->floor = low - kVoicingMargin;
  track->ceiling = high + kVoicingMargin;
  return track;
}

void MapTrackToFrames(const CPraPitch& track, std::span<int> frame_pitch) {
  const double shift = static_cast<double>(kFrameShift) / kSampleRate;
  double begin = 0.0;
  for (int& pitch : frame_pitch) {
    const double end = begin + shift;
    const double first = std::floor((begin - track.x1) / track.dx) + 1.0;
    if (first > track.nx) return;
    const double last =
        std::min(static_cast<double>(track.nx), std::floor((end - track.x1) / track.dx) + 1.0);
    double sum = 0.0;
    int count = 0;
    for (int i = static_cast<int>(std::max(first, 1.0)); i <= last; ++i) {
      const double frequency = track.Frame(i).Frequency();
      if (!track.Accepts(frequency)) continue;
      sum += frequency;
      ++count;
    }
    pitch = count > 0 ? static_cast<int>(sum / count) : 0;
    begin = end;
  }
}

void CalculateFramePitch(const CPraAutoCorrPDA& detector, const std::int16_t* samples,
                         std::uint32_t n, std::span<int> frame_pitch) {
  std::fill(frame_pitch.begin(), frame_pitch.end(), 0);
  if (!samples || n < kLeastPitchSamples) return;
  const auto track = TrackSpeakerPitch(detector, samples, n);
  if (!track) return;
  const auto frames = static_cast<std::size_t>(NumFrames(n));
  MapTrackToFrames(*track, frame_pitch.first(std::min(frames, frame_pitch.size())));
}

void CalculateFramePitch(const std::int16_t* samples, std::uint32_t n, std::span<int> frame_pitch) {
  CalculateFramePitch(CPraAutoCorrPDA(), samples, n, frame_pitch);
}

}  // namespace veral3
