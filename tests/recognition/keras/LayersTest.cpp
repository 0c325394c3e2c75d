#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "recognition/keras/KerasModel.h"
#include "recognition/keras/LayerConv2D.h"
#include "recognition/keras/LayerDense.h"
#include "recognition/keras/LayerDropout.h"
#include "recognition/keras/LayerFlatten.h"
#include "recognition/keras/LayerMaxPooling.h"
#include "recognition/keras/NetworkBuilder.h"
#include "support/MessageCapture.h"

namespace veral3::test {
namespace {

using keras::Tensor;
using testing::ElementsAre;

template <typename LayerType>
void Load(LayerType& layer, const std::string& text) {
  std::istringstream stream(text);
  ASSERT_EQ(layer.load_weights(stream, false), 0);
}

std::vector<double> Channel(const Tensor& tensor, int z) {
  std::vector<double> values;
  for (int x = 0; x < tensor.size_x; ++x) {
    for (int y = 0; y < tensor.size_y; ++y) values.push_back(tensor.data3[x][y][z]);
  }
  return values;
}

void Fill(Tensor& tensor, const std::vector<double>& values) {
  std::copy(values.begin(), values.end(), tensor.data3[0][0]);
}

TEST(LayerConv2D, CentreWeightAloneOnOnePixel) {
  keras::LayerConv2D conv;
  Load(conv, "tanh 1 1 1 3 3 1 1 same [9][9][9] [9][0.5][9] [9][9][9] [0.25]");
  Tensor tensor;
  tensor.allocate3(1, 1, 1);
  tensor.data3[0][0][0] = 1.0;
  ASSERT_EQ(conv.compute_output(tensor), 0);
  EXPECT_EQ(tensor.data3[0][0][0], std::tanh(0.75));
}

TEST(LayerConv2D, EvenKernelReachesOneFurtherAfterIt) {
  keras::LayerConv2D conv;
  Load(conv, "relu 3 3 1 2 2 1 1 same [1000][100][10][1] [0]");
  Tensor tensor;
  tensor.allocate3(3, 3, 1);
  Fill(tensor, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  ASSERT_EQ(conv.compute_output(tensor), 0);
  EXPECT_THAT(Channel(tensor, 0),
              ElementsAre(1245, 2356, 3060, 4578, 5689, 6090, 7800, 8900, 9000));
}

TEST(LayerConv2D, ValidBorderPrintsEachTimeAndCountsAsSame) {
  keras::LayerConv2D same;
  keras::LayerConv2D valid;
  Load(same, "sigmoid 2 2 1 3 3 1 1 same [1][2][3][4][5][6][7][8][9] [-3]");
  Load(valid, "sigmoid 2 2 1 3 3 1 1 valid [1][2][3][4][5][6][7][8][9] [-3]");
  MessageCapture messages;
  std::vector<std::vector<double>> outputs;
  for (keras::LayerConv2D* layer : {&same, &valid, &valid}) {
    Tensor tensor;
    tensor.allocate3(2, 2, 1);
    Fill(tensor, {0.1, 0.2, -0.3, 0.4});
    ASSERT_EQ(layer->compute_output(tensor), 0);
    outputs.push_back(Channel(tensor, 0));
  }
  EXPECT_EQ(outputs[0], outputs[1]);
  EXPECT_EQ(messages.StandardError(),
            "ERROR! rebigrado does not support 'Valid' padding mode.\n"
            "ERROR! rebigrado does not support 'Valid' padding mode.\n");
}

TEST(LayerConv2D, RefusesWhatIsTooSmall) {
  keras::LayerConv2D conv;
  Load(conv, "relu 2 3 2 1 1 2 1 same [1] [1] [0]");
  for (const auto& [x, y, z] : {std::tuple{1, 3, 2}, {2, 2, 2}, {2, 3, 1}}) {
    Tensor tensor;
    tensor.allocate3(x, y, z);
    EXPECT_EQ(conv.compute_output(tensor), -1);
    EXPECT_EQ(tensor.size_x, x);
  }
  Tensor larger;
  larger.allocate3(4, 4, 3);
  ASSERT_EQ(conv.compute_output(larger), 0);
  EXPECT_EQ(larger.size_x, 2);
  EXPECT_EQ(larger.size_y, 3);
  EXPECT_EQ(larger.size_z, 1);

  Tensor flat;
  double value = 0.0;
  flat.view1(&value, 1);
  EXPECT_EQ(conv.compute_output(flat), -1);
  Tensor empty;
  empty.dims = 3;
  EXPECT_EQ(conv.compute_output(empty), -1);
}

TEST(LayerConv2D, KernelsShallowerThanTheInputAreRefused) {
  keras::LayerConv2D conv;
  Load(conv, "relu 1 1 2 1 1 1 1 same [1] [0]");
  Tensor tensor;
  tensor.allocate3(1, 1, 2);
  EXPECT_EQ(conv.compute_output(tensor), -1);
}

TEST(LayerMaxPooling, IgnoresWhatIsBeyondTheLastPool) {
  keras::LayerMaxPooling pooling;
  Load(pooling, "5 5 1 2 2");
  Tensor tensor;
  tensor.allocate3(5, 5, 1);
  std::vector<double> values(25, 100.0);
  for (int x = 0; x < 4; ++x) {
    for (int y = 0; y < 4; ++y) values[static_cast<std::size_t>(5 * x + y)] = -(5 * x + y) - 1.0;
  }
  Fill(tensor, values);
  ASSERT_EQ(pooling.compute_output(tensor), 0);
  EXPECT_EQ(tensor.size_x, 2);
  EXPECT_EQ(tensor.size_y, 2);
  EXPECT_THAT(Channel(tensor, 0), ElementsAre(-1, -3, -11, -13));
}

TEST(LayerMaxPooling, RefusesWhatIsTooSmall) {
  keras::LayerMaxPooling pooling;
  Tensor tensor;
  tensor.allocate3(4, 4, 1);
  EXPECT_EQ(pooling.compute_output(tensor), -1);  // nothing was loaded
  Load(pooling, "5 4 1 2 2");
  ASSERT_EQ(pooling.compute_output(tensor), 0);  // the fifth row is never read
  Tensor small;
  small.allocate3(3, 4, 1);
  EXPECT_EQ(pooling.compute_output(small), -1);
}

TEST(LayerFlatten, ChannelsInnermost) {
  keras::LayerFlatten flatten;
  Load(flatten, "2 2 2");
  Tensor tensor;
  tensor.allocate3(2, 2, 3);  // the third channel is not the layer's
  Fill(tensor, {1, 2, 0, 3, 4, 0, 5, 6, 0, 7, 8, 0});
  ASSERT_EQ(flatten.compute_output(tensor), 0);
  ASSERT_EQ(tensor.dims, 1);
  EXPECT_EQ(std::vector(tensor.data1, tensor.data1 + tensor.size_x),
            (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(flatten.compute_output(tensor), -1);  // 1-D now
  Tensor small;
  small.allocate3(2, 1, 2);
  EXPECT_EQ(flatten.compute_output(small), -1);
}

TEST(LayerDense, SoftmaxOfLargeValuesSumsToOne) {
  const keras::LayerDense dense(std::vector{700.0, 710.0, -900.0}, std::vector{0.0, 1.0, 2.0}, 'x');
  double value = 3.0;
  Tensor tensor;
  tensor.view1(&value, 1);
  keras::LayerBuffer buffer;
  ASSERT_EQ(dense.evaluate(tensor, buffer), 0);
  EXPECT_DOUBLE_EQ(tensor.data1[0] + tensor.data1[1] + tensor.data1[2], 1.0);
  EXPECT_GT(tensor.data1[1], 0.999);
}

TEST(LayerDense, TakesTheFirstOfMoreValuesAndRefusesFewer) {
  keras::LayerDense dense(std::vector{1.0, 2.0}, std::vector{0.0}, 'r');
  std::vector<double> input = {1, 2, 50};
  Tensor tensor;
  tensor.view1(input.data(), 3);
  ASSERT_EQ(dense.compute_output(tensor), 0);
  EXPECT_EQ(tensor.data1[0], 5.0);
  EXPECT_EQ(dense.compute_output(tensor), -1);  // one value now
  Tensor none;
  none.dims = 1;
  none.size_x = 2;
  EXPECT_EQ(dense.compute_output(none), -1);
}

TEST(LayerDense, ZeroSizesEvaluate) {
  keras::LayerDense no_inputs(std::span<const double>(), std::vector{1.5, -2.0}, 'r');
  double value = 3.0;
  Tensor tensor;
  tensor.view1(&value, 1);
  ASSERT_EQ(no_inputs.compute_output(tensor), 0);
  EXPECT_EQ(tensor.size_x, 2);
  EXPECT_EQ(tensor.data1[0], 1.5);
  EXPECT_EQ(tensor.data1[1], 0.0);

  std::istringstream file(
      ModelBytes().Char('x').Int(2).Int(0).Group({}).Group({}).Group({}).Bytes());
  keras::LayerDense no_neurons;
  ASSERT_EQ(no_neurons.load_binary_weights(file, false), 0);
  ASSERT_EQ(no_neurons.compute_output(tensor), 0);
  EXPECT_EQ(tensor.size_x, 0);
  EXPECT_EQ(no_neurons.compute_output(tensor), -1);
}

// -0.0 and NaN pass a relu: neither is below 0.0.
TEST(Relu, KeepsNegativeZeroAndNaN) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  keras::LayerDense dense(std::vector{1.0, 1.0, 1.0}, std::vector{0.0, nan, -5.0}, 'r');
  double value = -0.0;
  Tensor tensor;
  tensor.view1(&value, 1);
  ASSERT_EQ(dense.compute_output(tensor), 0);
  EXPECT_EQ(tensor.data1[0], 0.0);
  EXPECT_FALSE(std::signbit(tensor.data1[0]));  // the sum starts at +0.0
  EXPECT_TRUE(std::isnan(tensor.data1[1]));
  EXPECT_EQ(tensor.data1[2], 0.0);
}

TEST(UndefinedActivation, EndsTheProcessAtTheFirstEvaluation) {
  for (const char code : {'\0', 'R', 's', 'x'}) {
    const EndProcessTrap trap;
    MessageCapture messages;
    std::istringstream file(ModelBytes()
                                .Char(code)
                                .Int(1)
                                .Int(1)
                                .Int(1)
                                .Int(1)
                                .Int(1)
                                .Int(1)
                                .Int(1)
                                .Char('s')
                                .Group({1.0f})
                                .Group({0.0f})
                                .Bytes());
    keras::LayerConv2D conv;
    ASSERT_EQ(conv.load_binary_weights(file, false), 0);
    Tensor tensor;
    tensor.allocate3(1, 1, 1);
    try {
      conv.compute_output(tensor);
      ADD_FAILURE() << "evaluated";
    } catch (const EndedProcess& ended) {
      EXPECT_EQ(ended.status, -1);
    }
    EXPECT_EQ(messages.StandardError(),
              std::string("Activation type:[") + code +
                  "] not defined!\nPlease add its implementation before use.\n");
  }
  const EndProcessTrap trap;
  MessageCapture messages;
  keras::LayerDense dense(std::vector{1.0}, std::vector{0.0}, 'y');
  double value = 1.0;
  Tensor tensor;
  tensor.view1(&value, 1);
  EXPECT_THROW(dense.compute_output(tensor), EndedProcess);
}

TEST(UndefinedActivationDeathTest, ExitStatus) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  keras::LayerDense dense(std::vector{1.0}, std::vector{0.0}, 'y');
  double value = 1.0;
  Tensor tensor;
  tensor.view1(&value, 1);
  EXPECT_EXIT(dense.compute_output(tensor), testing::ExitedWithCode(255),
              "Activation type:\\[y\\] not defined!");
}

TEST(Tensor, CopiesShareTheDataTheyHold) {
  Tensor copy;
  {
    Tensor tensor;
    tensor.allocate3(2, 2, 2);
    tensor.data3[1][1][1] = 4.0;
    EXPECT_TRUE(tensor.owns_data3);
    copy = tensor;
    tensor.release();
    EXPECT_FALSE(tensor.owns_data3);
    EXPECT_EQ(tensor.data3, nullptr);
    tensor.release();
  }
  EXPECT_EQ(copy.data3[1][1][1], 4.0);
}

TEST(Tensor, ReleaseLeavesViewsAlone) {
  keras::Cube cube;
  cube.resize(1, 1, 1);
  Tensor tensor;
  tensor.view3(cube.data(), 1, 1, 1);
  tensor.release();
  EXPECT_EQ(tensor.data3, cube.data());
}

TEST(Tensor, PrintsEveryShape) {
  MessageCapture messages;
  double row0[] = {1.5, -2};
  double row1[] = {3, 1e-7};
  double* rows[] = {row0, row1};
  Tensor tensor;
  tensor.dims = 2;
  tensor.data2 = rows;
  tensor.size_x = tensor.size_y = 2;
  tensor.print();
  EXPECT_EQ(messages.StandardOutput(),
            "2-Dimension Tensor: size_x=2, size_y=2\n[1.5 -2 ]\n[3 1e-07 ]\n");
}

}  // namespace
}  // namespace veral3::test
