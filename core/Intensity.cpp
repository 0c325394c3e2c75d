#include "core/Intensity.h"

#include <algorithm>
#include <limits>

#include "core/IntensityConvexity.h"
#include "core/SyllableSpans.h"
#include "signal/CWaveFrameDef.h"

namespace veral3 {
namespace {

constexpr int kBackgroundFrames = 3;
constexpr double kLoudFraction = 0.3;        // of the mean speech intensity
constexpr double kSilenceDivisor = 1e-20;    // in place of a total energy of 0
constexpr std::size_t kShift = kFrameShift;  // a frame is two whole shifts and a head
constexpr std::size_t kHead = kFrameLength - 2 * kFrameShift;
static_assert(kFrameLength > 2 * kFrameShift && kFrameLength < 3 * kFrameShift);

std::int64_t SumOfSquares(std::span<const std::int16_t> samples) {
  std::int64_t sum = 0;
  for (const std::int32_t sample : samples) sum += sample * sample;
  return sum;
}

int CountAbove(std::span<const double> intensity, double threshold) {
  return static_cast<int>(
      std::count_if(intensity.begin(), intensity.end(), [&](double x) { return x > threshold; }));
}

}  // namespace

// Frames overlap, so the squares are summed once for each stretch of a shift and put together from
// there. The sums are integers below 2^53: the same bits as summing each frame for itself.
std::vector<double> FrameIntensities(std::span<const std::int16_t> samples, int max_frames) {
  const std::size_t known = std::min<std::size_t>(samples.size(), std::numeric_limits<int>::max());
  const int num_frames = std::min(max_frames, NumFrames(static_cast<std::uint32_t>(known)));
  if (num_frames <= 0) return {};
  std::vector<double> intensity(static_cast<std::size_t>(num_frames));
  std::int64_t first = 0;  // the two stretches before this one
  std::int64_t second = 0;
  for (std::size_t stretch = 0; stretch < intensity.size() + 2; ++stretch) {
    const std::size_t begin = stretch * kShift;
    const std::int64_t head = SumOfSquares(samples.subspan(begin, kHead));
    if (stretch >= 2) intensity[stretch - 2] = static_cast<double>(first + second + head);
    if (stretch + 1 == intensity.size() + 2) break;  // only its head belongs to a frame
    first = second;
    second = head + SumOfSquares(samples.subspan(begin + kHead, kShift - kHead));
  }
  return intensity;
}

double BackgroundIntensity(std::span<const double> intensity) {
  if (intensity.size() <= kBackgroundFrames) return 0.0;
  double sum = 0.0;
  for (const double frame : intensity.last(kBackgroundFrames)) sum += frame;
  return sum / kBackgroundFrames;
}

IntensityMeasures MeasureIntensity(const AlignmentResult& alignment,
                                   std::span<const std::int16_t> samples, double previous_ratio) {
  IntensityMeasures measures;
  measures.frame = FrameIntensities(samples, alignment.num_frames);
  const std::span<const double> frames(measures.frame);
  double total = 0.0;
  for (const double frame : frames) total += frame;
  measures.background = BackgroundIntensity(frames);

  const IntensityConvexity convexity(frames);
  double speech = 0.0;
  std::int64_t speech_frames = 0;
  for (const FrameSpan span : SyllableSpans(alignment)) {
    measures.convexity.push_back(convexity.Of(span));
    double loudest = 0.0;
    for (const double frame : Slice(frames, span)) {
      loudest = std::max(loudest, frame);
      speech += frame;
    }
    speech_frames += span.Length();
    measures.syllable.push_back(loudest);
  }
  measures.mean_speech = speech_frames > 0 ? speech / static_cast<double>(speech_frames) : 0.0;
  measures.speech_to_utterance = total != 0.0 ? speech / total : previous_ratio / kSilenceDivisor;

  if (CountPhonemes(alignment) > 0) {
    const double loud = kLoudFraction * measures.mean_speech;
    const int utterance_begin = FrameOfSample(UtteranceStart(alignment));
    const int utterance_end = FrameOfSample(UtteranceEnd(alignment));
    measures.loud_frames_before = CountAbove(Slice(frames, {0, utterance_begin}), loud);
    measures.loud_frames_after =
        CountAbove(Slice(frames, {utterance_end, std::numeric_limits<int>::max()}), loud);
  }
  return measures;
}

}  // namespace veral3
