#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "core/FrameSpan.h"
#include "core/PitchSegments.h"

// The tones of Chinese syllables.
namespace veral3 {

inline constexpr int kToneFeatureCount = 68;
inline constexpr int kToneClassCount = 5;

// What the tone classifier is given of one syllable, all but place 1 in [Hz]:
//   0       mean pitch of the utterance's syllables
//   1       mean length of a syllable [frames]
//   2       last voiced pitch of the syllable before, 0 for the first syllable
//   3       first voiced pitch of the syllable after, 0 for the last syllable
//   4..67   the syllable's voiced pitches in time order, at most 64, then 0
using ToneFeatures = std::array<std::int32_t, kToneFeatureCount>;
using ToneProbabilities = std::array<double, kToneClassCount>;

// Writes the tone probabilities of each syllable. Returns false, and says nothing, where no model
// is loaded. An empty function is a model that is not loaded.
using ToneScorer = std::function<bool(std::span<const ToneFeatures>, std::span<ToneProbabilities>)>;

// The features of one syllable of an utterance whose frames have the pitches `pitch`. A number
// that is no syllable gives places 0 and 1 only.
ToneFeatures ToneFeaturesOf(std::span<const std::int32_t> pitch, std::span<const FrameSpan> spans,
                            int average_pitch, int average_length, int syllable);

// The tone probabilities of every syllable. One that fell into more than 2 pitch segments is not
// classified: its row is 0. So are all rows where there is no model, which is reported once.
std::vector<ToneProbabilities> ClassifyTones(std::span<const std::int32_t> pitch,
                                             std::span<const FrameSpan> spans,
                                             std::span<const PitchSegmentCounts> segments,
                                             int average_pitch, int average_length,
                                             const ToneScorer& scorer);

}  // namespace veral3
