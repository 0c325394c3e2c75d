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
    if (source->NumInputs() != NumInputs() || source->NumClasses() != NumClasses() ||
        source->HasWeights() != HasWeights()) {
      throw std::runtime_error("the examples have other inputs, classes or weights");
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
    const Place place = PlaceOf(examples[i]);
    m_sources[place.source]->Fill({&place.example, 1}, inputs.subspan(i * width, width),
                                  classes.subspan(i, 1));
  }
}

void PooledSource::FillWeights(std::span<const std::uint32_t> examples,
                               std::span<float> weights) const {
  const auto width = static_cast<std::size_t>(NumClasses());
  for (std::size_t i = 0; i < examples.size(); ++i) {
    const Place place = PlaceOf(examples[i]);
    m_sources[place.source]->FillWeights({&place.example, 1}, weights.subspan(i * width, width));
  }
}

PooledSource::Place PooledSource::PlaceOf(std::uint32_t example) const {
  const auto after = std::ranges::upper_bound(m_first, std::size_t{example});
  const auto number = static_cast<std::size_t>(after - m_first.begin()) - 1;
  return {number, static_cast<std::uint32_t>(example - m_first[number])};
}

ExampleGroup PooledSource::GroupOf(std::size_t number, double share) const {
  return {static_cast<std::uint32_t>(m_first.at(number)),
          static_cast<std::uint32_t>(m_first.at(number + 1)), share};
}

}  // namespace veral3::training
