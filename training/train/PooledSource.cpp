#include "training/train/PooledSource.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace veral3::training {

PooledSource::PooledSource(std::vector<std::unique_ptr<ExampleSource>> sources)
    : m_sources(std::move(sources)) {
  if (m_sources.empty()) throw std::runtime_error("nothing to learn from");
  m_first.push_back(0);
  for (const auto& source : m_sources) {
    if (source->NumInputs() != NumInputs() || source->NumClasses() != NumClasses()) {
      throw std::runtime_error("the examples have inputs or classes of different numbers");
    }
    m_first.push_back(m_first.back() + source->NumExamples());
  }
  if (m_first.back() > std::numeric_limits<std::uint32_t>::max()) {
    throw std::runtime_error("too many examples for one training");
  }
}

void PooledSource::BeginEpoch(Random& random) {
  for (const auto& source : m_sources) source->BeginEpoch(random);
}

void PooledSource::Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
                        std::span<std::int64_t> classes) const {
  const auto width = static_cast<std::size_t>(NumInputs());
  for (std::size_t i = 0; i < examples.size(); ++i) {
    const auto after = std::ranges::upper_bound(m_first, std::size_t{examples[i]});
    const auto number = static_cast<std::size_t>(after - m_first.begin()) - 1;
    const auto own = static_cast<std::uint32_t>(examples[i] - m_first[number]);
    m_sources[number]->Fill({&own, 1}, inputs.subspan(i * width, width), classes.subspan(i, 1));
  }
}

ExampleGroup PooledSource::GroupOf(std::size_t number, double share) const {
  return {static_cast<std::uint32_t>(m_first.at(number)),
          static_cast<std::uint32_t>(m_first.at(number + 1)), share};
}

}  // namespace veral3::training
