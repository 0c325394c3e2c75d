#include <gmock/gmock.h>

#include <cmath>
#include <sstream>

#include "recognition/keras/LayerConv2D.h"
#include "recognition/keras/LayerDense.h"
#include "recognition/keras/LayerDropout.h"
#include "recognition/keras/LayerFlatten.h"
#include "recognition/keras/LayerMaxPooling.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

using keras::Layer;
using keras::Tensor;

std::unique_ptr<Layer> MakeLayer(const std::string& type) {
  if (type == "C") return std::make_unique<keras::LayerConv2D>();
  if (type == "M") return std::make_unique<keras::LayerMaxPooling>();
  if (type == "D") return std::make_unique<keras::LayerDense>();
  if (type == "F") return std::make_unique<keras::LayerFlatten>();
  return std::make_unique<keras::LayerDropout>();
}

std::string Hex(const std::string& bytes) {
  std::string hex;
  for (const char byte : bytes) {
    hex += "0123456789abcdef"[static_cast<unsigned char>(byte) >> 4];
    hex += "0123456789abcdef"[static_cast<unsigned char>(byte) & 15];
  }
  return hex;
}

int LoadText(Layer& layer, const std::string& text, bool verbose = false) {
  std::istringstream stream(text);
  return layer.load_weights(stream, verbose);
}

TEST(TextForm, ReferenceLayers) {
  for (const nlohmann::json& c : LoadVectorJson("keras.json").at("text_layers")) {
    SCOPED_TRACE(c.at("name").get<std::string>());
    MessageCapture messages;
    const std::unique_ptr<Layer> layer = MakeLayer(c.at("type"));
    ASSERT_EQ(LoadText(*layer, c.at("text")), 0);
    EXPECT_EQ(messages.All(), "");
    std::ostringstream binary;
    ASSERT_EQ(layer->save_binary_weights(binary), 0);
    EXPECT_EQ(Hex(binary.str()), c.at("binary_body_hex").get<std::string>());
    layer->print_weights();
    EXPECT_EQ(messages.StandardOutput(), c.at("print_weights").get<std::string>());

    std::vector<double> input = c.at("input");
    const std::vector<int> shape = c.at("input_shape");
    Tensor tensor;
    if (shape.size() == 1) {
      tensor.view1(input.data(), shape[0]);
    } else {
      tensor.allocate3(shape[0], shape[1], shape[2]);
      std::copy(input.begin(), input.end(), tensor.data3[0][0]);  // one block
    }
    messages.Clear();
    tensor.print();
    EXPECT_EQ(messages.StandardOutput(), c.at("print_input_tensor").get<std::string>());
    ASSERT_EQ(layer->compute_output(tensor), 0);
    const double* got = tensor.dims == 1 ? tensor.data1 : tensor.data3[0][0];
    const std::vector<double> expected = c.at("output");
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(got[i], expected[i], 1e-13 * std::abs(expected[i])) << i;
    }
  }
}

TEST(TextForm, UnknownWordsNameTheDenseLayer) {
  MessageCapture messages;
  keras::LayerDense dense;
  EXPECT_EQ(LoadText(dense, "rectifier 1 1 [ 1 ] [ 1 ]"), -1);
  EXPECT_EQ(messages.StandardError(),
            "Error in LayerDense::load_weights(). Unknow activation mode [rectifier]\n");
  EXPECT_EQ(dense.get_input_cols(), 0);  // nothing after the word was read

  messages.Clear();
  keras::LayerConv2D conv;
  EXPECT_EQ(LoadText(conv, "softmax 1 1 1 1 1 1 1 same [ 1 ] [ 1 ]"), -1);
  EXPECT_EQ(messages.StandardError(),
            "Error in LayerDense::load_weights(). Unknow activation mode [softmax]\n");

  messages.Clear();
  EXPECT_EQ(LoadText(conv, "relu 4 5 1 2 3 1 6 full [ 1 ] [ 1 ]"), -1);
  EXPECT_EQ(messages.StandardError(),
            "Error in LayerDense::load_weights(). Unknow border mode [full]\n");
  EXPECT_EQ(conv.get_input_rows(), 2);  // the sizes before it were
  EXPECT_EQ(conv.get_input_cols(), 3);
  EXPECT_EQ(conv.get_output_units(), 6);
  Tensor tensor;
  tensor.allocate3(4, 5, 1);
  EXPECT_EQ(conv.compute_output(tensor), -1);
}

TEST(TextForm, WrongBracketsOnlyPrint) {
  MessageCapture messages;
  keras::LayerDense dense;
  EXPECT_EQ(LoadText(dense, "relu 1 2 ( 3 4 ) { 5 6 }"), 0);
  EXPECT_EQ(messages.StandardError(),
            "ERROR in LayerDense::load_weights(). When loading weights, expect '[', but got:(\n"
            "ERROR in LayerDense::load_weights() - When loading weights, expect  ']', but got:)\n"
            "ERROR in LayerDense::load_weights(). When loading bias, expect '[', but got:{\n"
            "ERROR in LayerDense::load_weights() - When loading bias, expect ']', but got:}\n");
  double value = 10.0;
  Tensor tensor;
  tensor.view1(&value, 1);
  ASSERT_EQ(dense.compute_output(tensor), 0);
  EXPECT_EQ(tensor.data1[0], 35.0);
  EXPECT_EQ(tensor.data1[1], 46.0);

  messages.Clear();
  keras::LayerConv2D conv;
  EXPECT_EQ(LoadText(conv, "relu 1 1 1 1 1 1 1 valid <3> <4>"), 0);
  EXPECT_EQ(messages.StandardError(),
            "ERROR in LayerConv2D::load_weights(). Expect '[', but got:<\n"
            "ERROR in LayerConv2D::load_weights(). Expect ']', but got:>\n"
            "ERROR in LayerConv2D::load_weights() - Reading bias. Expect '[', but got:<\n"
            "ERROR in LayerConv2D::load_weights() - Reading bias. Expect ']', but got:>\n");
}

TEST(TextForm, VerboseConvolution) {
  MessageCapture messages;
  keras::LayerConv2D conv;
  EXPECT_EQ(LoadText(conv, "tanh 2 2 1 1 1 1 2 valid [ 1 2 ] [ 3 4 ]", true), 0);
  EXPECT_EQ(messages.StandardOutput(),
            "LayerConv2D::load_weights() m_rows=1; m_cols=1; m_depth= 1; m_kernels_cnt=2; "
            "m_border_mode=v\n");
}

TEST(TextForm, SizesThatMultiplyTooFarAreRefused) {
  for (const char* text : {"relu 20000 20000 [ 1 ]", "relu 2147483647 0 [ ]",
                           "relu 0 2147483647 [ ]", "relu -1 4 [ 1 ]", "relu 2 -4 [ 1 ]"}) {
    SCOPED_TRACE(text);
    MessageCapture messages;
    keras::LayerDense dense;
    EXPECT_EQ(LoadText(dense, text), -1);
    EXPECT_THAT(messages.StandardError(),
                testing::StartsWith("ERROR in LayerDense::load_weights(). Impossible sizes: "));
    double value = 0.0;
    Tensor tensor;
    tensor.view1(&value, 1);
    EXPECT_EQ(dense.compute_output(tensor), -1);
  }
  for (const char* sizes :
       {"1 1 1 1000 1000 1000 1", "1 1 1 1 1 1 2147483647", "60000 60000 1 1 1 1 1",
        "1 1 1 -1 1 1 1", "1 -1 1 1 1 1 1", "20000 20000 0 1 1 1 1"}) {
    SCOPED_TRACE(sizes);
    MessageCapture messages;
    keras::LayerConv2D conv;
    EXPECT_EQ(LoadText(conv, "relu " + std::string(sizes) + " same [ 1 ]"), -1);
    EXPECT_THAT(messages.StandardError(),
                testing::StartsWith("ERROR in LayerConv2D::load_weights(). Impossible sizes: "));
  }
  MessageCapture messages;
  keras::LayerFlatten flatten;
  EXPECT_EQ(LoadText(flatten, "30000 30000 1"), -1);
  EXPECT_EQ(LoadText(flatten, "3 3 -1"), -1);
  keras::LayerMaxPooling pooling;
  EXPECT_EQ(LoadText(pooling, "30000 30000 1 2 2"), -1);
  EXPECT_EQ(LoadText(pooling, "3 3 1 0 2"), -1);
  EXPECT_EQ(LoadText(pooling, "3 3 1 2 -2"), -1);
  EXPECT_EQ(messages.Entries().size(), 5u);
}

TEST(TextForm, TextThatEndsTooEarly) {
  for (const char* text : {"relu 16384 16384 [ 1 2", "relu 200000000 0", "relu 2 1 [ 1 ] [ x ]",
                           "relu 1 2 [ 1 2 ] [ 3"}) {
    SCOPED_TRACE(text);
    MessageCapture messages;
    keras::LayerDense dense;
    EXPECT_EQ(LoadText(dense, text), -1);
    EXPECT_THAT(
        messages.StandardError(),
        testing::EndsWith("ERROR in LayerDense::load_weights(). The numbers end too early.\n"));
    std::vector<double> input(20000);
    Tensor tensor;
    tensor.view1(input.data(), 20000);
    EXPECT_EQ(dense.compute_output(tensor), -1);
    std::ostringstream file;
    EXPECT_EQ(dense.save_binary_weights(file), -1);
  }
  MessageCapture messages;
  keras::LayerConv2D conv;
  EXPECT_EQ(LoadText(conv, "relu 9 9 1 3 3 1 4 same [ 1 2 3 4 ] [ 1"), -1);
  EXPECT_EQ(messages.StandardError(),
            "ERROR in LayerConv2D::load_weights(). The numbers end too early.\n");
  EXPECT_EQ(LoadText(conv, ""), -1);
}

}  // namespace
}  // namespace veral3::test
