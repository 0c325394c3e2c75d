#include "recognition/keras/KerasModel.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <thread>

#include "recognition/keras/LayerDense.h"
#include "recognition/keras/LayerDropout.h"
#include "recognition/keras/NetworkBuilder.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

using keras::KerasModel;
using keras::Tensor;
using keras::Workspace;

// A tensor of the given shape with the values in row-major order; 1-D data stays in `values`.
void SetTensor(Tensor& tensor, const std::vector<int>& shape, std::vector<double>& values) {
  if (shape.size() == 1) {
    tensor.view1(values.data(), shape[0]);
    return;
  }
  tensor.allocate3(shape[0], shape[1], shape[2]);
  std::size_t next = 0;
  for (int x = 0; x < shape[0]; ++x) {
    for (int y = 0; y < shape[1]; ++y) {
      for (int z = 0; z < shape[2]; ++z) tensor.data3[x][y][z] = values[next++];
    }
  }
}

std::vector<int> ShapeOf(const Tensor& tensor) {
  if (tensor.dims == 1) return {tensor.size_x};
  return {tensor.size_x, tensor.size_y, tensor.size_z};
}

std::vector<double> ValuesOf(const Tensor& tensor) {
  std::vector<double> values;
  if (tensor.dims == 1) values.assign(tensor.data1, tensor.data1 + tensor.size_x);
  if (tensor.dims == 3) {
    for (int x = 0; x < tensor.size_x; ++x) {
      for (int y = 0; y < tensor.size_y; ++y) {
        values.insert(values.end(), tensor.data3[x][y], tensor.data3[x][y] + tensor.size_z);
      }
    }
  }
  return values;
}

void ExpectClose(const std::vector<double>& got, const std::vector<double>& expected,
                 const nlohmann::json& of) {
  ASSERT_EQ(got.size(), expected.size());
  const double relative = of.at("rel_tol");
  const double absolute = of.value("abs_tol", 0.0);
  for (std::size_t i = 0; i < got.size(); ++i) {
    EXPECT_LE(std::abs(got[i] - expected[i]), relative * std::abs(expected[i]) + absolute) << i;
  }
}

TEST(KerasModel, ReferenceModels) {
  const nlohmann::json cases = LoadVectorJson("keras.json").at("models");
  ASSERT_EQ(cases.size(), 41u);
  for (const nlohmann::json& c : cases) {
    SCOPED_TRACE(c.at("name").get<std::string>());
    MessageCapture messages;
    KerasModel model;
    EXPECT_EQ(model.load_binary_weights(VectorPath(c.at("file")).string(), false),
              c.at("load_result").get<int>());
    EXPECT_EQ(messages.StandardError(), c.at("load_stderr").get<std::string>());
    EXPECT_EQ(messages.StandardOutput(), "");
    if (c.at("load_result") != 0) continue;
    EXPECT_EQ(model.version(), c.at("version").get<int>());
    std::string types;
    for (std::size_t i = 0; i < model.layer_count(); ++i) types += model.layer(i)->type();
    EXPECT_EQ(types, c.at("layer_types").get<std::string>());
    if (c.contains("first_layer_slots_5_6_7")) {
      EXPECT_EQ(
          (std::vector{model.get_input_rows(), model.get_input_cols(), model.get_output_units()}),
          c.at("first_layer_slots_5_6_7").get<std::vector<int>>());
    }

    // The layers' own buffers, a workspace of the caller, and the batch: the same every time.
    std::vector<double> input = c.at("input");
    messages.Clear();
    Tensor tensor;
    SetTensor(tensor, c.at("input_shape"), input);
    EXPECT_EQ(model.compute_output(tensor, false), 0);
    EXPECT_EQ(messages.StandardError(), c.at("eval_stderr").get<std::string>());
    EXPECT_EQ(tensor.dims, c.at("output_dims").get<int>());
    EXPECT_EQ(ShapeOf(tensor), c.at("output_shape").get<std::vector<int>>());
    const std::vector<double> output = ValuesOf(tensor);
    ExpectClose(output, c.at("output"), c);

    messages.Clear();
    Tensor again;
    SetTensor(again, c.at("input_shape"), input);
    Workspace workspace;
    EXPECT_EQ(model.evaluate(again, workspace), 0);
    EXPECT_EQ(messages.StandardError(), c.at("eval_stderr").get<std::string>());
    EXPECT_EQ(ShapeOf(again), ShapeOf(tensor));
    EXPECT_EQ(Bits(ValuesOf(again)), Bits(output));

    if (c.at("input_shape").size() == 1 && tensor.dims == 1) {
      messages.Clear();
      std::vector<double> batch(output.size());
      EXPECT_EQ(model.compute_batch(input.data(), 1, c.at("input_shape")[0], batch.data(),
                                    tensor.size_x, workspace),
                0);
      EXPECT_EQ(messages.StandardError(), c.at("eval_stderr").get<std::string>());
      EXPECT_EQ(Bits(batch), Bits(output));
    }
  }
}

// The file that docs/formats/model.md shows byte for byte.
TEST(KerasModel, DocumentedFile) {
  const unsigned char bytes[] = {0x03, 0, 0, 0,    0x01, 0,    0,    0, 0,    0, 0, 0,   0x44, 0x72,
                                 0x02, 0, 0, 0,    0x01, 0,    0,    0, 0x5B, 0, 0, 0,   0x3F, 0x5D,
                                 0x5B, 0, 0, 0x80, 0xBF, 0x5D, 0x5B, 0, 0,    0, 0, 0x5D};
  KerasModel model;
  ASSERT_EQ(LoadBytes(model, std::string(std::begin(bytes), std::end(bytes))), 0);
  EXPECT_EQ(model.version(), 3);
  std::vector<double> input = {8.0, 1.0};
  Tensor tensor;
  tensor.view1(input.data(), 2);
  model.compute_output(tensor, false);
  ASSERT_EQ(tensor.size_x, 1);
  EXPECT_EQ(tensor.data1[0], 3.0);
}

TEST(KerasModel, FreshModelHasNothing) {
  KerasModel model;
  EXPECT_EQ(model.version(), -1);
  EXPECT_EQ(model.get_input_rows(), 0);
  EXPECT_EQ(model.get_input_cols(), 0);
  EXPECT_EQ(model.get_output_units(), 0);
  double value = 3.0;
  Tensor tensor;
  tensor.view1(&value, 1);
  EXPECT_EQ(model.compute_output(tensor, true), 0);
  EXPECT_EQ(tensor.data1, &value);
}

TEST(KerasModel, FileThatDoesNotOpen) {
  const ScratchFolder folder;
  for (const std::string& path : {(folder.Path() / "none").string(), folder.Path().string(),
                                  std::string("/dev/zero"), std::string()}) {
    MessageCapture messages;
    KerasModel model;
    EXPECT_EQ(model.load_binary_weights(path, false), -1);
    EXPECT_EQ(messages.StandardError(), "*** Error: Cannot load Keras Model file <" + path + ">\n");
  }
}

TEST(KerasModel, EmptyFileIsAModelWithoutLayers) {
  const ScratchFolder folder;
  WriteFile(folder.Path() / "empty", "");
  KerasModel model;
  EXPECT_EQ(model.load_binary_weights((folder.Path() / "empty").string(), false), 0);
  EXPECT_EQ(model.version(), 0);
  EXPECT_EQ(model.layer_count(), 0u);
}

TEST(KerasModel, ImpossibleLayerCounts) {
  {
    MessageCapture messages;
    KerasModel model;
    EXPECT_EQ(LoadBytes(model, ModelBytes().Header(3, -2).Bytes()), -1);
    EXPECT_EQ(messages.StandardError(),
              "Error in KerasModel::load_binary_weights(), negative number of layers: -2\n");
  }
  {
    MessageCapture messages;
    KerasModel model;
    EXPECT_EQ(LoadBytes(model, ModelBytes().Header(3, 2147483647).Layer('O').Bytes()), -1);
    EXPECT_EQ(messages.StandardError(),
              "Error in KerasModel::load_binary_weights(), unknow layer.\n");
    EXPECT_EQ(model.layer_count(), 1u);
  }
}

TEST(KerasModel, LoadingAgainReplaces) {
  KerasModel model;
  ASSERT_EQ(LoadBytes(model, AllKindsModel()), 0);
  ASSERT_EQ(LoadBytes(model, ModelBytes().Header(9, 1).Layer('O').Bytes()), 0);
  EXPECT_EQ(model.version(), 9);
  EXPECT_EQ(model.layer_count(), 1u);
}

TEST(KerasModel, VerboseLoad) {
  const ScratchFolder folder;
  const std::string path = (folder.Path() / "model").string();
  WriteFile(path, ModelBytes()
                      .Header(3, 2)
                      .Int(4)
                      .Char('D')
                      .Char('r')
                      .Int(1)
                      .Int(2)
                      .Group({0.5f, -1.25f})
                      .Group({0, 1})
                      .Int(5)
                      .Char('O')
                      .Bytes());
  MessageCapture messages;
  KerasModel model;
  ASSERT_EQ(model.load_binary_weights(path, true), 0);
  EXPECT_EQ(messages.StandardOutput(),
            "Reading model from " + path +
                "\nLayers 2\nLayer 4 D\nLayer successfully loaded. Layer type=[D]\n"
                "Dense Layer weights:\n[0.5 -1.25 ]\nBias:\n0 1 ]\n=====Dense Layer weights=====\n"
                "Layer 5 O\nLayer successfully loaded. Layer type=[O]\n"
                "Dropout Layer has no weights:\n");
  EXPECT_EQ(messages.StandardError(), "");

  messages.Clear();
  double value = 2.0;
  Tensor tensor;
  tensor.view1(&value, 1);
  EXPECT_EQ(model.compute_output(tensor, true), 0);
  EXPECT_EQ(messages.StandardOutput(),
            "Processing layer [D]\nOutput:\n1-Dimension Tensor: size_x=2\n[1 0 ]\n"
            "Processing layer [O]\nOutput:\n1-Dimension Tensor: size_x=2\n[1 0 ]\n");
}

TEST(KerasModel, EmptySlotIsPassedOver) {
  std::vector<std::unique_ptr<keras::Layer>> layers(2);
  layers[1] = std::make_unique<keras::LayerDense>(std::vector{2.0}, std::vector{1.0}, 'r');
  KerasModel model(1, std::move(layers));
  EXPECT_EQ(model.get_input_rows(), 0);
  MessageCapture messages;
  double value = 3.0;
  Tensor tensor;
  tensor.view1(&value, 1);
  EXPECT_EQ(model.compute_output(tensor, false), 0);
  EXPECT_EQ(messages.StandardOutput(), "Skipping Dropout layer\n");
  EXPECT_EQ(tensor.data1[0], 7.0);

  // The file has a dropout layer in its place.
  std::ostringstream file;
  ASSERT_EQ(model.save_binary_weights(file), 0);
  KerasModel read;
  ASSERT_EQ(LoadBytes(read, file.str()), 0);
  EXPECT_EQ(read.layer(0)->type(), 'O');
}

TEST(KerasModel, SavedFileIsTheFileRead) {
  const ScratchFolder folder;
  const std::string path = (folder.Path() / "model").string();
  for (const char* name : {"keras/full_stack.bin", "keras/dense_softmax.bin",
                           "keras/conv_tanh_valid.bin", "keras/zero_layers.bin"}) {
    SCOPED_TRACE(name);
    KerasModel model;
    ASSERT_EQ(model.load_binary_weights(VectorPath(name).string(), false), 0);
    ASSERT_EQ(model.save_binary_weights(path), 0);
    KerasModel again;
    ASSERT_EQ(again.load_binary_weights(path, false), 0);
    std::ostringstream first;
    std::ostringstream second;
    ASSERT_EQ(model.save_binary_weights(first), 0);
    ASSERT_EQ(again.save_binary_weights(second), 0);
    EXPECT_EQ(first.str(), second.str());
    EXPECT_EQ(first.str(), ReadFile(path));
  }
  std::string all_kinds = AllKindsModel();
  KerasModel model;
  ASSERT_EQ(LoadBytes(model, all_kinds), 0);
  std::ostringstream file;
  ASSERT_EQ(model.save_binary_weights(file), 0);
  EXPECT_EQ(file.str().size(), all_kinds.size());
}

TEST(KerasModel, SavingWhereNothingCanBeWritten) {
  const ScratchFolder folder;
  const std::string path = (folder.Path() / "none" / "model").string();
  MessageCapture messages;
  EXPECT_EQ(KerasModel().save_binary_weights(path), -1);
  EXPECT_EQ(messages.StandardError(), "*** Error: Cannot save Keras Model file <" + path + ">\n");
}

TEST(KerasModel, LayerThatRefusesIsReportedAndTheNextGoesOn) {
  std::mt19937 random(1);
  std::vector<std::unique_ptr<keras::Layer>> layers;
  layers.push_back(std::make_unique<keras::LayerDense>(std::vector(8, 1.0), std::vector(2, 0.0),
                                                       'r'));  // needs 4 values
  layers.push_back(
      std::make_unique<keras::LayerDense>(std::vector{1.0, 2.0, 3.0}, std::vector{0.5}, 'r'));
  KerasModel model(1, std::move(layers));
  MessageCapture messages;
  std::vector<double> input = {1, 2, 3};
  Tensor tensor;
  tensor.view1(input.data(), 3);
  EXPECT_EQ(model.compute_output(tensor, false), 0);
  EXPECT_EQ(messages.StandardError(),
            "ERROR in KerasModel::compute_output() - Cannot process layer. Layer type=[D]\n");
  ASSERT_EQ(tensor.size_x, 1);
  EXPECT_EQ(tensor.data1[0], 14.5);

  messages.Clear();
  std::vector<double> two = {1, 2, 3, 4, 5, 6};
  std::vector<double> outputs(2);
  Workspace workspace;
  EXPECT_EQ(model.compute_batch(two.data(), 2, 3, outputs.data(), 1, workspace), 0);
  EXPECT_THAT(outputs, testing::ElementsAre(14.5, 32.5));
  EXPECT_EQ(messages.Entries().size(), 2u);
}

TEST(KerasModel, BatchResultOfAnotherShape) {
  KerasModel model;  // no layers: the input comes back
  const std::vector<double> inputs = {1, 2, 3, 4};
  std::vector<double> outputs(6, 9.0);
  Workspace workspace;
  EXPECT_EQ(model.compute_batch(inputs.data(), 2, 2, outputs.data(), 3, workspace), -1);
  EXPECT_THAT(outputs, testing::ElementsAre(1, 2, 0, 3, 4, 0));
}

// A layer that is given nothing is passed over, by whatever way its model is evaluated.
TEST(KerasModel, BatchesOfNothing) {
  KerasModel model;
  ASSERT_EQ(
      LoadBytes(
          model,
          ModelBytes().Header(1, 1).Layer('D').Char('x').Int(0).Int(2).Group({1.0F, 2.0F}).Bytes()),
      0);
  const MessageCapture messages;
  std::vector<const keras::DenseKernel*> kernels = keras::RunnableDenseKernels();
  kernels.push_back(nullptr);  // one at a time
  for (const keras::DenseKernel* const kernel : kernels) {
    Workspace workspace;
    workspace.kernel = kernel;
    std::vector<double> outputs(4, 9.0);
    EXPECT_EQ(model.compute_batch(outputs.data(), 2, 0, outputs.data(), 2, workspace), -1);
    EXPECT_THAT(outputs, testing::Each(0.0));
  }
}

TEST(KerasModel, OneWorkspaceServesSeveralModels) {
  std::mt19937 random(2);
  const KerasModel small = RandomDenseModel({3, 5}, "r", random);
  const KerasModel large = RandomDenseModel({3, 40, 20, 7}, "rtx", random);
  const std::vector<double> input = RandomValues(3, random);
  Workspace shared;
  std::vector<double> first(7);
  std::vector<double> second(7);
  large.compute_batch(input.data(), 1, 3, first.data(), 7, shared);
  std::vector<double> other(5);
  small.compute_batch(input.data(), 1, 3, other.data(), 5, shared);
  large.compute_batch(input.data(), 1, 3, second.data(), 7, shared);
  EXPECT_EQ(Bits(first), Bits(second));
}

TEST(KerasModel, ThreadsEvaluateOneModel) {
  std::mt19937 random(3);
  const KerasModel model = RandomDenseModel({60, 50, 30}, "rx", random);
  const std::vector<double> inputs = RandomValues(60 * 100, random);
  const auto evaluate = [&] {
    std::vector<double> outputs(30 * 100);
    Workspace workspace;
    model.compute_batch(inputs.data(), 100, 60, outputs.data(), 30, workspace);
    return outputs;
  };
  const std::vector<double> expected = evaluate();
  std::vector<std::vector<double>> results(4);
  std::vector<std::thread> threads;
  for (std::vector<double>& result : results) {
    threads.emplace_back([&] { result = evaluate(); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::vector<double>& result : results) EXPECT_EQ(Bits(result), Bits(expected));
}

}  // namespace
}  // namespace veral3::test
