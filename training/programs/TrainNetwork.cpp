// Trains a classifier of frames, phonemes or plain vectors and writes it as a checkpoint, and as a
// model file for the engine.
//
//   train-network --kind frame --features work/a.features --epochs 6 --out work/frame.net
//       --model frame.model
//   train-network --kind frame --features 0.6 work/a.features 0.4 work/b.features work/c.features
//       --start work/frame.net --rate 1.2e-3 ...    a.features are 60 % of what is learnt from
//   ... train-network --kind phoneme --hidden 384 128 --batch 512 --dropout 0.2 --epochs 9 ...
//   ... train-network --kind vector --features work/tone.vectors --hidden 64 32 ...

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/programs/LanguageOption.h"
#include "training/programs/TrainingOptions.h"
#include "training/train/Counting.h"
#include "training/train/FrameSource.h"
#include "training/train/PhonemeSource.h"
#include "training/train/PooledSource.h"
#include "training/train/Priors.h"
#include "training/train/Scaling.h"
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
  LanguageType language = kLanguageEnglish;
  int jitter = 2;
  double at_least = 0.0;     // accuracy below which the program fails
  double temperature = 1.0;  // of the model file
  bool as_scored = false;    // the model file, of phonemes
  std::vector<std::string> teachers;
  TrainOptions train;
};

// Files, and what share of the examples comes from them; 0 where none was named.
struct FileGroup {
  double share = 0.0;
  std::vector<std::string> paths;
};

// A number among the words begins a group of that share.
std::vector<FileGroup> GroupsOf(const std::vector<std::string>& words) {
  std::vector<FileGroup> groups;
  for (const std::string& word : words) {
    double share = 0.0;
    const char* end = word.data() + word.size();
    if (std::from_chars(word.data(), end, share).ptr == end) {
      if (!(share > 0.0)) throw std::runtime_error("a share must be above 0: " + word);
      groups.push_back({share, {}});
    } else {
      if (groups.empty()) groups.emplace_back();
      groups.back().paths.push_back(word);
    }
  }
  const bool one = groups.size() == 1;
  for (const FileGroup& group : groups) {
    if (group.paths.empty() || (group.share == 0.0 && !one)) {
      throw std::runtime_error("each group of files needs its share before it, and files");
    }
  }
  return groups;
}

// The examples of some files, with what holds them in memory.
class Examples {
 public:
  Examples(const std::string& kind, const CPhonemeSet& set, const std::vector<std::string>& words,
           int jitter)
      : m_files(GroupsOf(words)) {
    m_features.resize(m_files.size());
    m_vectors.resize(m_files.size());
    std::vector<std::unique_ptr<ExampleSource>> sources;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
      for (const std::string& path : m_files[i].paths) {
        if (kind == "vector") {
          m_vectors[i].push_back(ReadVectorFile(path));
        } else {
          m_features[i].emplace_back(path);
        }
      }
      if (kind == "vector") {
        sources.push_back(std::make_unique<VectorSource>(m_vectors[i]));
      } else if (kind == "frame") {
        sources.push_back(std::make_unique<FrameSource>(set, m_features[i], jitter));
      } else if (kind == "phoneme") {
        sources.push_back(std::make_unique<PhonemeSource>(set, m_features[i], jitter));
      } else {
        throw std::runtime_error("no such kind of network: " + kind);
      }
    }
    m_source = std::make_unique<PooledSource>(std::move(sources));
  }

  ExampleSource& Source() { return *m_source; }

  // Empty where the files came without shares.
  std::vector<ExampleGroup> Groups() const {
    std::vector<ExampleGroup> groups;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
      if (m_files[i].share > 0.0) groups.push_back(m_source->GroupOf(i, m_files[i].share));
    }
    return groups;
  }

 private:
  std::vector<FileGroup> m_files;
  std::vector<std::vector<FeatureFile>> m_features;  // of each group
  std::vector<std::vector<VectorFile>> m_vectors;
  std::unique_ptr<PooledSource> m_source;
};

// What is counted together when a network is measured.
struct Grouping {
  std::size_t columns_each = 1;  // of a class: three states of a phoneme
  int pause = -1;                // class that is also left out; -1 for none
};

Grouping GroupingOf(const std::string& kind, const CPhonemeSet& set) {
  if (kind == "vector") return {};
  return {kind == "frame" ? 3u : 1u, set.GetPhonemeIndex('-')};
}

// A checkpoint, or a model of the engine's, whose scaling is folded. One of other classes, as of
// another language, lends its hidden layers.
Network StartFrom(const std::string& path, ExampleSource& source, std::uint64_t seed) {
  if (!path.ends_with(".model")) return LoadCheckpoint(path);
  Network folded = ImportModel(path);
  if (folded.NumInputs() != source.NumInputs()) {
    throw std::runtime_error(path + " has other inputs");
  }
  Random random(MixSeed(seed, 78));
  DenseLayer& last = folded.layers.back();
  if (last.outputs != source.NumClasses()) {
    last = RandomLayer(last.inputs, source.NumClasses(), random);
  }
  source.BeginEpoch(random);
  return Unfold(folded, MeasureScaling(source, random));
}

// The network as its model file has it: with --as-scored for phonemes as frequent as scores take
// them to be.
Network Exported(const Options& options, const Network& network, Examples& examples) {
  if (!options.as_scored) return network;
  const std::vector<double> learnt = ClassShares(examples.Source(), examples.Groups());
  return WithPriors(network, learnt, ScoredShares(options.language, learnt));
}

void Run(const Options& options) {
  if (options.as_scored && options.kind != "phoneme") {
    throw std::runtime_error("only phonemes are scored");
  }
  const CPhonemeSet* set = PhonemeSetOf(options.language);
  if (set == nullptr) throw std::runtime_error("no such language");
  Examples examples(options.kind, *set, options.features, options.jitter);
  std::printf("%zu examples\n", examples.Source().NumExamples());
  std::optional<Network> start;
  if (!options.start.empty()) {
    start = StartFrom(options.start, examples.Source(), options.train.seed);
  }
  TrainOptions train = options.train;
  train.groups = examples.Groups();
  for (const std::string& path : options.teachers) train.teachers.push_back(LoadCheckpoint(path));
  const Network network = Train(train, examples.Source(), start);
  SaveCheckpoint(network, options.out);
  if (!options.model.empty()) {
    ExportModel(WithTemperature(Exported(options, network, examples), options.temperature),
                options.version, options.model);
  }
  if (options.test_features.empty()) return;
  Examples test(options.kind, *set, options.test_features, 0);
  const Grouping grouping = GroupingOf(options.kind, *set);
  const CountedClasses counts =
      CountClasses(network, test.Source(), grouping.columns_each, grouping.pause);
  PrintCounts("test", counts);
  if (counts.all.TopOne() < options.at_least) throw std::runtime_error("the accuracy is too low");
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Trains a classifier of frames, phonemes or vectors.");
  app.add_option("--kind", options.kind, "frame, phoneme or vector")->required();
  app.add_option("--features", options.features,
                 "feature folders, or files of vectors, to learn from; a number is the share of "
                 "those behind it")
      ->required();
  app.add_option("--epoch-size", options.train.epoch_size,
                 "examples an epoch, where shares are given");
  app.add_option("--teachers", options.teachers, "checkpoints to learn from as well");
  app.add_option("--teaching", options.train.teaching, "how much the teachers count, up to 1");
  app.add_option("--test", options.test_features, "the same to measure on");
  app.add_option("--at-least", options.at_least, "fail below this accuracy on the test");
  app.add_option("--start", options.start, "checkpoint, or model file (.model), to go on from");
  app.add_option("--out", options.out, "checkpoint to write")->required();
  app.add_option("--model", options.model, "model file to write for the engine");
  app.add_option("--version", options.version, "the model file's version");
  app.add_option("--temperature", options.temperature,
                 "what the model file's softmax is given is divided by this");
  app.add_flag("--as-scored", options.as_scored,
               "the model file takes phonemes to be as frequent as suits their scores");
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--jitter", options.jitter, "frames by which boundaries are moved at random");
  veral3::training::AddTrainingOptions(app, options.train);
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "train-network: %s\n", error.what());
    return 1;
  }
  return 0;
}
