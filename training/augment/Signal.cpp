#include "training/augment/Signal.h"

#include <algorithm>
#include <cmath>

#include "signal/CWaveFrameDef.h"

namespace veral3::training {

std::vector<float> SignalOf(const Utterance& utterance) {
  return {utterance.samples.begin(), utterance.samples.end()};
}

Utterance WithSignal(const Utterance& utterance, std::span<const float> signal) {
  constexpr float kLoudest = 32767.0F;
  float peak = 0.0F;
  for (const float x : signal) peak = std::max(peak, std::abs(x));
  const float gain = peak > kLoudest ? kLoudest / peak : 1.0F;
  Utterance result{utterance.text,  utterance.voice,        utterance.labels,   {},
                   utterance.tones, utterance.spoken_tones, utterance.syllables};
  result.samples.reserve(signal.size());
  for (const float x : signal) {
    const long rounded = std::lround(x * gain);
    result.samples.push_back(static_cast<std::int16_t>(std::clamp(rounded, -32767L, 32767L)));
  }
  return result;
}

void StretchLabels(std::vector<PhonemeLabel>& labels, double factor) {
  for (PhonemeLabel& label : labels) {
    label.start = static_cast<std::int32_t>(std::lround(label.start * factor));
  }
}

std::pair<std::size_t, std::size_t> SpeechEnds(std::span<const PhonemeLabel> labels,
                                               std::size_t size) {
  const auto is_speech = [](const PhonemeLabel& label) { return label.symbol != '-'; };
  const auto first = std::ranges::find_if(labels, is_speech);
  if (first == labels.end()) return {0, size};
  const PhonemeLabel& last = labels.back();
  const std::size_t begin = std::min(static_cast<std::size_t>(first->start), size);
  const std::size_t end = last.symbol == '-' ? static_cast<std::size_t>(last.start) : size;
  return {begin, std::clamp(end, begin, size)};
}

std::pair<std::size_t, std::size_t> SpeechEnds(const Utterance& utterance) {
  return SpeechEnds(utterance.labels, utterance.samples.size());
}

std::size_t SamplesOf(double seconds) {
  return static_cast<std::size_t>(std::lround(seconds * kSampleRate));
}

}  // namespace veral3::training
