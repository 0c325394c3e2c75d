#pragma once

#include <span>
#include <utility>
#include <vector>

#include "training/features/VectorFile.h"
#include "training/train/Trainer.h"

namespace veral3::training {

// Examples for a small classifier: the rows of the given files, as they are.
class VectorSource final : public ExampleSource {
 public:
  // The files must outlive the source. Throws std::runtime_error when there are none, or when they
  // differ in inputs or classes.
  explicit VectorSource(std::span<const VectorFile> files);

  std::size_t NumExamples() const override { return m_examples.size(); }
  int NumInputs() const override;
  int NumClasses() const override;
  void BeginEpoch(Random&) override {}
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override;

 private:
  std::span<const VectorFile> m_files;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> m_examples;  // file, row
};

}  // namespace veral3::training
