#include "training/train/PhonemeSource.h"

#include <algorithm>

#include "signal/Mfcc.h"

namespace veral3::training {

void AssemblePhonemeInput(std::span<const float> mfcc, int first, int end, std::span<float> input) {
  float* out = input.data();
  for (const int offset : kPhonemeOffsets) {
    if (first + offset < end) {
      out = std::copy_n(mfcc.data() + (first + offset) * kMfccSize, kMfccSize, out);
    } else {
      out = std::fill_n(out, kMfccSize, 0.0f);
    }
  }
}

PhonemeSource::PhonemeSource(const CPhonemeSet& set, std::span<const FeatureFile> files, int jitter)
    : m_set(set), m_jitter(jitter) {
  for (const FeatureFile& file : files) {
    for (const FeatureUtterance& utterance : file.Utterances()) {
      const std::span<const float> mfcc = file.FramesOf(utterance);
      for (std::size_t i = 0; i < utterance.segments.size(); ++i) {
        if (utterance.segments[i].phoneme == kUnusedPhoneme) continue;
        const int first = utterance.segments[i].first_frame;
        const int end = i + 1 < utterance.segments.size() ? utterance.segments[i + 1].first_frame
                                                          : utterance.num_frames;
        m_phonemes.push_back({mfcc, first, end, first, end, utterance.segments[i].phoneme});
      }
    }
  }
}

int PhonemeSource::NumInputs() const {
  return static_cast<int>(kPhonemeOffsets.size()) * kMfccSize;
}

void PhonemeSource::BeginEpoch(Random& random) {
  if (m_jitter == 0) return;
  for (Segment& segment : m_phonemes) {
    const int frames = static_cast<int>(segment.mfcc.size() / kMfccSize);
    segment.moved_first =
        std::clamp(segment.first + random.Between(-m_jitter, m_jitter), 0, frames - 1);
    segment.moved_end = std::clamp(segment.end + random.Between(-m_jitter, m_jitter),
                                   segment.moved_first + 1, frames);
  }
}

void PhonemeSource::Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
                         std::span<std::int64_t> classes) const {
  const auto columns = static_cast<std::size_t>(NumInputs());
  for (std::size_t i = 0; i < examples.size(); ++i) {
    const Segment& segment = m_phonemes[examples[i]];
    AssemblePhonemeInput(segment.mfcc, segment.moved_first, segment.moved_end,
                         inputs.subspan(i * columns, columns));
    classes[i] = segment.phoneme;
  }
}

}  // namespace veral3::training
