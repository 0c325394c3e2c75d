#include "training/train/Network.h"

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>

#include "recognition/DLFrameClassifier.h"
#include "support/MessageCapture.h"
#include "training/common/Random.h"
#include "training/train/Scaling.h"

namespace veral3::training {
namespace {

std::string Scratch(const std::string& name) {
  return (std::filesystem::path(::testing::TempDir()) / ("veral3_" + name)).string();
}

Network SmallNetwork() {
  Random random(4);
  Network network;
  for (int i = 0; i < 5; ++i) {
    network.input_mean.push_back(static_cast<float>(random.Normal()));
    network.input_deviation.push_back(static_cast<float>(random.Uniform(0.5, 4.0)));
  }
  for (const auto& [inputs, outputs] : {std::pair{5, 7}, std::pair{7, 3}}) {
    DenseLayer layer{inputs, outputs, {}, {}};
    for (int k = 0; k < inputs * outputs; ++k) {
      layer.weights.push_back(static_cast<float>(random.Normal()));
    }
    for (int k = 0; k < outputs; ++k) layer.bias.push_back(static_cast<float>(random.Normal()));
    network.layers.push_back(layer);
  }
  return network;
}

// What the network means, in the plainest way.
std::vector<double> Evaluate(const Network& network, std::vector<double> x) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    x[i] = (x[i] - static_cast<double>(network.input_mean[i])) /
           static_cast<double>(network.input_deviation[i]);
  }
  for (const DenseLayer& layer : network.layers) {
    std::vector<double> y(layer.bias.begin(), layer.bias.end());
    for (std::size_t i = 0; i < x.size(); ++i) {
      for (std::size_t j = 0; j < y.size(); ++j) {
        y[j] += x[i] * static_cast<double>(layer.weights[i * y.size() + j]);
      }
    }
    if (&layer != &network.layers.back()) {
      for (double& value : y) value = std::max(value, 0.0);
    }
    x = y;
  }
  double sum = 0.0;
  for (double& value : x) sum += value = std::exp(value);
  for (double& value : x) value /= sum;
  return x;
}

TEST(Export, TheEngineComputesWhatTheNetworkMeans) {
  const Network network = SmallNetwork();
  const std::string path = Scratch("exported.model");
  ExportModel(network, 3, path);
  const test::MessageCapture quiet;
  DLFrameClassifier classifier;
  ASSERT_EQ(classifier.LoadFromFile(path.c_str()), 3);
  Random random(8);
  for (int trial = 0; trial < 20; ++trial) {
    std::vector<float> input;
    for (int i = 0; i < 5; ++i) input.push_back(static_cast<float>(3 * random.Normal()));
    double output[3];
    ASSERT_EQ(classifier.ClassifyFrame(input.data(), 5, output, 3), 0);
    const auto wanted = Evaluate(network, {input.begin(), input.end()});
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_NEAR(output[k], std::max(wanted[k], 1e-6), 1e-5);
    }
  }
}

TEST(Export, RefusesAVersionThatIsNotPositive) {
  EXPECT_THROW(ExportModel(SmallNetwork(), 0, Scratch("zero.model")), std::runtime_error);
  EXPECT_THROW(ExportModel(SmallNetwork(), 1, "/no/such/folder/x"), std::runtime_error);
}

TEST(Checkpoint, GivesBackTheNetwork) {
  const Network network = SmallNetwork();
  const std::string path = Scratch("round.net");
  SaveCheckpoint(network, path);
  const Network read = LoadCheckpoint(path);
  EXPECT_EQ(read.input_mean, network.input_mean);
  EXPECT_EQ(read.input_deviation, network.input_deviation);
  ASSERT_EQ(read.layers.size(), 2u);
  EXPECT_EQ(read.layers[1].weights, network.layers[1].weights);
  EXPECT_EQ(read.layers[0].bias, network.layers[0].bias);
}

TEST(Checkpoint, RefusesWhatIsDamaged) {
  const std::string path = Scratch("damaged.net");
  SaveCheckpoint(SmallNetwork(), path);
  std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);
  EXPECT_THROW(LoadCheckpoint(path), std::runtime_error);
  std::filesystem::resize_file(path, 4);
  EXPECT_THROW(LoadCheckpoint(path), std::runtime_error);
  EXPECT_THROW(LoadCheckpoint(Scratch("missing.net")), std::runtime_error);
}

TEST(Import, GivesBackWhatWasExported) {
  const Network network = SmallNetwork();
  const std::string path = Scratch("imported.model");
  ExportModel(network, 3, path);
  const Network imported = ImportModel(path);
  const Network folded = FoldScaling(network);
  ASSERT_EQ(imported.layers.size(), folded.layers.size());
  for (std::size_t i = 0; i < folded.layers.size(); ++i) {
    EXPECT_EQ(imported.layers[i].weights, folded.layers[i].weights);
    EXPECT_EQ(imported.layers[i].bias, folded.layers[i].bias);
  }
}

TEST(Import, DamagedFilesAreRefused) {
  const std::string path = Scratch("damaged.model");
  ExportModel(SmallNetwork(), 3, path);
  const auto size = std::filesystem::file_size(path);
  for (std::uintmax_t cut = 0; cut < size; cut += 7) {
    std::filesystem::resize_file(path, cut);
    EXPECT_THROW(ImportModel(path), std::runtime_error) << cut;
    ExportModel(SmallNetwork(), 3, path);
  }
  EXPECT_THROW(ImportModel("/nonexistent"), std::runtime_error);
}

TEST(Unfold, IsTheSameFunctionWithAnotherScaling) {
  const Network network = SmallNetwork();
  const Scaling scaling = {{1.0f, -2.0f, 0.5f, 0.0f, 3.0f}, {2.0f, 0.25f, 1.0f, 4.0f, 0.5f}};
  const Network unfolded = Unfold(network, scaling);
  EXPECT_EQ(unfolded.input_mean, scaling.mean);
  Random random(9);
  for (int trial = 0; trial < 20; ++trial) {
    std::vector<double> input;
    for (int i = 0; i < 5; ++i) input.push_back(3 * random.Normal());
    const auto expected = Evaluate(network, input);
    const auto actual = Evaluate(unfolded, input);
    for (std::size_t k = 0; k < expected.size(); ++k) EXPECT_NEAR(actual[k], expected[k], 1e-5);
  }
}

// One input, two columns: at input 2 the softmax is given 4 and 1, which a temperature of 2 makes 2
// and 0.5.
TEST(Network, ATemperatureDividesWhatTheSoftmaxIsGiven) {
  const Network network{{0.0f}, {1.0f}, {{1, 2, {1.5f, 1.0f}, {1.0f, -1.0f}}}};
  const DenseLayer softer = WithTemperature(network, 2.0).layers.back();
  EXPECT_FLOAT_EQ(softer.weights[0] * 2.0f + softer.bias[0], 2.0f);
  EXPECT_FLOAT_EQ(softer.weights[1] * 2.0f + softer.bias[1], 0.5f);
  EXPECT_THROW(WithTemperature(network, 0.0), std::runtime_error);
  EXPECT_THROW(WithTemperature(network, -1.0), std::runtime_error);
}

TEST(Network, ATemperatureLeavesTheLayersBeforeAlone) {
  Random random(1);
  const Network network{{0.0f}, {1.0f}, {RandomLayer(1, 3, random), RandomLayer(3, 2, random)}};
  const Network softer = WithTemperature(network, 1.7);
  EXPECT_EQ(softer.layers[0].weights, network.layers[0].weights);
  EXPECT_NE(softer.layers[1].weights, network.layers[1].weights);
}

}  // namespace
}  // namespace veral3::training
