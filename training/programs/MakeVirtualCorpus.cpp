// Has every utterance of a corpus said by a virtual speaker of its own (augment/Morph.h): for
// measuring, where a language has too few synthesisers to leave one out.
//
//   make-virtual-corpus --corpus work/zh/held.corpus --seed 93 --out work/zh/held-virtual.corpus

#include <CLI/CLI.hpp>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "training/augment/Morph.h"
#include "training/common/ParallelFor.h"
#include "training/corpus/CorpusFile.h"

namespace veral3::training {
namespace {

struct Options {
  std::string corpus;
  std::string out;
  int threads = 2;
  std::uint64_t seed = 1;
};

void Run(const Options& options) {
  std::vector<Utterance> utterances;
  CorpusReader reader(options.corpus);
  while (auto utterance = reader.Next()) utterances.push_back(*std::move(utterance));
  if (utterances.empty()) throw std::runtime_error(options.corpus + " is empty");
  ParallelFor(utterances.size(), options.threads, [&](std::size_t i) {
    Random random(MixSeed(options.seed, i));
    utterances[i] = Morph(utterances[i], DrawVirtualSpeaker(random));
    utterances[i].voice += ", virtual speaker";
  });
  CorpusWriter writer(options.out);
  for (const Utterance& utterance : utterances) writer.Write(utterance);
  writer.Close();
  std::printf("%s: %zu utterances\n", options.out.c_str(), utterances.size());
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Has every utterance of a corpus said by a virtual speaker of its own.");
  app.add_option("--corpus", options.corpus, "corpus to read")->required();
  app.add_option("--out", options.out, "corpus to write")->required();
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--seed", options.seed, "a different one, different speakers");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-virtual-corpus: %s\n", error.what());
    return 1;
  }
  return 0;
}
