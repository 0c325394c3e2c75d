#include "training/train/Trainer.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace veral3::training {
namespace {

// Inputs 0 and 1, of which one is the first class in one case of four, the other in nine of ten.
// Nobody is told by the classes, which are the same for both.
class HalfTruths final : public ExampleSource {
 public:
  std::size_t NumExamples() const override { return 64; }
  int NumInputs() const override { return 1; }
  int NumClasses() const override { return 2; }
  void BeginEpoch(Random&) override {}
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override {
    for (std::size_t i = 0; i < examples.size(); ++i) {
      inputs[i] = static_cast<float>(examples[i] % 2);
      classes[i] = 0;
    }
  }
  bool HasWeights() const override { return true; }
  void FillWeights(std::span<const std::uint32_t> examples,
                   std::span<float> weights) const override {
    for (std::size_t i = 0; i < examples.size(); ++i) {
      weights[2 * i] = examples[i] % 2 == 0 ? 0.25F : 0.9F;
      weights[2 * i + 1] = 1.0F - weights[2 * i];
    }
  }
};

TrainOptions Options() {
  return {.hidden = {8},
          .batch = 16,
          .epochs = 200,
          .rate = 1e-2,
          .dropout = 0.0,
          .smoothing = 0.0,
          .threads = 1};
}

TEST(Train, LearnsTheWeightsOfClasses) {
  HalfTruths source;
  const Network network = Train(Options(), source, {});
  const std::vector<float> said = Classify(network, std::vector{0.0F, 1.0F});
  EXPECT_NEAR(said[0], 0.25, 0.02);
  EXPECT_NEAR(said[1], 0.75, 0.02);
  EXPECT_NEAR(said[2], 0.9, 0.02);
}

TEST(Train, SmoothsWeightsTowardsTheMiddle) {
  HalfTruths source;
  TrainOptions options = Options();
  options.smoothing = 0.2;
  const Network network = Train(options, source, {});
  const std::vector<float> said = Classify(network, std::vector{0.0F, 1.0F});
  EXPECT_NEAR(said[0], 0.30, 0.02);
  EXPECT_NEAR(said[2], 0.82, 0.02);
}

TEST(Train, IsTheSameTwice) {
  HalfTruths source;
  TrainOptions options = Options();
  options.epochs = 3;
  const Network first = Train(options, source, {});
  const Network second = Train(options, source, {});
  EXPECT_EQ(first.layers[0].weights, second.layers[0].weights);
  EXPECT_EQ(first.layers[1].bias, second.layers[1].bias);
}

TEST(Train, RefusesWeightsBesideColumnsByLanguage) {
  HalfTruths source;
  TrainOptions options = Options();
  options.heads = {{0, 1}, {1, 2}};
  EXPECT_THROW(Train(options, source, {}), std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
