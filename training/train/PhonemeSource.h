#pragma once

#include <array>
#include <span>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/features/FeatureFile.h"
#include "training/train/Trainer.h"

namespace veral3::training {

// The frames of a phoneme that its classifier looks at, counted from its first one.
inline constexpr std::array<int, 16> kPhonemeOffsets = {0, 1,  2,  3,  4,  5,  6,  7,
                                                        9, 11, 13, 15, 18, 21, 25, 31};

// The classifier's input for the frames `first` up to (not including) `end` of an utterance: a row
// of 39 values an offset, zeros at and beyond `end`.
void AssemblePhonemeInput(std::span<const float> mfcc, int first, int end, std::span<float> input);

// Examples for a phoneme classifier: every phoneme and every pause of the given feature files,
// unused segments left out. Boundaries are moved anew by up to `jitter` frames for every epoch.
class PhonemeSource final : public ExampleSource {
 public:
  // The files must outlive the source.
  PhonemeSource(const CPhonemeSet& set, std::span<const FeatureFile> files, int jitter);

  std::size_t NumExamples() const override { return m_phonemes.size(); }
  int NumInputs() const override;
  int NumClasses() const override { return m_set.GetSize(); }
  void BeginEpoch(Random& random) override;
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override;

 private:
  struct Segment {
    std::span<const float> mfcc;  // of its utterance
    int first;                    // as labelled
    int end;
    int moved_first;  // as moved for this epoch
    int moved_end;
    std::int32_t phoneme;
  };

  const CPhonemeSet& m_set;
  int m_jitter;
  std::vector<Segment> m_phonemes;
};

}  // namespace veral3::training
