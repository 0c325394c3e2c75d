#pragma once

#include <memory>
#include <vector>

#include "training/train/Deck.h"
#include "training/train/Trainer.h"

namespace veral3::training {

// The examples of several sources as one, numbered through; inputs and classes must be the
// same, and all have weights or none.
class PooledSource final : public ExampleSource {
 public:
  // Throws std::runtime_error where there are none, or they differ in inputs, classes or
  // in whether they have weights.
  explicit PooledSource(std::vector<std::unique_ptr<ExampleSource>> sources);

  std::size_t NumExamples() const override { return m_first.back(); }
  int NumInputs() const override { return m_sources.front()->NumInputs(); }
  int NumClasses() const override { return m_sources.front()->NumClasses(); }
  void BeginEpoch(Random& random) override;
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override;

  bool HasWeights() const override { return m_sources.front()->HasWeights(); }
  void FillWeights(std::span<const std::uint32_t> examples,
                   std::span<float> weights) const override;

  // The examples of the source of that number, for a Deck.
  ExampleGroup GroupOf(std::size_t number, double share) const;

 private:
  struct Place {
    std::size_t source;
    std::uint32_t example;  // of the source
  };
  Place PlaceOf(std::uint32_t example) const;

  std::vector<std::unique_ptr<ExampleSource>> m_sources;
  std::vector<std::size_t> m_first;  // number of each source's first example, and of all
};

}  // namespace veral3::training
