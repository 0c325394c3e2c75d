#include "training/augment/Padding.h"

#include <algorithm>
#include <vector>

#include "training/augment/Augment.h"
#include "training/augment/Signal.h"

namespace veral3::training {

Utterance WithEdges(const Utterance& utterance, const Edges& edges, Random& random) {
  const auto [begin, end] = SpeechEnds(utterance);
  const std::size_t kept_before = std::min(edges.before, begin);
  const std::size_t kept_after = std::min(edges.after, utterance.samples.size() - end);
  std::vector<float> before(edges.before - kept_before, 0.0F);
  std::vector<float> after(edges.after - kept_after, 0.0F);
  if (edges.noise_rms > 0.0) {
    const double colour = random.Uniform();
    AddNoise(before, colour, edges.noise_rms, random);
    AddNoise(after, colour, edges.noise_rms, random);
  }
  std::vector<float> signal = before;
  const auto kept = utterance.samples.begin() + static_cast<std::ptrdiff_t>(begin - kept_before);
  signal.insert(signal.end(), kept,
                utterance.samples.begin() + static_cast<std::ptrdiff_t>(end + kept_after));
  signal.insert(signal.end(), after.begin(), after.end());

  Utterance result = WithSignal(utterance, signal);
  if (result.labels.empty()) return result;
  const auto shift = static_cast<std::int32_t>(edges.before) - static_cast<std::int32_t>(begin);
  const auto new_end = static_cast<std::int32_t>(edges.before + (end - begin));
  // Pauses at the edges are laid anew.
  if (result.labels.front().symbol == '-') result.labels.erase(result.labels.begin());
  if (!result.labels.empty() && result.labels.back().symbol == '-') result.labels.pop_back();
  for (PhonemeLabel& label : result.labels) label.start += shift;
  if (edges.before > 0 || result.labels.empty())
    result.labels.insert(result.labels.begin(), {'-', 0});
  if (edges.after > 0 && result.labels.size() > 1) result.labels.push_back({'-', new_end});
  return result;
}

}  // namespace veral3::training
