// Trains classifiers of several languages at once: one trunk of hidden layers, a head for each.
//
//   train-joint --kind frame --train en:work/en/a.features --train zh:work/zh/b.features
//       --train 3:work/ja/b.features --test 2:work/zh/held.features --epochs 4
//       --out work/joint.net --model 2:resources/ChineseFrame.model
//
// Languages are codes (en, zh, ja) or their numbers. The checkpoint has the heads side by
// side in that order.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/common/LanguageName.h"
#include "training/programs/TrainingOptions.h"
#include "training/train/Counting.h"
#include "training/train/FrameSource.h"
#include "training/train/JointSource.h"
#include "training/train/PhonemeSource.h"
#include "training/train/Scaling.h"
#include "training/train/Trainer.h"

namespace veral3::training {
namespace {

struct Options {
  std::string kind;
  std::vector<std::string> train_features;  // "LANGUAGE:FOLDER"
  std::vector<std::string> test_features;
  std::string start;
  std::string start_model;  // "LANGUAGE:FILE"
  std::string out;
  std::vector<std::string> models;       // "LANGUAGE:FILE"
  std::vector<std::string> checkpoints;  // "LANGUAGE:FILE"
  int version = 1;
  int jitter = 2;
  TrainOptions train;
};

struct Named {
  LanguageType language;
  std::string path;
};

Named Parse(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos || colon + 1 == text.size()) {
    throw std::runtime_error("\"" + text + "\" is not LANGUAGE:PATH");
  }
  return {LanguageNamed(text.substr(0, colon)).language, text.substr(colon + 1)};
}

const CPhonemeSet& SetOf(LanguageType language) { return *RowOf(language).phonemes; }

using Files = std::map<LanguageType, std::vector<FeatureFile>>;  // by language, ascending

Files OpenAll(const std::vector<std::string>& features) {
  Files files;
  for (const std::string& text : features) {
    const Named named = Parse(text);
    files[named.language].emplace_back(named.path);
  }
  return files;
}

std::unique_ptr<ExampleSource> SourceOf(const std::string& kind, LanguageType language,
                                        const std::vector<FeatureFile>& files, int jitter) {
  if (kind == "frame") return std::make_unique<FrameSource>(SetOf(language), files, jitter);
  return std::make_unique<PhonemeSource>(SetOf(language), files, jitter);
}

// Prints how many examples of a language have their phoneme most probable.
void Measure(const Network& network, const std::string& kind, LanguageType language,
             const std::vector<FeatureFile>& files) {
  const auto source = SourceOf(kind, language, files, 0);
  const std::size_t states = kind == "frame" ? 3 : 1;
  PrintCounts(("test, language " + std::to_string(static_cast<int>(language))).c_str(),
              CountClasses(network, *source, states, SetOf(language).GetPhonemeIndex('-')));
}

void Run(const Options& options) {
  const Files files = OpenAll(options.train_features);
  std::vector<std::unique_ptr<ExampleSource>> sources;
  for (const auto& [language, own] : files) {
    sources.push_back(SourceOf(options.kind, language, own, options.jitter));
  }
  JointSource source(std::move(sources));
  std::map<LanguageType, Head> heads;
  for (const auto& entry : files) heads[entry.first] = source.Heads()[heads.size()];
  std::printf("%zu examples\n", source.NumExamples());

  std::optional<Network> start;
  if (!options.start.empty()) start = LoadCheckpoint(options.start);
  if (!options.start_model.empty()) {
    const Named named = Parse(options.start_model);
    Random random(MixSeed(options.train.seed, 79));
    source.BeginEpoch(random);
    const Network model = Unfold(ImportModel(named.path), MeasureScaling(source, random));
    start = AsJoint(model, heads.at(named.language), source.NumClasses(), random);
  }
  TrainOptions train = options.train;
  train.heads = source.Heads();
  const Network network = Train(train, source, start);
  SaveCheckpoint(network, options.out);
  for (const std::string& text : options.models) {
    const Named named = Parse(text);
    ExportModel(WithHead(network, heads.at(named.language)), options.version, named.path);
  }
  for (const std::string& text : options.checkpoints) {
    const Named named = Parse(text);
    SaveCheckpoint(WithHead(network, heads.at(named.language)), named.path);
  }
  for (const auto& [language, own] : OpenAll(options.test_features)) {
    Measure(WithHead(network, heads.at(language)), options.kind, language, own);
  }
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Trains frame or phoneme classifiers of several languages at once.");
  app.add_option("--kind", options.kind, "frame or phoneme")
      ->check(CLI::IsMember({"frame", "phoneme"}))
      ->required();
  app.add_option("--train", options.train_features, "LANGUAGE:FOLDER of features, repeated")
      ->required();
  app.add_option("--test", options.test_features, "LANGUAGE:FOLDER to measure on, repeated");
  app.add_option("--start", options.start, "checkpoint of the same heads to go on from");
  app.add_option("--start-model", options.start_model,
                 "LANGUAGE:FILE, a model whose layers to start from");
  app.add_option("--out", options.out, "checkpoint to write")->required();
  app.add_option("--model", options.models, "LANGUAGE:FILE, model to write for the engine");
  app.add_option("--head", options.checkpoints, "LANGUAGE:FILE, checkpoint of one language");
  app.add_option("--version", options.version, "the model files' version");
  app.add_option("--jitter", options.jitter, "frames by which boundaries are moved at random");
  veral3::training::AddTrainingOptions(app, options.train);
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "train-joint: %s\n", error.what());
    return 1;
  }
  return 0;
}
