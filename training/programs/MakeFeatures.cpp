// Augments a corpus and computes the engine's features of it, with phoneme segments by frame.
//
//   make-features --corpus work/a.corpus --copies 2 --warp-low 0.88 --seed 1 --out work/a.features
//
// The same arguments give the same files, whatever the number of threads.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "signal/CWaveFrameDef.h"
#include "signal/HighPassFilter.h"
#include "signal/Mfcc.h"
#include "training/augment/Augment.h"
#include "training/common/ParallelFor.h"
#include "training/corpus/CorpusFile.h"
#include "training/features/FeatureFile.h"
#include "training/features/UtteranceFeatures.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> corpora;
  std::string out;
  int copies = 1;
  int threads = 2;
  int language = kLanguageEnglish;
  std::uint64_t seed = 1;
  bool clean = false;
  AugmentOptions augment;
};

void Run(const Options& options) {
  constexpr std::size_t kChunk = 64;  // utterances worked on together
  const CPhonemeSet* set = PhonemeSetOf(static_cast<LanguageType>(options.language));
  if (set == nullptr) throw std::runtime_error("no such language");
  FeatureWriter writer(options.out);
  std::uint64_t number = 0;
  for (const std::string& path : options.corpora) {
    CorpusReader reader(path);
    for (bool more = true; more;) {
      std::vector<Utterance> utterances;
      while (utterances.size() < kChunk) {
        auto utterance = reader.Next();
        if (!utterance) {
          more = false;
          break;
        }
        for (int copy = 1; copy < options.copies; ++copy) utterances.push_back(*utterance);
        utterances.push_back(*std::move(utterance));
      }
      std::vector<UtteranceFeatures> features(utterances.size());
      ParallelFor(utterances.size(), options.threads, [&](std::size_t i) {
        Random random(MixSeed(options.seed, number + i));
        Utterance utterance =
            options.clean ? utterances[i] : Augment(utterances[i], options.augment, random);
        features[i] = FeaturesOf(utterance, *set);
      });
      for (const UtteranceFeatures& one : features) {
        if (!one.segments.empty()) writer.Write(one.mfcc, one.segments);
      }
      number += utterances.size();
    }
  }
  writer.Close();
  std::printf("%s: %llu utterances, %.2f h\n", options.out.c_str(),
              static_cast<unsigned long long>(number),
              static_cast<double>(writer.NumFrames()) * kFrameShift / kSampleRate / 3600);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Augments a corpus and computes the engine's features of it.");
  app.add_option("--corpus", options.corpora, "corpora to read")->required();
  app.add_option("--out", options.out, "folder to write")->required();
  app.add_option("--copies", options.copies, "augmented copies of each utterance");
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--language", options.language, "1 English, 2 Chinese, 3 Japanese");
  app.add_option("--seed", options.seed, "a different one, different augmentations");
  app.add_option("--warp-low", options.augment.warp_low, "shortest length factor");
  app.add_option("--warp-high", options.augment.warp_high, "longest length factor");
  app.add_flag("--clean", options.clean, "no augmentation at all");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-features: %s\n", error.what());
    return 1;
  }
  return 0;
}
