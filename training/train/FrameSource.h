#pragma once

#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/features/FeatureFile.h"
#include "training/train/Trainer.h"

namespace veral3::training {

// Examples for a frame classifier: every frame of the given feature files with two frames on either
// side, classed by phoneme state; those of unused segments are heard beside others only. Phoneme
// boundaries are moved anew by up to `jitter` frames for every epoch, so that nothing is learned of
// where exactly a synthesiser puts them.
class FrameSource final : public ExampleSource {
 public:
  // The files must outlive the source.
  FrameSource(const CPhonemeSet& set, std::span<const FeatureFile> files, int jitter);

  std::size_t NumExamples() const override { return m_frames.size(); }
  int NumInputs() const override;
  int NumClasses() const override { return m_set.GetSize() * 3; }
  void BeginEpoch(Random& random) override;
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override;

  std::span<const std::uint8_t> Labels() const { return m_labels; }

 private:
  struct FrameContext {
    const float* row;     // of the frame itself
    std::uint8_t before;  // frames that exist before and after it, at most 2
    std::uint8_t after;
  };

  // Of all frames of an utterance; StateLabels has `shifts`.
  std::vector<std::uint8_t> LabelsOf(const FeatureUtterance& utterance,
                                     std::span<const int> shifts) const;

  const CPhonemeSet& m_set;
  std::span<const FeatureFile> m_files;
  int m_jitter;
  std::vector<FrameContext> m_frames;
  std::vector<std::uint8_t> m_labels;
};

}  // namespace veral3::training
