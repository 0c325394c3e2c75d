// Trains a frame or phoneme classifier, or one of plain vectors, and writes it as a checkpoint, and
// as a model file for the engine.
//
//   train-network --kind frame --features work/a.features --epochs 6 --out work/frame.net
//       --model frame.model
//   train-network --kind frame --features work/all.features --start work/frame.net --rate 1.2e-3
//   ... train-network --kind phoneme --hidden 384 128 --batch 512 --dropout 0.2 --epochs 9 ...
//   ... train-network --kind vector --hidden 24 12 --features work/a.vectors ...

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/measure/Scores.h"
#include "training/train/FrameSource.h"
#include "training/train/PhonemeSource.h"
#include "training/train/Trainer.h"
#include "training/train/VectorSource.h"

namespace veral3::training {
namespace {

struct Options {
  std::string kind;
  std::vector<std::string> features;
  std::vector<std::string> test_features;
  std::string start;
  std::string out;
  std::string model;
  int version = 1;
  int language = kLanguageEnglish;
  int jitter = 2;
  double at_least = 0.0;  // accuracy below which the program fails
  TrainOptions train;
};

// Examples and the files that they are in.
struct Examples {
  std::vector<FeatureFile> features;
  std::vector<VectorFile> vectors;
  std::unique_ptr<ExampleSource> source;
};

Examples ExamplesOf(const std::string& kind, const CPhonemeSet& set,
                    const std::vector<std::string>& paths, int jitter) {
  Examples examples;
  for (const std::string& path : paths) {
    if (kind == "vector") {
      examples.vectors.emplace_back(path);
    } else {
      examples.features.emplace_back(path);
    }
  }
  if (kind == "frame") {
    examples.source = std::make_unique<FrameSource>(set, examples.features, jitter);
  } else if (kind == "phoneme") {
    examples.source = std::make_unique<PhonemeSource>(set, examples.features, jitter);
  } else if (kind == "vector") {
    examples.source = std::make_unique<VectorSource>(examples.vectors);
  } else {
    throw std::runtime_error("no such kind of network: " + kind);
  }
  return examples;
}

// The same for plain vectors, with a row for each class: how its examples were classed.
double MeasureVectors(const Network& network, ExampleSource& source) {
  const auto classes = static_cast<std::size_t>(source.NumClasses());
  ClassCounts counts(source.NumClasses());
  std::vector<std::size_t> confusion(classes * classes, 0);
  std::vector<std::uint32_t> all(source.NumExamples());
  std::iota(all.begin(), all.end(), 0U);
  std::vector<float> inputs(all.size() * static_cast<std::size_t>(source.NumInputs()));
  std::vector<std::int64_t> truth(all.size());
  source.Fill(all, inputs, truth);
  const std::vector<float> scores = Classify(network, inputs);
  for (std::size_t i = 0; i < all.size(); ++i) {
    const auto first = scores.begin() + static_cast<std::ptrdiff_t>(i * classes);
    const std::vector<double> row(first, first + static_cast<std::ptrdiff_t>(classes));
    counts.Add(static_cast<int>(truth[i]), row);
    const auto said = static_cast<std::size_t>(std::ranges::max_element(row) - row.begin());
    ++confusion[static_cast<std::size_t>(truth[i]) * classes + said];
  }
  std::printf("test: %zu examples, right %.4f, macro F1 %.4f\n", counts.Total(), counts.TopOne(),
              counts.MacroF1());
  for (std::size_t c = 0; c < classes; ++c) {
    std::printf("class %zu said to be", c);
    for (std::size_t k = 0; k < classes; ++k) std::printf(" %zu", confusion[c * classes + k]);
    std::printf("\n");
  }
  return counts.TopOne();
}

// Prints how many examples have their phoneme most probable; a frame's phoneme by the sum of its
// three states. Returns that share.
double Measure(const Network& network, const CPhonemeSet& set, ExampleSource& source) {
  Random random(1);
  source.BeginEpoch(random);
  constexpr std::uint32_t kChunk = 8192;
  const auto columns = static_cast<std::size_t>(source.NumClasses());
  const auto states = columns / static_cast<std::size_t>(set.GetSize());
  const int pause = set.GetPhonemeIndex('-');
  ClassCounts all(set.GetSize());
  ClassCounts speech(set.GetSize());
  std::vector<std::uint32_t> examples;
  std::vector<double> sums(static_cast<std::size_t>(set.GetSize()));
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
      std::ranges::fill(sums, 0.0);
      for (std::size_t c = 0; c < columns; ++c) {
        sums[c / states] += static_cast<double>(scores[i * columns + c]);
      }
      const int truth = static_cast<int>(classes[i]) / static_cast<int>(states);
      all.Add(truth, sums);
      if (truth != pause) speech.Add(truth, sums);
    }
  }
  for (const auto& [what, counts] :
       {std::pair{"all", &all}, std::pair{"without pauses", &speech}}) {
    std::printf("test, %s: %zu examples, top-1 %.4f, top-3 %.4f, macro F1 %.4f\n", what,
                counts->Total(), counts->TopOne(), counts->TopThree(), counts->MacroF1());
  }
  return all.TopOne();
}

void Run(const Options& options) {
  const CPhonemeSet* set = PhonemeSetOf(static_cast<LanguageType>(options.language));
  if (set == nullptr) throw std::runtime_error("no such language");
  const Examples examples = ExamplesOf(options.kind, *set, options.features, options.jitter);
  std::printf("%zu examples\n", examples.source->NumExamples());
  std::optional<Network> start;
  if (!options.start.empty()) start = LoadCheckpoint(options.start);
  const Network network = Train(options.train, *examples.source, start);
  SaveCheckpoint(network, options.out);
  if (!options.model.empty()) ExportModel(network, options.version, options.model);
  if (options.test_features.empty()) return;
  const Examples test = ExamplesOf(options.kind, *set, options.test_features, 0);
  const double accuracy = options.kind == "vector" ? MeasureVectors(network, *test.source)
                                                   : Measure(network, *set, *test.source);
  if (accuracy < options.at_least) throw std::runtime_error("the accuracy is too low");
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Trains a frame, phoneme or vector classifier.");
  app.add_option("--kind", options.kind, "frame, phoneme or vector")->required();
  app.add_option("--features", options.features, "feature folders (vector: files) to learn from")
      ->required();
  app.add_option("--test", options.test_features, "feature folders to measure on");
  app.add_option("--at-least", options.at_least, "fail below this accuracy on the test");
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
    std::fprintf(stderr, "train-network: %s\n", error.what());
    return 1;
  }
  return 0;
}
