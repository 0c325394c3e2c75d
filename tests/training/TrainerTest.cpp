#include "training/train/Trainer.h"

#include <gmock/gmock.h>

#include <cmath>
#include <memory>
#include <stdexcept>

#include "training/train/PooledSource.h"

namespace veral3::training {
namespace {

// Class 1 where the one input is above 0; examples lie at -2 to 2 without 0.
class SignSource final : public ExampleSource {
 public:
  explicit SignSource(bool turned = false) : m_turned(turned) {}
  std::size_t NumExamples() const override { return 40; }
  int NumInputs() const override { return 1; }
  int NumClasses() const override { return 2; }
  void BeginEpoch(Random&) override {}
  void Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
            std::span<std::int64_t> classes) const override {
    for (std::size_t i = 0; i < examples.size(); ++i) {
      const int place = static_cast<int>(examples[i]) - 20;
      inputs[i] = (static_cast<float>(place) + 0.5f) / 10.0f;
      classes[i] = (place >= 0) != m_turned;
    }
  }

 private:
  bool m_turned;
};

TrainOptions Small() {
  TrainOptions options;
  options.hidden = {8};
  options.batch = 8;
  options.epochs = 60;
  options.rate = 2e-2;
  options.dropout = 0.0;
  options.threads = 1;
  return options;
}

// Probability of class 1 at an input.
double At(const Network& network, float input) {
  return double{Classify(network, std::span(&input, 1))[1]};
}

TEST(Trainer, LearnsWhichSideIsWhich) {
  SignSource source;
  const Network network = Train(Small(), source, std::nullopt);
  EXPECT_GT(At(network, 1.5f), 0.95);
  EXPECT_LT(At(network, -1.5f), 0.05);
}

TEST(Trainer, WithoutSmoothingNothingStaysUnderThePosteriors) {
  SignSource source;
  TrainOptions options = Small();
  options.epochs = 200;
  const Network sharp = Train(options, source, std::nullopt);
  EXPECT_LT(At(sharp, -1.95f), 1e-3);
  options.smoothing = 0.1;  // of two columns: 0.05 each
  const Network smoothed = Train(options, source, std::nullopt);
  EXPECT_NEAR(At(smoothed, -1.95f), 0.05, 0.02);
}

TEST(Trainer, BelievesItsTeacherMoreThanTheClasses) {
  SignSource turned(/*turned=*/true);
  const Network teacher = Train(Small(), turned, std::nullopt);
  SignSource source;
  TrainOptions options = Small();
  options.teachers = {teacher};
  options.teaching = 0.9;
  const Network student = Train(options, source, std::nullopt);
  // 0.9 from the teacher, who is nearly sure, and 0.1 from the class.
  EXPECT_NEAR(At(student, 1.5f), 0.1, 0.06);
  EXPECT_NEAR(At(student, -1.5f), 0.9, 0.06);
}

TEST(Trainer, TeachersAreAveraged) {
  SignSource source;
  SignSource turned(/*turned=*/true);
  TrainOptions options = Small();
  const Network one = Train(options, source, std::nullopt);
  const Network other = Train(options, turned, std::nullopt);
  options.teachers = {one, other};
  options.teaching = 1.0;
  EXPECT_NEAR(At(Train(options, source, std::nullopt), 1.5f), 0.5, 0.1);
}

TEST(Trainer, TeachersThatDoNotFitAreRefused) {
  SignSource source;
  TrainOptions options = Small();
  options.teaching = 0.5;
  EXPECT_THROW(Train(options, source, std::nullopt), std::runtime_error);  // nobody
  Random random(1);
  Network wide{{0.0f, 0.0f}, {1.0f, 1.0f}, {RandomLayer(2, 2, random)}};
  options.teachers = {wide};
  EXPECT_THROW(Train(options, source, std::nullopt), std::runtime_error);
  Network fitting{{0.0f}, {1.0f}, {RandomLayer(1, 2, random)}};
  options.teachers = {fitting};
  options.heads = {{0, 1}, {1, 2}};
  EXPECT_THROW(Train(options, source, std::nullopt), std::runtime_error);
}

// The same inputs twice, once with the classes turned round: the larger share wins.
TEST(Trainer, SharesDecideWhomToBelieve) {
  for (const double share : {0.85, 0.15}) {
    std::vector<std::unique_ptr<ExampleSource>> sources;
    sources.push_back(std::make_unique<SignSource>());
    sources.push_back(std::make_unique<SignSource>(/*turned=*/true));
    PooledSource source(std::move(sources));
    TrainOptions options = Small();
    options.groups = {source.GroupOf(0, share), source.GroupOf(1, 1.0 - share)};
    options.epoch_size = 160;
    const Network network = Train(options, source, std::nullopt);
    EXPECT_NEAR(At(network, 1.5f), share, 0.1);
    EXPECT_NEAR(At(network, -1.5f), 1.0 - share, 0.1);
  }
}

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

TrainOptions ForWeights() {
  return {.hidden = {8},
          .batch = 16,
          .epochs = 200,
          .rate = 1e-2,
          .dropout = 0.0,
          .smoothing = 0.0,
          .threads = 1};
}

TEST(TrainerWeights, LearnsTheWeightsOfClasses) {
  HalfTruths source;
  const Network network = Train(ForWeights(), source, {});
  const std::vector<float> said = Classify(network, std::vector{0.0F, 1.0F});
  EXPECT_NEAR(said[0], 0.25, 0.02);
  EXPECT_NEAR(said[1], 0.75, 0.02);
  EXPECT_NEAR(said[2], 0.9, 0.02);
}

TEST(TrainerWeights, SmoothsWeightsTowardsTheMiddle) {
  HalfTruths source;
  TrainOptions options = ForWeights();
  options.smoothing = 0.2;
  const Network network = Train(options, source, {});
  const std::vector<float> said = Classify(network, std::vector{0.0F, 1.0F});
  EXPECT_NEAR(said[0], 0.30, 0.02);
  EXPECT_NEAR(said[2], 0.82, 0.02);
}

TEST(TrainerWeights, IsTheSameTwice) {
  HalfTruths source;
  TrainOptions options = ForWeights();
  options.epochs = 3;
  const Network first = Train(options, source, {});
  const Network second = Train(options, source, {});
  EXPECT_EQ(first.layers[0].weights, second.layers[0].weights);
  EXPECT_EQ(first.layers[1].bias, second.layers[1].bias);
}

TEST(TrainerWeights, RefusesWeightsBesideColumnsByLanguage) {
  HalfTruths source;
  TrainOptions options = ForWeights();
  options.heads = {{0, 1}, {1, 2}};
  EXPECT_THROW(Train(options, source, {}), std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
