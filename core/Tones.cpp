#include "core/Tones.h"

#include "common/MessageWriter.h"
#include "core/Finite.h"
#include "core/SyllablePitch.h"

namespace veral3 {
namespace {

constexpr int kMaxSegments = 2;          // of a syllable that is classified
constexpr std::size_t kFirstVoiced = 4;  // place of the syllable's first voiced pitch

}  // namespace

ToneFeatures ToneFeaturesOf(std::span<const std::int32_t> pitch, std::span<const FrameSpan> spans,
                            int average_pitch, int average_length, int syllable) {
  ToneFeatures features{};
  features[0] = average_pitch;
  features[1] = average_length;
  if (syllable < 0 || static_cast<std::size_t>(syllable) >= spans.size()) return features;
  const std::size_t i = static_cast<std::size_t>(syllable);
  if (i > 0) features[2] = LastVoicedPitch(pitch, spans[i - 1]);
  if (i + 1 < spans.size()) features[3] = FirstVoicedPitch(pitch, spans[i + 1]);
  std::size_t place = kFirstVoiced;
  for (const std::int32_t frame : Slice(pitch, spans[i])) {
    if (place == features.size()) break;
    if (frame > 0) features[place++] = frame;
  }
  return features;
}

std::vector<ToneProbabilities> ClassifyTones(std::span<const std::int32_t> pitch,
                                             std::span<const FrameSpan> spans,
                                             std::span<const PitchSegmentCounts> segments,
                                             int average_pitch, int average_length,
                                             const ToneScorer& scorer) {
  std::vector<ToneProbabilities> tones(spans.size(), ToneProbabilities{});
  std::vector<ToneFeatures> features;
  std::vector<std::size_t> classified;  // which syllable a row of features is
  for (std::size_t i = 0; i < spans.size(); ++i) {
    if (i < segments.size() && segments[i].segments > kMaxSegments) continue;
    features.push_back(
        ToneFeaturesOf(pitch, spans, average_pitch, average_length, static_cast<int>(i)));
    classified.push_back(i);
  }
  if (classified.empty()) return tones;
  std::vector<ToneProbabilities> rows(classified.size(), ToneProbabilities{});
  if (!scorer || !scorer(features, rows)) {
    Message(MessageStream::kError)
        << "ERROR in AnalyzedAudio::AnalyzeCTTone(), no tone model is loaded.\n";
    return tones;
  }
  for (std::size_t row = 0; row < rows.size(); ++row) {
    for (double& probability : rows[row]) probability = FiniteOrZero(probability);
    tones[classified[row]] = rows[row];
  }
  return tones;
}

}  // namespace veral3
