#include "training/train/Priors.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "recognition/CPhonemeSet.h"

namespace veral3::training {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;

// 1,000 examples of class 0, then 200 of which every fourth is of class 2, the others of class 1.
class Uneven final : public ExampleSource {
 public:
  std::size_t NumExamples() const override { return 1200; }
  int NumInputs() const override { return 1; }
  int NumClasses() const override { return 3; }
  void BeginEpoch(Random&) override {}
  void Fill(std::span<const std::uint32_t> examples, std::span<float>,
            std::span<std::int64_t> classes) const override {
    for (std::size_t i = 0; i < examples.size(); ++i) {
      classes[i] = examples[i] < 1000 ? 0 : examples[i] % 4 == 0 ? 2 : 1;
    }
  }
};

TEST(Priors, ClassesAreCountedByTheSharesOfTheirGroups) {
  const Uneven source;
  EXPECT_THAT(ClassShares(source, {}),
              ElementsAre(DoubleNear(10.0 / 12, 1e-12), DoubleNear(1.5 / 12, 1e-12),
                          DoubleNear(0.5 / 12, 1e-12)));
  const std::vector<ExampleGroup> groups = {{0, 1000, 1.0}, {1000, 1200, 3.0}};
  EXPECT_THAT(
      ClassShares(source, groups),
      ElementsAre(DoubleNear(0.25, 1e-12), DoubleNear(0.5625, 1e-12), DoubleNear(0.1875, 1e-12)));
}

// Learnt with both classes alike, it says 0.8 and 0.2 of an input. Where the second class is nine
// times as frequent as the first, that is 0.8 x 0.1 to 0.2 x 0.9: 4 to 9.
TEST(Priors, ProbabilitiesFollowHowFrequentClassesAre) {
  const Network network{{0.0f}, {1.0f}, {{1, 2, {0.0f, 0.0f}, {std::log(0.8f), std::log(0.2f)}}}};
  const std::vector<double> learnt = {0.5, 0.5};
  const std::vector<double> wanted = {0.1, 0.9};
  const Network moved = WithPriors(network, learnt, wanted);
  const float input = 0.3f;
  const std::vector<float> said = Classify(moved, std::span(&input, 1));
  EXPECT_NEAR(said[0], 4.0 / 13.0, 1e-5);
  EXPECT_NEAR(said[1], 9.0 / 13.0, 1e-5);
}

TEST(Priors, AClassThatNeverCameStays) {
  const Network network{{0.0f}, {1.0f}, {{1, 2, {0.0f, 0.0f}, {1.0f, -7.0f}}}};
  const Network moved =
      WithPriors(network, std::vector<double>{1.0, 0.0}, std::vector<double>{0.5, 0.5});
  EXPECT_EQ(moved.layers.back().bias[1], -7.0f);
}

TEST(Priors, SharesThatDoNotFitAreRefused) {
  const Network network{{0.0f}, {1.0f}, {{1, 2, {0.0f, 0.0f}, {1.0f, -7.0f}}}};
  EXPECT_THROW(WithPriors(network, std::vector<double>{1.0}, std::vector<double>{0.5, 0.5}),
               std::runtime_error);
  EXPECT_THROW(WithPriors(network, std::vector<double>{0.5, 0.5}, std::vector<double>{1.0, 0.0}),
               std::runtime_error);
}

// The normalisers of English phonemes add up to 37.0 (those of its set, without the pause):
// s, 1.765, keeps its share; Z, .0142, whose scores divide by the square, gets the square.
TEST(Priors, RarePhonemesHaveToBeHeardClearly) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageEnglish);
  std::vector<double> learnt(37, 0.9 / 36);
  const auto pause = static_cast<std::size_t>(set.GetPhonemeIndex('-'));
  learnt[pause] = 0.1;
  const std::vector<double> shares = ScoredShares(kLanguageEnglish, learnt);
  EXPECT_DOUBLE_EQ(shares[pause], 0.1);
  const auto of = [&](char symbol) {
    return shares[static_cast<std::size_t>(set.GetPhonemeIndex(symbol))];
  };
  EXPECT_NEAR(of('s'), 0.0429341, 1e-6);
  EXPECT_NEAR(of('Z'), 4.924797e-6, 1e-11);
  EXPECT_NEAR(of('I') / of('s'), 3.3567579 / 1.765067828, 1e-9);
  EXPECT_THROW(ScoredShares(kLanguageChinese, learnt), std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
