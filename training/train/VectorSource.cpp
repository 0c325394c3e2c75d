#include "training/train/VectorSource.h"

#include <algorithm>
#include <stdexcept>

namespace veral3::training {

VectorSource::VectorSource(std::span<const VectorFile> files) : m_files(files) {
  if (files.empty()) throw std::runtime_error("no files of vectors");
  for (const VectorFile& file : files) {
    if (file.inputs != NumInputs() || file.classes != NumClasses()) {
      throw std::runtime_error("files of vectors differ in inputs or classes");
    }
    for (std::size_t i = 0; i < file.NumExamples(); ++i) {
      m_examples.push_back({file.Row(i), file.Weights(i), file.ClassOf(i)});
    }
  }
}

void VectorSource::BeginEpoch(Random&) {}

void VectorSource::Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
                        std::span<std::int64_t> classes) const {
  float* out = inputs.data();
  for (std::size_t i = 0; i < examples.size(); ++i) {
    const Example& example = m_examples[examples[i]];
    out = std::ranges::copy(example.row, out).out;
    classes[i] = example.example_class;
  }
}

void VectorSource::FillWeights(std::span<const std::uint32_t> examples,
                               std::span<float> weights) const {
  float* out = weights.data();
  for (const std::uint32_t example : examples) {
    out = std::ranges::copy(m_examples[example].weights, out).out;
  }
}

}  // namespace veral3::training
