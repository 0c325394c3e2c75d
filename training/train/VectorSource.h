#pragma once

#include <span>
#include <vector>

#include "training/features/VectorFile.h"
#include "training/train/Trainer.h"

namespace veral3::training {

// Examples for a classifier of plain vectors (tones, goodness of utterances): all rows of the given
// files, one file after the other, the same in every epoch.
class VectorSource final : public ExampleSource {
 public:
  // The files must outlive the source. Throws std::runtime_error where there are none or they
  // differ in inputs or classes.
  explicit VectorSource(std::span<const VectorFile> files);

  std::size_t NumExamples() const override { return m_examples.size(); }
  int NumInputs() const override { return m_files.front().inputs; }
  int NumClasses() const override { return m_files.front().classes; }
  void BeginEpoch(Random& random) override;
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override;
  bool HasWeights() const override { return true; }
  void FillWeights(std::span<const std::uint32_t> examples,
                   std::span<float> weights) const override;

 private:
  struct Example {
    std::span<const float> row;
    std::span<const float> weights;
    int example_class;  // of the greatest weight
  };

  std::span<const VectorFile> m_files;
  std::vector<Example> m_examples;
};

}  // namespace veral3::training
