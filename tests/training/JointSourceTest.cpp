#include "training/train/JointSource.h"

#include <gmock/gmock.h>

#include <cmath>

namespace veral3::training {
namespace {

using testing::ElementsAre;

// Example i of class i % classes has the inputs (tag, i).
class CountingSource final : public ExampleSource {
 public:
  CountingSource(float tag, std::size_t examples, int classes)
      : m_tag(tag), m_examples(examples), m_classes(classes) {}
  std::size_t NumExamples() const override { return m_examples; }
  int NumInputs() const override { return 2; }
  int NumClasses() const override { return m_classes; }
  void BeginEpoch(Random&) override {}
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override {
    for (std::size_t i = 0; i < examples.size(); ++i) {
      inputs[2 * i] = m_tag;
      inputs[2 * i + 1] = static_cast<float>(examples[i]);
      classes[i] = examples[i] % static_cast<std::uint32_t>(m_classes);
    }
  }

 private:
  float m_tag;
  std::size_t m_examples;
  int m_classes;
};

JointSource ThreeSources() {
  std::vector<std::unique_ptr<ExampleSource>> sources;
  sources.push_back(std::make_unique<CountingSource>(1.0f, 5, 3));
  sources.push_back(std::make_unique<CountingSource>(2.0f, 0, 2));
  sources.push_back(std::make_unique<CountingSource>(3.0f, 4, 4));
  return JointSource(std::move(sources));
}

TEST(JointSource, NumbersExamplesAndClassesThrough) {
  const JointSource source = ThreeSources();
  EXPECT_EQ(source.NumExamples(), 9u);
  EXPECT_EQ(source.NumClasses(), 9);
  ASSERT_EQ(source.Heads().size(), 3u);
  EXPECT_EQ(source.Heads()[2].begin, 5);
  EXPECT_EQ(source.Heads()[2].end, 9);
  std::vector<float> inputs(6);
  std::vector<std::int64_t> classes(3);
  source.Fill(std::vector<std::uint32_t>{8, 4, 5}, inputs, classes);
  EXPECT_THAT(inputs, ElementsAre(3, 3, 1, 4, 3, 0));
  EXPECT_THAT(classes, ElementsAre(8, 1, 5));
}

TEST(JointSource, RefusesNothingAndOtherSizes) {
  EXPECT_THROW(JointSource({}), std::runtime_error);
}

Network SmallNetwork() {
  Random random(2);
  Network network;
  network.input_mean = {0.0f, 0.0f};
  network.input_deviation = {1.0f, 1.0f};
  network.layers = {RandomLayer(2, 4, random), RandomLayer(4, 3, random)};
  network.layers.back().bias = {1.0f, 2.0f, 3.0f};
  return network;
}

TEST(Heads, ComeBackFromTheJointNetworkAsTheyWentIn) {
  const Network network = SmallNetwork();
  Random random(3);
  const Network joint = AsJoint(network, {5, 8}, 9, random);
  EXPECT_EQ(joint.NumOutputs(), 9);
  EXPECT_EQ(joint.layers[0].weights, network.layers[0].weights);
  const Network again = WithHead(joint, {5, 8});
  EXPECT_EQ(again.NumOutputs(), 3);
  EXPECT_EQ(again.layers[1].weights, network.layers[1].weights);
  EXPECT_EQ(again.layers[1].bias, network.layers[1].bias);
  EXPECT_EQ(WithHead(joint, {0, 5}).NumOutputs(), 5);
}

}  // namespace
}  // namespace veral3::training
