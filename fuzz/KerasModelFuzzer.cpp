#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "ByteSource.h"
#include "common/MessageWriter.h"
#include "recognition/keras/KerasModel.h"

// The first byte chooses: an even one makes the rest a model file as it stands, an odd one lets the
// rest decide sizes, weights and inputs of a dense network, down to infinities and NaN. Whatever
// loads is evaluated; all vector kernels must give the bits of the plain loop.
namespace {

using veral3::fuzz::ByteSource;

struct Ended {};  // an undefined activation ends the process: thrown in its place

void AppendInt(std::string& bytes, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

void AppendGroup(std::string& bytes, ByteSource& source, std::size_t count) {
  bytes += '[';
  for (std::size_t i = 0; i < count; ++i) {
    AppendInt(bytes, std::bit_cast<std::uint32_t>(source.Number()));
  }
  bytes += ']';
}

std::string DenseFile(ByteSource& source) {
  constexpr char kCodes[] = {'r', 'r', 'r', 'x', 'g', 't'};
  std::string bytes;
  const std::size_t layers = 1 + source.Byte() % 3;
  AppendInt(bytes, 1);
  AppendInt(bytes, static_cast<std::uint32_t>(layers));
  std::size_t inputs = 1 + source.Byte() % 80;
  for (std::size_t l = 0; l < layers; ++l) {
    const std::size_t neurons = 1 + source.Byte() % 40;
    AppendInt(bytes, 0);
    bytes += 'D';
    bytes += kCodes[source.Byte() % std::size(kCodes)];
    AppendInt(bytes, static_cast<std::uint32_t>(inputs));
    AppendInt(bytes, static_cast<std::uint32_t>(neurons));
    for (std::size_t i = 0; i < inputs; ++i) AppendGroup(bytes, source, neurons);
    AppendGroup(bytes, source, neurons);
    inputs = neurons;
  }
  return bytes;
}

void CompareKernels(const keras::KerasModel& model, ByteSource& source) {
  const std::int32_t inputs = model.get_input_cols();
  std::int32_t outputs = inputs;
  for (std::size_t l = 0; l < model.layer_count(); ++l) {
    if (model.layer(l)->type() == keras::kDense) outputs = model.layer(l)->get_output_units();
  }
  if (!model.is_dense_chain(inputs, outputs)) return;
  const std::size_t rows = 1 + source.Byte() % 9;
  std::vector<double> in(rows * static_cast<std::size_t>(inputs));
  for (double& value : in) value = static_cast<double>(source.Number());
  std::vector<double> expected(rows * static_cast<std::size_t>(outputs));
  std::vector<double> got(expected.size());
  keras::Workspace workspace;
  workspace.kernel = nullptr;
  model.compute_batch(in.data(), rows, inputs, expected.data(), outputs, workspace);
  for (const keras::DenseKernel* kernel : keras::RunnableDenseKernels()) {
    workspace.kernel = kernel;
    model.compute_batch(in.data(), rows, inputs, got.data(), outputs, workspace);
    if (std::memcmp(got.data(), expected.data(), got.size() * sizeof(double)) != 0) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veral3::SetMessageHandler([](veral3::MessageStream, std::string_view) {});
  veral3::SetEndProcessHandler([](int) { throw Ended(); });
  ByteSource source(data, size);
  const bool dense = source.Byte() % 2 == 1;
  std::string bytes;
  if (dense) {
    bytes = DenseFile(source);
  } else {
    while (source.Left() > 0) bytes += static_cast<char>(source.Byte());
  }
  std::istringstream file(bytes);
  keras::KerasModel model;
  if (model.load_binary_weights(file, false) != 0) {
    if (dense) std::abort();
    return 0;
  }
  try {
    keras::Tensor cube;
    cube.allocate3(5, 6, 3);
    for (int n = 0; n < 90; ++n) cube.data3[0][0][n] = n % 7 - 3.0;  // one block
    model.compute_output(cube, false);
    ByteSource values(data, size);
    CompareKernels(model, dense ? source : values);
  } catch (const Ended&) {
  }

  // What was loaded is written, and written again the same once it was read.
  std::ostringstream first;
  if (model.save_binary_weights(first) != 0) std::abort();
  std::istringstream again(first.str());
  keras::KerasModel copy;
  std::ostringstream second;
  if (copy.load_binary_weights(again, false) != 0) std::abort();
  if (copy.save_binary_weights(second) != 0 || first.str() != second.str()) std::abort();
  return 0;
}
