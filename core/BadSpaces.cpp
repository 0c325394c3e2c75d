#include "core/BadSpaces.h"

#include "core/SyllableSpans.h"

namespace veral3 {
namespace {

constexpr double kLoudFraction = 0.5;  // of the mean speech intensity

// `phoneme_after(s)`: the phoneme that ends gap s, for the gaps between syllables; `counts(f)`:
// whether frame f does.
template <typename PhonemeAfter, typename Counts>
std::vector<std::int32_t> CountInGaps(const AlignmentResult& alignment, int num_frames,
                                      PhonemeAfter phoneme_after, Counts counts) {
  const int num_syllables = CountSyllables(alignment);
  std::vector<std::int32_t> gaps(static_cast<std::size_t>(num_syllables) + 1);
  if (num_syllables == 0 || CountPhonemes(alignment) == 0) return gaps;
  const auto count_in = [&](int begin_sample, int end_sample) {
    std::int32_t count = 0;
    const int end = std::min(FrameOfSample(end_sample), num_frames);
    for (int f = std::max(FrameOfSample(begin_sample), 0); f < end; ++f) count += counts(f) ? 1 : 0;
    return count;
  };
  gaps.front() = count_in(0, UtteranceStart(alignment));
  for (int s = 1; s < num_syllables; ++s) {
    const int phoneme = phoneme_after(s);
    gaps[static_cast<std::size_t>(s)] = count_in(
        PhonemeEnd(alignment, phoneme > 0 ? phoneme - 1 : -1), PhonemeStart(alignment, phoneme));
  }
  gaps.back() = count_in(UtteranceEnd(alignment), ToInt(std::int64_t{num_frames} * kFrameShift));
  return gaps;
}

}  // namespace

std::vector<std::int32_t> CountLoudGaps(const AlignmentResult& alignment,
                                        std::span<const std::int32_t> pitch,
                                        std::span<const double> intensity, double mean_speech) {
  const double loud = kLoudFraction * mean_speech;
  return CountInGaps(
      alignment, static_cast<int>(intensity.size()),
      [&](int s) { return SyllablePhonemes(alignment, s).first; },
      [&](int f) { return ReadOr(pitch, f) > 0 && ReadOr(intensity, f) > loud; });
}

std::vector<std::int32_t> CountLoudGapsPronunOnly(const AlignmentResult& alignment,
                                                  std::span<const double> intensity,
                                                  double mean_speech) {
  const double loud = kLoudFraction * mean_speech;
  return CountInGaps(
      alignment, static_cast<int>(intensity.size()), [](int s) { return s; },
      [&](int f) { return ReadOr(intensity, f) > loud; });
}

}  // namespace veral3
