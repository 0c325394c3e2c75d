#pragma once

#include <memory>
#include <vector>

#include "training/train/Network.h"
#include "training/train/Trainer.h"

// Several languages learnt at once by one network: the hidden layers are shared, each language has
// output columns of its own, side by side. What one language's voices teach of noise, rooms and
// vocal tracts holds for the others too.
namespace veral3::training {

// The examples of all sources, whose inputs are of one size; classes are numbered through, source
// after source.
class JointSource final : public ExampleSource {
 public:
  explicit JointSource(std::vector<std::unique_ptr<ExampleSource>> sources);

  std::size_t NumExamples() const override { return m_first.back(); }
  int NumInputs() const override { return m_sources.front()->NumInputs(); }
  int NumClasses() const override { return m_heads.back().end; }
  void BeginEpoch(Random& random) override;
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override;

  // The columns of each source.
  const std::vector<Head>& Heads() const { return m_heads; }

 private:
  std::vector<std::unique_ptr<ExampleSource>> m_sources;
  std::vector<std::size_t> m_first;  // number of each source's first example, and of all
  std::vector<Head> m_heads;
};

// The network with the columns of one head alone: a classifier of that language.
Network WithHead(const Network& joint, Head head);

// The network with its last layer put in the columns `head` of `columns`; the others are random.
Network AsJoint(const Network& network, Head head, int columns, Random& random);

}  // namespace veral3::training
