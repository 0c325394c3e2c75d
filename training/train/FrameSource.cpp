#include "training/train/FrameSource.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "recognition/FrameScores.h"
#include "signal/Mfcc.h"

namespace veral3::training {

FrameSource::FrameSource(const CPhonemeSet& set, std::span<const FeatureFile> files, int jitter)
    : m_set(set), m_files(files), m_jitter(jitter) {
  for (const FeatureFile& file : files) {
    for (const FeatureUtterance& utterance : file.Utterances()) {
      const float* rows = file.FramesOf(utterance).data();
      const std::vector<std::uint8_t> labels = LabelsOf(utterance, {});
      for (int t = 0; t < utterance.num_frames; ++t) {
        if (labels[static_cast<std::size_t>(t)] == kUnusedState) continue;
        m_frames.push_back({rows + t * kMfccSize, static_cast<std::uint8_t>(std::min(t, 2)),
                            static_cast<std::uint8_t>(std::min(utterance.num_frames - 1 - t, 2))});
      }
    }
  }
  if (m_frames.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw std::runtime_error("too many frames for one training");
  }
  m_labels.resize(m_frames.size());
}

std::vector<std::uint8_t> FrameSource::LabelsOf(const FeatureUtterance& utterance,
                                                std::span<const int> shifts) const {
  std::vector<std::uint8_t> labels(static_cast<std::size_t>(utterance.num_frames));
  StateLabels(utterance.segments, utterance.num_frames, m_set.GetPhonemeIndex('-'), shifts, labels);
  return labels;
}

int FrameSource::NumInputs() const { return kFrameInputSize; }

void FrameSource::BeginEpoch(Random& random) {
  auto next = m_labels.begin();
  std::vector<int> shifts;
  for (const FeatureFile& file : m_files) {
    for (const FeatureUtterance& utterance : file.Utterances()) {
      shifts.clear();
      if (m_jitter > 0) {
        for (std::size_t i = 0; i < utterance.segments.size(); ++i) {
          shifts.push_back(random.Between(-m_jitter, m_jitter));
        }
      }
      next = std::ranges::remove_copy(LabelsOf(utterance, shifts), next, kUnusedState).out;
    }
  }
}

void FrameSource::Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
                       std::span<std::int64_t> classes) const {
  float* out = inputs.data();
  for (std::size_t i = 0; i < examples.size(); ++i) {
    const FrameContext& frame = m_frames[examples[i]];
    // As the engine assembles it: the first frame stands in before the start, the centre frame past
    // the end.
    for (int offset = -2; offset <= 2; ++offset) {
      int place = std::max(offset, -int{frame.before});
      if (place > frame.after) place = 0;
      out = std::copy_n(frame.row + place * kMfccSize, kMfccSize, out);
    }
    classes[i] = m_labels[examples[i]];
  }
}

}  // namespace veral3::training
