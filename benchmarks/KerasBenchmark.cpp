// Speed of the frame network on one core: the plain loop, each vector kernel, and OpenBLAS on the
// same shapes (its fused matrix products alone: no bias, no activation), with the ratios of this
// run.
//
//   veral3_bench_keras [--model=FILE] [--wav=FILE] [Google Benchmark's options]
//
// The model defaults to resources/EnglishFrame.model, the recording (16 bit, mono, 22050 Hz) to one
// of examples/. Without a model a synthetic one of the same shape stands in, whose hidden units are
// zero for 70 % of independent random inputs; without a recording the inputs are random.

#include <benchmark/benchmark.h>
#include <cblas.h>
#include <sndfile.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "RatioReporter.h"
#include "recognition/FrameScores.h"
#include "recognition/keras/Activation.h"
#include "recognition/keras/KerasModel.h"
#include "recognition/keras/LayerDense.h"
#include "signal/Mfcc.h"

namespace {

using keras::KerasModel;
using keras::LayerDense;
using keras::Workspace;

constexpr std::size_t kFrames = 1000;

std::vector<double> RandomNormal(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  std::vector<double> values(count);
  for (double& value : values) value = normal(random);
  return values;
}

// One dense layer after the other on all rows, with the plain loop; `visit` sees each layer's
// input.
template <typename Visit>
std::vector<double> ForEachLayer(const KerasModel& model, std::vector<double> rows, Visit visit) {
  for (std::size_t l = 0; l < model.layer_count(); ++l) {
    const auto* const dense = dynamic_cast<const LayerDense*>(model.layer(l));
    if (!dense) continue;
    visit(*dense, rows);
    const std::size_t inputs = dense->packed().inputs;
    const std::size_t outputs = dense->packed().outputs;
    std::vector<double> next(kFrames * outputs);
    for (std::size_t n = 0; n < kFrames; ++n) {
      keras::DenseReference(dense->weights(), dense->bias(), &rows[n * inputs], &next[n * outputs]);
      keras::ApplyActivation(dense->activation(), {&next[n * outputs], outputs});
    }
    rows = std::move(next);
  }
  return rows;
}

KerasModel SyntheticModel(const std::vector<double>& inputs) {
  const std::size_t sizes[] = {195, 256, 256, 111};
  std::vector<std::unique_ptr<keras::Layer>> layers;
  std::vector<double> rows = inputs;
  for (std::size_t l = 0; l < 3; ++l) {
    const std::size_t in = sizes[l];
    const std::size_t out = sizes[l + 1];
    const std::vector<double> weights = RandomNormal(in * out, 10 + static_cast<unsigned>(l));
    std::vector<double> bias(out, 0.0);
    std::vector<double> next(kFrames * out);
    for (std::size_t n = 0; n < kFrames; ++n) {
      keras::DenseReference(weights, bias, &rows[n * in], &next[n * out]);
    }
    for (std::size_t j = 0; j < out; ++j) {  // seven of ten sums end below 0
      std::vector<double> sums(kFrames);
      for (std::size_t n = 0; n < kFrames; ++n) sums[n] = next[n * out + j];
      std::nth_element(sums.begin(), sums.begin() + 7 * kFrames / 10, sums.end());
      bias[j] = -sums[7 * kFrames / 10];
    }
    for (std::size_t n = 0; n < kFrames; ++n) {
      for (std::size_t j = 0; j < out; ++j) {
        next[n * out + j] = std::max(0.0, next[n * out + j] + bias[j]);
      }
    }
    layers.push_back(
        std::make_unique<LayerDense>(weights, bias, l < 2 ? keras::kRelu : keras::kSoftmax));
    rows = std::move(next);
  }
  return KerasModel(1, std::move(layers));
}

// The classifier inputs of kFrames frames of the recording, repeated if it is shorter.
std::optional<std::vector<double>> InputsOf(const std::string& wav) {
  SF_INFO info{};
  SNDFILE* const file = sf_open(wav.c_str(), SFM_READ, &info);
  if (!file) return std::nullopt;
  std::vector<short> samples(static_cast<std::size_t>(info.frames * info.channels));
  sf_read_short(file, samples.data(), static_cast<sf_count_t>(samples.size()));
  sf_close(file);
  const std::vector<float> mfcc =
      veral3::ComputeMfcc(samples.data(), static_cast<std::uint32_t>(samples.size()));
  const std::size_t frames = mfcc.size() / veral3::kMfccSize;
  if (frames == 0) return std::nullopt;
  std::vector<double> inputs;
  for (std::size_t n = 0; n < kFrames; ++n) {
    std::array<float, veral3::kFrameInputSize> input;
    veral3::AssembleFrameInput(mfcc, static_cast<int>(n % frames), input);
    inputs.insert(inputs.end(), input.begin(), input.end());
  }
  return inputs;
}

// The matrices of the dense layers as dgemm takes them.
struct Matrices {
  std::vector<std::size_t> sizes;
  std::vector<std::vector<double>> weights;  // [inputs][outputs]
  std::vector<std::vector<double>> rows;     // inputs of each layer, then room for the result
};

Matrices MatricesOf(const KerasModel& model, const std::vector<double>& inputs) {
  Matrices matrices;
  const std::vector<double> last =
      ForEachLayer(model, inputs, [&](const LayerDense& dense, const std::vector<double>& rows) {
        const std::size_t in = dense.packed().inputs;
        const std::size_t out = dense.packed().outputs;
        std::vector<double> weights(in * out);
        for (std::size_t j = 0; j < out; ++j) {
          for (std::size_t i = 0; i < in; ++i) weights[i * out + j] = dense.weights()[j * in + i];
        }
        matrices.sizes.push_back(in);
        matrices.weights.push_back(std::move(weights));
        matrices.rows.push_back(rows);
      });
  matrices.sizes.push_back(last.size() / kFrames);
  matrices.rows.push_back(last);
  return matrices;
}

void MultiplyWithBlas(Matrices& matrices) {
  for (std::size_t l = 0; l + 1 < matrices.sizes.size(); ++l) {
    const auto in = static_cast<blasint>(matrices.sizes[l]);
    const auto out = static_cast<blasint>(matrices.sizes[l + 1]);
    // Into a buffer of its own: the next layer multiplies true activations.
    static std::vector<double> result;
    result.resize(kFrames * matrices.sizes[l + 1]);
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, kFrames, out, in, 1.0,
                matrices.rows[l].data(), in, matrices.weights[l].data(), out, 0.0, result.data(),
                out);
    benchmark::DoNotOptimize(result.data());
  }
}

std::string Option(int& argc, char** argv, const char* name, const std::string& otherwise) {
  const std::size_t length = std::strlen(name);
  for (int i = 1; i < argc; ++i) {
    if (std::strncmp(argv[i], name, length) != 0) continue;
    const std::string value = argv[i] + length;
    std::copy(argv + i + 1, argv + argc, argv + i);
    --argc;
    return value;
  }
  return otherwise;
}

std::string FirstExample() {
  const std::filesystem::path folder = VERAL3_SOURCE_DIR "/examples";
  if (!std::filesystem::is_directory(folder)) return "";
  std::vector<std::string> wavs;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.path().extension() == ".wav") wavs.push_back(entry.path().string());
  }
  return wavs.empty() ? "" : *std::min_element(wavs.begin(), wavs.end());
}

}  // namespace

int main(int argc, char** argv) {
  const std::string model_path =
      Option(argc, argv, "--model=", VERAL3_SOURCE_DIR "/resources/EnglishFrame.model");
  const std::string wav = Option(argc, argv, "--wav=", FirstExample());
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

  std::vector<double> inputs;
  KerasModel model;
  const bool real = std::filesystem::exists(model_path);
  if (real) {
    if (model.load_binary_weights(model_path, false) != 0) return 1;
    const auto from_wav = wav.empty() ? std::nullopt : InputsOf(wav);
    std::printf("Model: %s\nInputs: %s\n", model_path.c_str(), from_wav ? wav.c_str() : "random");
    inputs = from_wav ? *from_wav : RandomNormal(kFrames * veral3::kFrameInputSize, 1);
  } else {
    std::printf("Model: synthetic 195-256-256-111\nInputs: random\n");
    inputs = RandomNormal(kFrames * veral3::kFrameInputSize, 1);
    model = SyntheticModel(inputs);
  }
  Matrices matrices = MatricesOf(model, inputs);
  const auto outputs = static_cast<std::int32_t>(matrices.sizes.back());
  if (!model.is_dense_chain(veral3::kFrameInputSize, outputs)) {
    std::fprintf(stderr, "%s does not take frames\n", model_path.c_str());
    return 1;
  }
  for (std::size_t l = 0; l + 1 < matrices.sizes.size(); ++l) {
    const auto zeros = std::count(matrices.rows[l].begin(), matrices.rows[l].end(), 0.0);
    std::printf("Layer %zu: %zu to %zu, %.1f %% of the inputs are zero\n", l + 1, matrices.sizes[l],
                matrices.sizes[l + 1],
                100.0 * static_cast<double>(zeros) / static_cast<double>(matrices.rows[l].size()));
  }
  openblas_set_num_threads(1);
  std::printf("OpenBLAS kernels: %s\n", openblas_get_corename());

  std::vector<double> scores(kFrames * matrices.sizes.back());
  const auto run = [&](benchmark::State& state, const keras::DenseKernel* kernel) {
    Workspace workspace;
    workspace.kernel = kernel;
    for (auto _ : state) {
      model.compute_batch(inputs.data(), kFrames, veral3::kFrameInputSize, scores.data(), outputs,
                          workspace);
      benchmark::DoNotOptimize(scores.data());
    }
    state.counters["frames/s"] = benchmark::Counter(static_cast<double>(kFrames),
                                                    benchmark::Counter::kIsIterationInvariantRate);
  };
  benchmark::RegisterBenchmark("loop", run, nullptr)->Unit(benchmark::kMillisecond);
  for (const keras::DenseKernel* kernel : keras::RunnableDenseKernels()) {
    benchmark::RegisterBenchmark(kernel->name, run, kernel)->Unit(benchmark::kMillisecond);
  }
  benchmark::RegisterBenchmark("dgemm", [&](benchmark::State& state) {
    for (auto _ : state) MultiplyWithBlas(matrices);
  })->Unit(benchmark::kMillisecond);

  veral3::bench::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  std::vector<double> expected = scores;
  Workspace workspace;
  workspace.kernel = nullptr;
  model.compute_batch(inputs.data(), kFrames, veral3::kFrameInputSize, expected.data(), outputs,
                      workspace);
  std::printf("\n%-10s %12s %12s %s\n", "kernel", "times loop", "times dgemm", "bits");
  for (const keras::DenseKernel* kernel : keras::RunnableDenseKernels()) {
    workspace.kernel = kernel;
    model.compute_batch(inputs.data(), kFrames, veral3::kFrameInputSize, scores.data(), outputs,
                        workspace);
    const bool same =
        std::memcmp(scores.data(), expected.data(), scores.size() * sizeof(double)) == 0;
    const double seconds = reporter.SecondsOf(kernel->name);
    if (seconds == 0.0) continue;
    std::printf("%-10s %12.2f %12.2f %s\n", kernel->name, reporter.SecondsOf("loop") / seconds,
                reporter.SecondsOf("dgemm") / seconds, same ? "the loop's" : "DIFFERENT");
  }
  return 0;
}
