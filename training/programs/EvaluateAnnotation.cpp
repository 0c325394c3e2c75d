// Measures annotation without a sentence on voices and sentences that training never had: the
// phoneme error rate, changes by edit distance for each true phoneme, pauses left out on both
// sides.
//
//   evaluate-annotation --language 1 --corpus work/en/held.corpus --name "held-out espeak"
//
// Annotation cannot part two phonemes of one kind that follow each other without a pause: the plain
// rate counts the second one as deleted. The rate with repeats merged counts such a run as one
// phoneme on both sides.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "storage/AnnotatedAudio.h"
#include "training/augment/Augment.h"
#include "training/common/ParallelFor.h"
#include "training/engine/Engine.h"
#include "training/measure/EditDistance.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> corpora;
  EngineFiles engine{.resources = "resources/", .goodness = false};
  std::string name = "test";
  LanguageType language = kLanguageEnglish;
  int threads = 1;
  std::size_t most = 0;
  std::uint64_t seed = 8;
};

std::string WithoutPauses(std::string_view phonemes) {
  std::string kept;
  std::ranges::copy_if(phonemes, std::back_inserter(kept), [](char c) { return c != '-'; });
  return kept;
}

std::string RepeatsMerged(std::string phonemes) {
  phonemes.erase(std::unique(phonemes.begin(), phonemes.end()), phonemes.end());
  return phonemes;
}

void Print(const Options& options, const char* what, const Edits& edits) {
  const auto share = [&](std::size_t count) {
    return static_cast<double>(count) / static_cast<double>(std::max<std::size_t>(edits.length, 1));
  };
  std::printf(
      "%s | annotation, %s | phoneme error rate %.4f | substitutions %.4f, deletions %.4f, "
      "insertions %.4f | %zu phonemes\n",
      options.name.c_str(), what, edits.Rate(), share(edits.substitutions), share(edits.deletions),
      share(edits.insertions), edits.length);
}

void Measure(const Options& options, const std::vector<Utterance>& utterances, bool augmented) {
  std::vector<Edits> plain(utterances.size());
  std::vector<Edits> merged(utterances.size());
  ParallelFor(utterances.size(), options.threads, [&](std::size_t i) {
    Random random(MixSeed(options.seed, i));
    const Utterance utterance =
        augmented ? Augment(utterances[i], AugmentOptions{}, random) : utterances[i];
    AnnotatedAudio audio;
    if (audio.LoadAndAnnotate(utterance.samples.size(), utterance.samples.data(),
                              options.language) != 0) {
      throw std::runtime_error("cannot annotate \"" + utterance.text + "\"");
    }
    const std::string truth = PhonemesOf(utterance);
    const std::string said = WithoutPauses(audio.GetPhonemes());
    plain[i] = CountEdits(truth, said);
    merged[i] = CountEdits(RepeatsMerged(truth), RepeatsMerged(said));
  });
  Edits all;
  for (const Edits& edits : plain) all += edits;
  Print(options, augmented ? "augmented" : "clean", all);
  Edits all_merged;
  for (const Edits& edits : merged) all_merged += edits;
  Print(options, augmented ? "augmented, repeats merged" : "clean, repeats merged", all_merged);
}

void Run(const Options& options) {
  LoadEngine(options.language, options.engine);
  const std::vector<Utterance> utterances = ReadCorpora(options.corpora, options.most);
  Measure(options, utterances, false);
  Measure(options, utterances, true);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Measures annotation without a sentence on voices that training never had.");
  app.add_option("--corpus", options.corpora, "held-out corpora")->required();
  app.add_option("--name", options.name, "what the lines printed begin with");
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--resources", options.engine.resources, "folder of dictionaries and models");
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--most", options.most, "utterances of each corpus at most; 0 for all");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "evaluate-annotation: %s\n", error.what());
    return 1;
  }
  return 0;
}
