// Damaged model files: whatever the bytes, loading answers, allocates in proportion to the file,
// and what loads can be evaluated.

#include <gmock/gmock.h>
#include <malloc.h>

#include <random>
#include <sstream>

#include "recognition/keras/KerasModel.h"
#include "recognition/keras/NetworkBuilder.h"
#include "support/MessageCapture.h"

namespace veral3::test {
namespace {

using keras::KerasModel;
using keras::Tensor;
using keras::Workspace;

// Evaluates on 3-D and 1-D inputs; a damaged activation code may end the process.
void Evaluate(const KerasModel& model) {
  try {
    Workspace workspace;
    Tensor cube;
    cube.allocate3(6, 6, 3);
    model.evaluate(cube, workspace);
    std::vector<double> values(40, 0.25);
    Tensor vector;
    vector.view1(values.data(), 40);
    model.evaluate(vector, workspace);
    std::vector<double> outputs(6);
    model.compute_batch(values.data(), 2, 20, outputs.data(), 3, workspace);
  } catch (const EndedProcess& ended) {
    EXPECT_EQ(ended.status, -1);
  }
}

class CorruptModel : public testing::Test {
 protected:
  MessageCapture m_messages;
  EndProcessTrap m_trap;
};

TEST_F(CorruptModel, EveryTruncationFails) {
  const std::string whole = AllKindsModel();
  for (std::size_t length = 8; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    m_messages.Clear();
    KerasModel model;
    EXPECT_EQ(LoadBytes(model, whole.substr(0, length)), -1);
    EXPECT_NE(m_messages.StandardError(), "");
    Evaluate(model);
  }
  for (std::size_t length = 0; length < 8; ++length) {  // the count itself is cut
    KerasModel model;
    const int result = LoadBytes(model, whole.substr(0, length));
    EXPECT_EQ(result, length <= 4 ? 0 : -1);
    Evaluate(model);
  }
}

TEST_F(CorruptModel, EveryBitFlip) {
  const std::string whole = AllKindsModel();
  for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
    SCOPED_TRACE(bit);
    std::string damaged = whole;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
    KerasModel model;
    LoadBytes(model, damaged);
    Evaluate(model);
  }
}

TEST_F(CorruptModel, EveryWordExtreme) {
  const std::string whole = AllKindsModel();
  for (std::size_t place = 0; place + 4 <= whole.size(); ++place) {
    for (const std::int32_t value : {-1, 0, 1, 0x7fffffff, -0x7fffffff - 1, 0x00010000}) {
      std::string damaged = whole;
      damaged.replace(place, 4, ModelBytes().Int(value).Bytes());
      KerasModel model;
      LoadBytes(model, damaged);
      Evaluate(model);
    }
  }
}

TEST_F(CorruptModel, RandomBytesAfterAHeader) {
  std::mt19937 random(5);
  const std::string codes = "CMDFO";
  for (int round = 0; round < 2000; ++round) {
    std::string bytes = ModelBytes().Header(1, 3).Bytes();
    for (int i = 0; i < 120; ++i) bytes += static_cast<char>(random() % 7 == 0 ? random() : 0);
    bytes[12] = codes[random() % codes.size()];
    KerasModel model;
    LoadBytes(model, bytes);
    Evaluate(model);
  }
}

struct Refusal {
  const char* what;
  std::string bytes;
  const char* message;
};

TEST_F(CorruptModel, ImpossibleSizes) {
  const auto dense = [](int inputs, int neurons) {
    return ModelBytes().Header(1, 1).Layer('D').Char('r').Int(inputs).Int(neurons).Bytes() +
           std::string(100, '\0');
  };
  const auto conv = [](int rows, int cols, int depth, int kernels) {
    return ModelBytes()
               .Header(1, 1)
               .Layer('C')
               .Char('r')
               .Int(1)
               .Int(1)
               .Int(1)
               .Int(rows)
               .Int(cols)
               .Int(depth)
               .Int(kernels)
               .Char('s')
               .Bytes() +
           std::string(100, '\0');
  };
  const auto pooling = [](int rows, int cols, int channels, int pool_rows, int pool_cols) {
    return ModelBytes()
        .Header(1, 1)
        .Layer('M')
        .Int(rows)
        .Int(cols)
        .Int(channels)
        .Int(pool_rows)
        .Int(pool_cols)
        .Bytes();
  };
  const char* const dense_text = "ERROR in LayerDense::load_binary_weights(). Impossible sizes: ";
  const char* const conv_text = "ERROR in LayerConv2D::load_binary_weights(). Impossible sizes: ";
  const char* const pooling_text =
      "ERROR in LayerMaxPooling::load_binary_weights(). Impossible sizes: ";
  const Refusal refusals[] = {
      {"inputs negative", dense(-1, 1), dense_text},
      {"neurons negative", dense(1, -1), dense_text},
      {"both negative", dense(-3, -3), dense_text},
      {"weights too many", dense(5, 5), dense_text},
      {"weights far too many", dense(0x7fffffff, 0x7fffffff), dense_text},
      {"bias too long", dense(0, 26), dense_text},
      {"rows negative", conv(-1, 1, 1, 1), conv_text},
      {"kernels too many", conv(1, 1, 1, 0x7fffffff), conv_text},
      {"product passes 64 bits", conv(0x7fffffff, 0x7fffffff, 0x7fffffff, 0x7fffffff), conv_text},
      {"pool rows 0", pooling(4, 4, 1, 0, 1), pooling_text},
      {"pool columns 0", pooling(4, 4, 1, 1, 0), pooling_text},
      {"pool negative", pooling(4, 4, 1, -2, 2), pooling_text},
      {"plane negative", pooling(4, -4, 1, 2, 2), pooling_text},
      {"flatten negative", ModelBytes().Header(1, 1).Layer('F').Int(1).Int(-1).Int(1).Bytes(),
       "ERROR in LayerFlatten::load_binary_weights(). Impossible sizes: "},
  };
  for (const Refusal& refusal : refusals) {
    SCOPED_TRACE(refusal.what);
    m_messages.Clear();
    KerasModel model;
    EXPECT_EQ(LoadBytes(model, refusal.bytes), -1);
    EXPECT_THAT(m_messages.StandardError(), testing::StartsWith(refusal.message));
    EXPECT_EQ(model.layer_count(), 0u);
  }
}

TEST_F(CorruptModel, HugePlanesCostNothingUntilThereIsSuchAnInput) {
  const std::size_t before = mallinfo2().uordblks;
  KerasModel model;
  ASSERT_EQ(LoadBytes(model, ModelBytes()
                                 .Header(1, 3)
                                 .Layer('C')
                                 .Char('r')
                                 .Int(0x7fffffff)
                                 .Int(0x7fffffff)
                                 .Int(0x7fffffff)
                                 .Int(1)
                                 .Int(1)
                                 .Int(1)
                                 .Int(1)
                                 .Char('s')
                                 .Group({1.0f})
                                 .Group({0.0f})
                                 .Layer('M')
                                 .Int(0x7fffffff)
                                 .Int(0x7fffffff)
                                 .Int(0x7fffffff)
                                 .Int(1)
                                 .Int(1)
                                 .Layer('F')
                                 .Int(0x7fffffff)
                                 .Int(0x7fffffff)
                                 .Int(0x7fffffff)
                                 .Bytes()),
            0);
  Evaluate(model);
  EXPECT_LT(mallinfo2().uordblks, before + (1u << 20));
}

TEST_F(CorruptModel, ZeroSizesLoad) {
  KerasModel model;
  EXPECT_EQ(LoadBytes(model, ModelBytes()
                                 .Header(1, 4)
                                 .Layer('C')
                                 .Char('r')
                                 .Int(0)
                                 .Int(0)
                                 .Int(0)
                                 .Int(0x7fffffff)
                                 .Int(0)
                                 .Int(0)
                                 .Int(0)
                                 .Char('s')
                                 .Group({})
                                 .Layer('M')
                                 .Int(0)
                                 .Int(0)
                                 .Int(0)
                                 .Int(1)
                                 .Int(1)
                                 .Layer('F')
                                 .Int(0)
                                 .Int(0)
                                 .Int(0)
                                 .Layer('D')
                                 .Char('x')
                                 .Int(0)
                                 .Int(0)
                                 .Group({})
                                 .Bytes()),
            0);
  Evaluate(model);
}

}  // namespace
}  // namespace veral3::test
