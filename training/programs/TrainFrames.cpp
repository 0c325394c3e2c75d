// Trains a frame classifier and writes it as a checkpoint, and as a model file for the engine.
//
//   train-frames --features work/a.features --epochs 6 --out work/frame.net --model frame.model
//   train-frames --features work/all.features --start work/frame.net --rate 1.2e-3 ...

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/train/FrameSource.h"
#include "training/train/Trainer.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> features;
  std::vector<std::string> test_features;
  std::string start;
  std::string out;
  std::string model;
  int version = 1;
  int language = kLanguageEnglish;
  int jitter = 2;
  TrainOptions train;
};

std::vector<FeatureFile> Open(const std::vector<std::string>& folders) {
  std::vector<FeatureFile> files;
  for (const std::string& folder : folders) files.emplace_back(folder);
  return files;
}

// How many frames have their phoneme most probable, by the sum of its three states.
void PrintAccuracy(const Network& network, const CPhonemeSet& set,
                   const std::vector<FeatureFile>& files) {
  FrameSource source(set, files, 0);
  Random random(1);
  source.BeginEpoch(random);
  constexpr std::uint32_t kChunk = 8192;
  const auto columns = static_cast<std::size_t>(source.NumClasses());
  const int pause = set.GetPhonemeIndex('-');
  std::size_t right = 0;
  std::size_t speech = 0;
  std::size_t speech_right = 0;
  std::vector<std::uint32_t> examples;
  for (std::uint32_t first = 0; first < source.NumExamples(); first += kChunk) {
    examples.clear();
    for (std::uint32_t i = first; i < std::min<std::size_t>(first + kChunk, source.NumExamples());
         ++i) {
      examples.push_back(i);
    }
    std::vector<float> inputs(examples.size() * static_cast<std::size_t>(source.NumInputs()));
    std::vector<std::int64_t> classes(examples.size());
    source.Fill(examples, inputs, classes);
    const std::vector<float> scores = Classify(network, inputs);
    for (std::size_t i = 0; i < examples.size(); ++i) {
      int best = 0;
      float highest = -1.0f;
      for (int p = 0; p < set.GetSize(); ++p) {
        const float* s = &scores[i * columns + static_cast<std::size_t>(p) * 3];
        if (const float sum = s[0] + s[1] + s[2]; sum > highest) {
          highest = sum;
          best = p;
        }
      }
      const bool hit = best == classes[i] / 3;
      right += hit;
      if (classes[i] / 3 != pause) {
        ++speech;
        speech_right += hit;
      }
    }
  }
  std::printf("test: %zu frames, phoneme right %.4f; within speech %.4f\n", source.NumExamples(),
              static_cast<double>(right) / static_cast<double>(source.NumExamples()),
              static_cast<double>(speech_right) / static_cast<double>(speech));
}

void Run(const Options& options) {
  const CPhonemeSet* set = PhonemeSetOf(static_cast<LanguageType>(options.language));
  if (set == nullptr) throw std::runtime_error("no such language");
  const std::vector<FeatureFile> files = Open(options.features);
  FrameSource source(*set, files, options.jitter);
  std::printf("%zu frames\n", source.NumExamples());
  std::optional<Network> start;
  if (!options.start.empty()) start = LoadCheckpoint(options.start);
  const Network network = Train(options.train, source, start);
  if (!options.test_features.empty()) PrintAccuracy(network, *set, Open(options.test_features));
  if (!options.model.empty()) ExportModel(network, options.version, options.model);
  SaveCheckpoint(network, options.out);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Trains a frame classifier.");
  app.add_option("--features", options.features, "feature folders to learn from")->required();
  app.add_option("--test", options.test_features, "feature folders to measure on");
  app.add_option("--start", options.start, "checkpoint to go on from");
  app.add_option("--out", options.out, "checkpoint to write")->required();
  app.add_option("--model", options.model, "model file to write for the engine");
  app.add_option("--version", options.version, "the model file's version");
  app.add_option("--language", options.language, "1 English, 2 Chinese, 3 Japanese");
  app.add_option("--jitter", options.jitter, "frames by which boundaries are moved at random");
  app.add_option("--hidden", options.train.hidden, "sizes of the hidden layers");
  app.add_option("--batch", options.train.batch, "examples a step");
  app.add_option("--epochs", options.train.epochs, "rounds through the examples");
  app.add_option("--rate", options.train.rate, "highest learning rate");
  app.add_option("--dropout", options.train.dropout, "share of hidden values left out");
  app.add_option("--smoothing", options.train.smoothing, "label smoothing");
  app.add_option("--sparsity", options.train.sparsity, "weight of the hidden activations' mean");
  app.add_option("--seed", options.train.seed, "a different one, different weights and order");
  app.add_option("--threads", options.train.threads, "threads of libtorch");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "train-frames: %s\n", error.what());
    return 1;
  }
  return 0;
}
