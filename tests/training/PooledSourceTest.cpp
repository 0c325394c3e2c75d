#include "training/train/PooledSource.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace veral3::training {
namespace {

using testing::ElementsAre;

// Example i has the input tag + i and class i % classes.
class TaggedSource final : public ExampleSource {
 public:
  TaggedSource(float tag, std::size_t examples, int classes = 3, int inputs = 1)
      : m_tag(tag), m_examples(examples), m_classes(classes), m_inputs(inputs) {}
  std::size_t NumExamples() const override { return m_examples; }
  int NumInputs() const override { return m_inputs; }
  int NumClasses() const override { return m_classes; }
  void BeginEpoch(Random& random) override { random.Next(); }
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override {
    for (std::size_t i = 0; i < examples.size(); ++i) {
      inputs[i] = m_tag + static_cast<float>(examples[i]);
      classes[i] = examples[i] % static_cast<std::uint32_t>(m_classes);
    }
  }

 private:
  float m_tag;
  std::size_t m_examples;
  int m_classes;
  int m_inputs;
};

template <typename... Arguments>
std::vector<std::unique_ptr<ExampleSource>> Sources(Arguments... sources) {
  std::vector<std::unique_ptr<ExampleSource>> all;
  (all.push_back(std::make_unique<TaggedSource>(sources)), ...);
  return all;
}

TEST(PooledSource, NumbersExamplesThroughAndKeepsTheirClasses) {
  const PooledSource source(
      Sources(TaggedSource(100, 4), TaggedSource(200, 0), TaggedSource(300, 2)));
  EXPECT_EQ(source.NumExamples(), 6u);
  EXPECT_EQ(source.NumClasses(), 3);
  std::vector<float> inputs(4);
  std::vector<std::int64_t> classes(4);
  source.Fill(std::vector<std::uint32_t>{5, 0, 4, 3}, inputs, classes);
  EXPECT_THAT(inputs, ElementsAre(301, 100, 300, 103));
  EXPECT_THAT(classes, ElementsAre(1, 0, 0, 0));
}

TEST(PooledSource, KnowsItsGroups) {
  const PooledSource source(Sources(TaggedSource(100, 4), TaggedSource(300, 2)));
  const ExampleGroup group = source.GroupOf(1, 0.4);
  EXPECT_EQ(group.begin, 4u);
  EXPECT_EQ(group.end, 6u);
  EXPECT_EQ(group.share, 0.4);
  EXPECT_THROW(source.GroupOf(2, 0.5), std::out_of_range);
}

class WeighedSource final : public ExampleSource {
 public:
  explicit WeighedSource(float weight) : m_weight(weight) {}
  std::size_t NumExamples() const override { return 2; }
  int NumInputs() const override { return 1; }
  int NumClasses() const override { return 3; }
  void BeginEpoch(Random&) override {}
  void Fill(std::span<const std::uint32_t>, std::span<float>,
            std::span<std::int64_t>) const override {}
  bool HasWeights() const override { return true; }
  void FillWeights(std::span<const std::uint32_t> examples,
                   std::span<float> weights) const override {
    for (std::size_t i = 0; i < weights.size(); ++i) {
      weights[i] = m_weight + static_cast<float>(examples[i / 3] * 10 + i % 3);
    }
  }

 private:
  float m_weight;
};

TEST(PooledSource, WeightsAreThoseOfTheSources) {
  std::vector<std::unique_ptr<ExampleSource>> sources;
  sources.push_back(std::make_unique<WeighedSource>(100.0f));
  sources.push_back(std::make_unique<WeighedSource>(200.0f));
  const PooledSource source(std::move(sources));
  ASSERT_TRUE(source.HasWeights());
  std::vector<float> weights(6);
  source.FillWeights(std::vector<std::uint32_t>{3, 0}, weights);
  EXPECT_THAT(weights, ElementsAre(210, 211, 212, 100, 101, 102));
}

TEST(PooledSource, WeightsOfSomeOnlyAreRefused) {
  std::vector<std::unique_ptr<ExampleSource>> sources;
  sources.push_back(std::make_unique<WeighedSource>(100.0f));
  sources.push_back(std::make_unique<TaggedSource>(1.0f, 2));
  EXPECT_THROW(PooledSource(std::move(sources)), std::runtime_error);
}

TEST(PooledSource, AllBeginTheirEpoch) {
  PooledSource source(Sources(TaggedSource(100, 4), TaggedSource(300, 2)));
  Random random(1);
  source.BeginEpoch(random);
  Random twice(1);
  twice.Next();
  twice.Next();
  EXPECT_EQ(random.Next(), twice.Next());
}

TEST(PooledSource, SourcesThatDifferAreRefused) {
  EXPECT_THROW(PooledSource({}), std::runtime_error);
  EXPECT_THROW(PooledSource(Sources(TaggedSource(1, 4, 3), TaggedSource(2, 4, 5))),
               std::runtime_error);
  EXPECT_THROW(PooledSource(Sources(TaggedSource(1, 4, 3, 1), TaggedSource(2, 4, 3, 2))),
               std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
