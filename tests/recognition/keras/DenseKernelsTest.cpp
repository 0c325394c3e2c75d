// Every vector kernel against the plain loop, to the last bit. A machine runs the kernels of its
// own instruction sets only; what it can't run is named in the output.

#include "recognition/keras/DenseKernels.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <iostream>
#include <limits>

#include "recognition/keras/Activation.h"
#include "recognition/keras/KerasModel.h"
#include "recognition/keras/LayerDense.h"
#include "recognition/keras/LayerDropout.h"
#include "recognition/keras/NetworkBuilder.h"
#include "support/MessageCapture.h"

namespace veral3::test {
namespace {

using keras::AlignedVector;
using keras::DenseKernel;
using keras::PackedDense;
using keras::Rows;
using testing::Contains;
using testing::StrEq;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// One dense layer and inputs for it.
struct Case {
  std::size_t inputs;
  std::size_t outputs;
  std::size_t rows;
  std::vector<double> weights;
  std::vector<double> bias;
  std::vector<double> in;
};

Case RandomCase(std::size_t inputs, std::size_t outputs, std::size_t rows, double zeros,
                std::mt19937& random) {
  Case c{inputs,
         outputs,
         rows,
         RandomValues(inputs * outputs, random),
         RandomValues(outputs, random),
         RandomValues(rows * inputs, random)};
  std::uniform_real_distribution<double> uniform;
  for (double& value : c.in) {
    if (uniform(random) < zeros) value = uniform(random) < 0.5 ? 0.0 : -0.0;
  }
  return c;
}

void ExpectReferenceBits(const DenseKernel& kernel, const Case& c) {
  const PackedDense packed = keras::PackDense(c.inputs, c.outputs, c.weights, c.bias);
  const std::size_t in_stride = c.inputs + 3;
  const std::size_t out_stride = (packed.panels + 1) * keras::kPanel;
  AlignedVector<double> in(c.rows * in_stride, kNaN);  // what lies between rows must not matter
  AlignedVector<double> out(c.rows * out_stride, -1.0);
  for (std::size_t n = 0; n < c.rows; ++n) {
    std::copy_n(c.in.data() + n * c.inputs, c.inputs, in.data() + n * in_stride);
  }
  keras::DenseScratch scratch;
  for (const bool relu : {false, true}) {
    const Rows to{out.data(), out_stride, c.rows};
    kernel.forward(packed, {in.data(), in_stride, c.rows}, to, relu, scratch);
    for (std::size_t n = 0; n < c.rows; ++n) {
      std::vector<double> expected(c.outputs);
      keras::DenseReference(c.weights, c.bias, c.in.data() + n * c.inputs, expected.data());
      if (relu) keras::ApplyActivation(keras::kRelu, expected);
      ASSERT_EQ(Bits({to[n], to[n] + c.outputs}), Bits(expected))
          << "row " << n << (relu ? " with relu" : "");
      ASSERT_EQ(to[n][out_stride - 1], -1.0) << "written beyond the panels";
    }
  }
}

class DenseKernels : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : keras::BuiltDenseKernels()) {
      const auto& runnable = keras::RunnableDenseKernels();
      const bool runs = std::any_of(runnable.begin(), runnable.end(), [&](const DenseKernel* k) {
        return std::string(k->name) == name;
      });
      RecordProperty(name, runs ? "tested" : "not run: this machine lacks the instructions");
      if (!runs) std::cout << "NOT TESTED here, instructions lacking: " << name << " kernel\n";
    }
  }

  template <typename Check>
  void ForEachKernel(Check check) {
    for (const DenseKernel* kernel : keras::RunnableDenseKernels()) {
      SCOPED_TRACE(kernel->name);
      check(*kernel);
    }
  }

  std::mt19937 m_random{7};
};

TEST_F(DenseKernels, BaselineAlwaysRuns) {
  ASSERT_FALSE(keras::RunnableDenseKernels().empty());
#if defined(__x86_64__)
  for (const char* name : {"AVX-512", "AVX2", "SSE4"}) {
    EXPECT_THAT(keras::BuiltDenseKernels(), Contains(StrEq(name)));
  }
#endif
  EXPECT_STREQ(keras::RunnableDenseKernels().back()->name, keras::BuiltDenseKernels().back());
}

TEST_F(DenseKernels, EverySmallShape) {
  for (std::size_t inputs = 0; inputs <= 9; ++inputs) {
    for (std::size_t outputs = 1; outputs <= 35; outputs += 2) {
      for (std::size_t rows = 0; rows <= 9; ++rows) {
        const Case c = RandomCase(inputs, outputs, rows, 0.3, m_random);
        ForEachKernel([&](const DenseKernel& kernel) { ExpectReferenceBits(kernel, c); });
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST_F(DenseKernels, NetworkShapes) {
  const std::tuple<std::size_t, std::size_t, std::size_t> shapes[] = {
      {195, 256, 13}, {256, 256, 7}, {256, 111, 64}, {624, 384, 5}, {128, 37, 6},
      {63, 17, 3},    {64, 16, 4},   {65, 48, 5},    {127, 15, 2},  {129, 33, 1}};
  for (const auto& [inputs, outputs, rows] : shapes) {
    for (const double zeros : {0.0, 0.4, 0.7, 0.97, 1.0}) {
      const Case c = RandomCase(inputs, outputs, rows, zeros, m_random);
      ForEachKernel([&](const DenseKernel& kernel) { ExpectReferenceBits(kernel, c); });
    }
  }
}

// Sums that cancel, overflow, vanish or are no numbers at all.
TEST_F(DenseKernels, ExtremeValues) {
  const double values[] = {0.0,
                           -0.0,
                           1.0,
                           -1.0,
                           std::numeric_limits<double>::denorm_min(),
                           -std::numeric_limits<double>::denorm_min(),
                           std::numeric_limits<double>::min(),
                           1e-200,
                           -1e-200,
                           1e200,
                           -1e200,
                           std::numeric_limits<double>::max(),
                           -std::numeric_limits<double>::max(),
                           kInfinity,
                           -kInfinity,
                           kNaN,
                           -kNaN,
                           std::bit_cast<double>(std::uint64_t{0x7ff0000000000001}),  // signalling
                           std::bit_cast<double>(std::uint64_t{0xfff8dead00000000})};
  const auto pick = [&](std::vector<double>& all, std::size_t kinds) {
    for (double& value : all) value = values[m_random() % kinds];
  };
  for (int round = 0; round < 400; ++round) {
    Case c =
        RandomCase(1 + m_random() % 70, 1 + m_random() % 40, 1 + m_random() % 9, 0.0, m_random);
    // Only numbers at first; then infinite or no numbers in the inputs, in the weights, everywhere.
    const std::size_t all = std::size(values);
    const std::size_t numbers = 13;
    pick(c.in, round % 4 == 1 || round % 4 == 3 ? all : numbers);
    pick(c.weights, round % 4 >= 2 ? all : numbers);
    pick(c.bias, round % 8 >= 4 ? all : numbers);
    ForEachKernel([&](const DenseKernel& kernel) { ExpectReferenceBits(kernel, c); });
    if (HasFatalFailure()) return;
  }
}

// 0 times infinity is no number: such a product must not be skipped.
TEST_F(DenseKernels, ZeroInputsOfInfiniteWeightsCount) {
  ForEachKernel([&](const DenseKernel& kernel) {
    for (const double weight : {kInfinity, kNaN}) {
      Case c{4, 2, 3, std::vector(8, 1.0), {0.0, 0.0}, std::vector(12, 0.0)};
      c.weights[5] = weight;  // of neuron 1
      const PackedDense packed = keras::PackDense(4, 2, c.weights, c.bias);
      EXPECT_FALSE(packed.finite);
      ExpectReferenceBits(kernel, c);
      std::vector<double> expected(2);
      keras::DenseReference(c.weights, c.bias, c.in.data(), expected.data());
      EXPECT_EQ(expected[0], 0.0);
      EXPECT_TRUE(std::isnan(expected[1]));
    }
  });
}

TEST_F(DenseKernels, WithoutInputsTheBiasIsLeft) {
  const Case c{0, 2, 3, {}, {0.25, -1.5}, {}};
  ForEachKernel([&](const DenseKernel& kernel) { ExpectReferenceBits(kernel, c); });
  std::vector<double> expected(2);
  keras::DenseReference(c.weights, c.bias, c.in.data(), expected.data());
  EXPECT_EQ(expected, c.bias);
}

TEST_F(DenseKernels, SoftmaxHasTheBitsOfTheActivation) {
  for (std::size_t width = 1; width <= 40; ++width) {
    for (int round = 0; round < 12; ++round) {
      const std::size_t stride = (width + 15) / 16 * 16;
      AlignedVector<double> rows(3 * stride, 0.0);
      for (double& value : rows) {
        value = 300.0 * (static_cast<double>(m_random() % 2001) / 1000.0 - 1.0);
      }
      if (round == 1) rows[m_random() % rows.size()] = kInfinity;
      if (round == 2) rows[m_random() % rows.size()] = -kInfinity;
      if (round == 3) rows[m_random() % rows.size()] = kNaN;
      if (round == 4) {
        rows[0] = kInfinity;
        rows[width - 1] = kNaN;
      }
      if (round == 5) rows[0] = kNaN;
      if (round == 6) std::fill(rows.begin(), rows.end(), -kInfinity);
      if (round == 7) rows[m_random() % width] = 1e308;
      if (round == 8) rows[m_random() % width] = 708.5;  // the others end below the normal numbers
      ForEachKernel([&](const DenseKernel& kernel) {
        AlignedVector<double> copy = rows;
        kernel.softmax({copy.data(), stride, 3}, width);
        for (std::size_t n = 0; n < 3; ++n) {
          std::vector<double> expected(rows.data() + n * stride, rows.data() + n * stride + width);
          keras::ApplyActivation(keras::kSoftmax, expected);
          ASSERT_EQ(Bits({copy.data() + n * stride, copy.data() + n * stride + width}),
                    Bits(expected))
              << "width " << width << ", round " << round << ", row " << n;
        }
      });
    }
  }
}

TEST_F(DenseKernels, WholeModelsGiveTheBitsOfOneAtATime) {
  const std::pair<std::vector<int>, const char*> models[] = {{{195, 256, 256, 111}, "rrx"},
                                                             {{624, 40, 37}, "rx"},
                                                             {{16, 8, 2}, "rx"},
                                                             {{68, 30, 5}, "tx"},
                                                             {{7, 5, 9, 3, 1}, "grtg"},
                                                             {{1, 1}, "x"},
                                                             {{20, 3, 50}, "xr"},
                                                             {{11, 2}, "t"}};
  for (const auto& [sizes, activations] : models) {
    const keras::KerasModel model = RandomDenseModel(sizes, activations, m_random);
    const std::int32_t inputs = sizes.front();
    const std::int32_t outputs = sizes.back();
    ASSERT_TRUE(model.is_dense_chain(inputs, outputs));
    for (const std::size_t count : {1u, 3u, 64u, 65u, 131u}) {
      const std::vector<double> in =
          RandomValues(count * static_cast<std::size_t>(inputs), m_random);
      std::vector<double> expected(count * static_cast<std::size_t>(outputs));
      keras::Workspace plain;
      plain.kernel = nullptr;
      ASSERT_EQ(model.compute_batch(in.data(), count, inputs, expected.data(), outputs, plain), 0);
      ForEachKernel([&](const DenseKernel& kernel) {
        std::vector<double> out(expected.size());
        keras::Workspace workspace;
        workspace.kernel = &kernel;
        EXPECT_EQ(model.compute_batch(in.data(), count, inputs, out.data(), outputs, workspace), 0);
        EXPECT_EQ(Bits(out), Bits(expected)) << count;
      });
    }
  }
}

TEST_F(DenseKernels, DropoutLayersAndSurplusInputsPass) {
  std::vector<std::unique_ptr<keras::Layer>> layers;
  layers.push_back(std::make_unique<keras::LayerDropout>());
  layers.push_back(std::make_unique<keras::LayerDense>(RandomValues(6, m_random),
                                                       RandomValues(2, m_random), 'r'));
  layers.push_back(std::make_unique<keras::LayerDropout>());
  const keras::KerasModel model(1, std::move(layers));
  EXPECT_TRUE(model.is_dense_chain(3, 2));
  EXPECT_TRUE(model.is_dense_chain(5, 2));
  EXPECT_FALSE(model.is_dense_chain(2, 2));
  EXPECT_FALSE(model.is_dense_chain(3, 3));
  const std::vector<double> in = RandomValues(10, m_random);
  std::vector<double> expected(4);
  keras::Workspace plain;
  plain.kernel = nullptr;
  model.compute_batch(in.data(), 2, 5, expected.data(), 2, plain);
  ForEachKernel([&](const DenseKernel& kernel) {
    std::vector<double> out(4);
    keras::Workspace workspace;
    workspace.kernel = &kernel;
    EXPECT_EQ(model.compute_batch(in.data(), 2, 5, out.data(), 2, workspace), 0);
    EXPECT_EQ(Bits(out), Bits(expected));
  });
}

TEST_F(DenseKernels, ModelsThatNeedMessagesGoOneAtATime) {
  const keras::LayerDense fits(RandomValues(6, m_random), RandomValues(2, m_random), 'r');
  {
    std::vector<std::unique_ptr<keras::Layer>> layers;
    layers.push_back(std::make_unique<keras::LayerDense>(fits.weights(), fits.bias(), 'q'));
    const keras::KerasModel model(1, std::move(layers));
    EXPECT_FALSE(model.is_dense_chain(3, 2));
    const EndProcessTrap trap;
    const MessageCapture messages;
    const std::vector<double> in(3);
    std::vector<double> out(2);
    keras::Workspace workspace;
    EXPECT_THROW(model.compute_batch(in.data(), 1, 3, out.data(), 2, workspace), EndedProcess);
  }
  {
    std::vector<std::unique_ptr<keras::Layer>> layers(2);
    layers[1] = std::make_unique<keras::LayerDense>(fits.weights(), fits.bias(), 'r');
    EXPECT_FALSE(keras::KerasModel(1, std::move(layers)).is_dense_chain(3, 2));  // empty slot
  }
  keras::KerasModel all_kinds;
  ASSERT_EQ(LoadBytes(all_kinds, AllKindsModel()), 0);
  EXPECT_FALSE(all_kinds.is_dense_chain(40, 3));
}

}  // namespace
}  // namespace veral3::test
