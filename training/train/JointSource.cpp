#include "training/train/JointSource.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace veral3::training {

JointSource::JointSource(std::vector<std::unique_ptr<ExampleSource>> sources)
    : m_sources(std::move(sources)) {
  if (m_sources.empty()) throw std::runtime_error("nothing to learn from");
  std::size_t first = 0;
  int column = 0;
  for (const auto& source : m_sources) {
    if (source->NumInputs() != NumInputs()) {
      throw std::runtime_error("the languages have inputs of different sizes");
    }
    m_first.push_back(first);
    first += source->NumExamples();
    m_heads.push_back({column, column + source->NumClasses()});
    column = m_heads.back().end;
  }
  m_first.push_back(first);
}

void JointSource::BeginEpoch(Random& random) {
  for (const auto& source : m_sources) source->BeginEpoch(random);
}

void JointSource::Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
                       std::span<std::int64_t> classes) const {
  const auto width = static_cast<std::size_t>(NumInputs());
  for (std::size_t i = 0; i < examples.size(); ++i) {
    const auto after = std::ranges::upper_bound(m_first, std::size_t{examples[i]});
    const auto number = static_cast<std::size_t>(after - m_first.begin()) - 1;
    const auto own = static_cast<std::uint32_t>(examples[i] - m_first[number]);
    m_sources[number]->Fill({&own, 1}, inputs.subspan(i * width, width), classes.subspan(i, 1));
    classes[i] += m_heads[number].begin;
  }
}

Network WithHead(const Network& joint, Head head) {
  Network network = joint;
  DenseLayer& last = network.layers.back();
  const DenseLayer& all = joint.layers.back();
  last.outputs = head.end - head.begin;
  last.weights.clear();
  for (int i = 0; i < all.inputs; ++i) {
    const auto row = all.weights.begin() + std::ptrdiff_t{i} * all.outputs;
    last.weights.insert(last.weights.end(), row + head.begin, row + head.end);
  }
  last.bias.assign(all.bias.begin() + head.begin, all.bias.begin() + head.end);
  return network;
}

Network AsJoint(const Network& network, Head head, int columns, Random& random) {
  Network joint = network;
  const DenseLayer& own = network.layers.back();
  DenseLayer& all = joint.layers.back();
  all = RandomLayer(own.inputs, columns, random);
  for (int i = 0; i < own.inputs; ++i) {
    std::copy_n(own.weights.begin() + std::ptrdiff_t{i} * own.outputs, own.outputs,
                all.weights.begin() + std::ptrdiff_t{i} * columns + head.begin);
  }
  std::ranges::copy(own.bias, all.bias.begin() + head.begin);
  return joint;
}

}  // namespace veral3::training
