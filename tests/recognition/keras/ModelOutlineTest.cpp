#include "recognition/keras/ModelOutline.h"

#include <gmock/gmock.h>

#include <sstream>

#include "recognition/keras/NetworkBuilder.h"
#include "support/MessageCapture.h"

namespace veral3::test {
namespace {

using keras::KerasModel;
using keras::LayerOutline;
using keras::ModelFault;
using keras::ModelOutline;

ModelFault Outline(const std::string& bytes, ModelOutline& outline) {
  std::istringstream file(bytes);
  return ReadModelOutline(file, outline);
}

TEST(ModelOutline, EveryKindOfLayer) {
  ModelOutline outline;
  ASSERT_FALSE(Outline(AllKindsModel(), outline));
  EXPECT_EQ(outline.version, 7);
  ASSERT_EQ(outline.layers.size(), 6u);
  const struct {
    char kind, activation;
    int rows, cols, channels, outputs;
    std::uint64_t numbers;
  } expected[] = {{'C', 'r', 5, 4, 2, 2, 26}, {'M', 0, 5, 4, 2, 0, 0},
                  {'F', 0, 2, 2, 2, 0, 0},    {'O', 0, 0, 0, 0, 0, 0},
                  {'D', 't', 1, 8, 1, 2, 18}, {'D', 'x', 1, 2, 1, 3, 9}};
  for (std::size_t i = 0; i < 6; ++i) {
    SCOPED_TRACE(i);
    const LayerOutline& layer = outline.layers[i];
    EXPECT_EQ(layer.kind, expected[i].kind);
    EXPECT_EQ(layer.activation, expected[i].activation);
    EXPECT_EQ(layer.rows, expected[i].rows);
    EXPECT_EQ(layer.cols, expected[i].cols);
    EXPECT_EQ(layer.channels, expected[i].channels);
    EXPECT_EQ(layer.outputs, expected[i].outputs);
    EXPECT_EQ(layer.numbers, expected[i].numbers);
  }
}

TEST(ModelOutline, BoundsOfADenseLayer) {
  ModelOutline outline;
  ASSERT_FALSE(Outline(ModelBytes()
                           .Header(1, 1)
                           .Layer('D')
                           .Char('r')
                           .Int(2)
                           .Int(3)
                           .Group({1.0f, -4.0f, 2.0f})
                           .Group({-8.0f, 3.0f, 0.5f})
                           .Group({0.25f, -16.0f, 1.0f})
                           .Bytes(),
                       outline));
  EXPECT_EQ(outline.layers[0].gain, 9.0);  // of neuron 0: 1 + 8
  EXPECT_EQ(outline.layers[0].offset, 16.0);
}

// What has no fault is what the engine loads, and has the same layers.
void ExpectAgreement(const std::string& bytes, int& sound) {
  ModelOutline outline;
  if (Outline(bytes, outline)) return;
  ++sound;
  const MessageCapture messages;
  KerasModel model;
  ASSERT_EQ(LoadBytes(model, bytes), 0);
  ASSERT_EQ(model.layer_count(), outline.layers.size());
  EXPECT_EQ(model.version(), outline.version);
  for (std::size_t i = 0; i < outline.layers.size(); ++i) {
    EXPECT_EQ(model.layer(i)->type(), outline.layers[i].kind);
    EXPECT_EQ(model.layer(i)->get_output_units(), outline.layers[i].outputs);
  }
}

TEST(ModelOutline, AgreesWithTheLoaderOnDamagedFiles) {
  const std::string whole = AllKindsModel();
  int sound = 0;
  for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
    SCOPED_TRACE(bit);
    std::string damaged = whole;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
    ExpectAgreement(damaged, sound);
  }
  EXPECT_GT(sound, 1000);
  for (std::size_t place = 0; place + 4 <= whole.size(); ++place) {
    for (const std::int32_t value : {-1, 0, 1, 0x7fffffff, -0x7fffffff - 1, 0x00010000}) {
      SCOPED_TRACE(std::to_string(place) + " " + std::to_string(value));
      std::string damaged = whole;
      damaged.replace(place, 4, ModelBytes().Int(value).Bytes());
      ExpectAgreement(damaged, sound);
    }
  }
  int cut = 0;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    ExpectAgreement(whole.substr(0, size), cut);
  }
  EXPECT_EQ(cut, 0);
}

// A fault of each kind of layer that no classifier takes, so that only here they are told apart.
TEST(ModelOutline, FaultsOfTheOtherKinds) {
  const auto conv = [](char activation, int rows, int kernel_rows, int kernels) {
    ModelBytes bytes;
    bytes.Header(1, 1).Layer('C').Char(activation).Int(rows).Int(1).Int(1).Int(kernel_rows).Int(1);
    return bytes.Int(1).Int(kernels).Char('s').Bytes() + std::string(1000, '\0');
  };
  const auto pooling = [](int rows, int pool_rows, int pool_cols) {
    return ModelBytes()
        .Header(1, 1)
        .Layer('M')
        .Int(rows)
        .Int(4)
        .Int(1)
        .Int(pool_rows)
        .Int(pool_cols)
        .Bytes();
  };
  const auto flatten = [](int rows) {
    return ModelBytes().Header(1, 1).Layer('F').Int(rows).Int(1).Int(1).Bytes();
  };
  const struct {
    std::string bytes;
    const char* fault;
  } cases[] = {
      {conv('x', 1, 1, 1), "layer 1 has the unknown activation code 'x' (0x78)"},
      {conv('r', -1, 1, 1), "layer 1 has a negative size"},
      {conv('r', 1, -1, 1), "layer 1 has a negative size"},
      {conv('r', 1, 0, 1), "layer 1 has no kernels"},
      {conv('r', 1, 1, 0), "layer 1 has no kernels"},
      {conv('r', 1, 70000, 1),
       "layer 1 has kernels of more than 65536 weights, or more than so many kernels"},
      {conv('r', 0x7fffffff, 1, 1), "layer 1 has an input of more than 67108864 values"},
      {conv('r', 1, 1, 300), "it ends in the middle of layer 1"},
      {pooling(4, 2, 2), ""},
      {pooling(4, 0, 2), "layer 1 has pools without values"},
      {pooling(4, 2, -1), "layer 1 has pools without values"},
      {pooling(-4, 2, 2), "layer 1 has a negative size"},
      {pooling(4, 2, 2).substr(0, 32), "it ends in the middle of layer 1"},
      {flatten(3), ""},
      {flatten(-3), "layer 1 has a negative size"},
      {flatten(3).substr(0, 24), "it ends in the middle of layer 1"},
  };
  for (const auto& [bytes, fault] : cases) {
    ModelOutline outline;
    EXPECT_EQ(Outline(bytes, outline).fault, fault);
  }
}

}  // namespace
}  // namespace veral3::test
