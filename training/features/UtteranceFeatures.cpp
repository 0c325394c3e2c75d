#include "training/features/UtteranceFeatures.h"

#include "signal/CWaveFrameDef.h"
#include "signal/HighPassFilter.h"
#include "signal/Mfcc.h"

namespace veral3::training {

UtteranceFeatures FeaturesOf(const Utterance& utterance, const CPhonemeSet& set) {
  UtteranceFeatures features;
  std::vector<std::int16_t> samples = utterance.samples;
  const auto num_samples = static_cast<std::uint32_t>(samples.size());
  const int num_frames = NumFrames(num_samples);
  if (num_frames == 0) return features;
  HighPassFilter(samples.data(), static_cast<int>(samples.size()), 80.0, double{kSampleRate});
  features.mfcc = ComputeMfcc(samples.data(), num_samples);
  features.segments = SegmentsOf(utterance.labels, num_frames, set);
  return features;
}

}  // namespace veral3::training
