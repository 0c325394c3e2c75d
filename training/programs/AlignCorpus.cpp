// Gives a corpus the phoneme times that a frame model finds by forced alignment. Utterances whose
// own times are far from the aligned ones are left out: their text was not read as labelled.
//
//   align-corpus --model work/frame.model --corpus work/slt.raw --out work/slt.corpus

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "recognition/Models.h"
#include "signal/CWaveFrameDef.h"
#include "training/common/ParallelFor.h"
#include "training/corpus/CorpusFile.h"
#include "training/measure/ForcedAlignment.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  std::string model;
  std::string corpus;
  std::string out;
  LanguageType language = kLanguageEnglish;
  int threads = 2;
};

bool IsUnused(const PhonemeLabel& label) { return label.symbol == kUnused; }

void Run(const Options& options) {
  constexpr std::int32_t kFar = kSampleRate / 10;  // 100 ms
  const CPhonemeSet* set = PhonemeSetOf(options.language);
  if (set == nullptr) throw std::runtime_error("no such language");
  if (LoadModelFile(options.model.c_str(), RowOf(options.language).frame_model.type) < 0) {
    throw std::runtime_error("cannot load " + options.model);
  }
  std::vector<Utterance> utterances;
  CorpusReader reader(options.corpus);
  while (auto utterance = reader.Next()) {
    if (std::ranges::any_of(utterance->labels, IsUnused)) {
      throw std::runtime_error(
          options.corpus +
          " has sounds without a phoneme, which cannot be aligned: use it with "
          "its own times");
    }
    utterances.push_back(*std::move(utterance));
  }
  std::vector<char> good(utterances.size(), 0);
  std::vector<std::vector<int>> moved(utterances.size());
  ParallelFor(utterances.size(), options.threads, [&](std::size_t i) {
    const auto result = AlignToLabels(utterances[i], *set);
    if (!result) return;
    std::size_t phoneme = 0;
    std::size_t far = 0;
    for (const PhonemeLabel& label : utterances[i].labels) {
      if (label.symbol == '-') continue;
      const int distance = std::abs(result->phoneme_start[phoneme++] - label.start);
      moved[i].push_back(distance);
      far += distance > kFar;
    }
    good[i] = far * 10 <= phoneme;
    utterances[i].labels = LabelsOf(*result);
  });
  CorpusWriter writer(options.out);
  std::vector<int> distances;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < utterances.size(); ++i) {
    if (good[i] == 0) continue;
    writer.Write(utterances[i]);
    distances.insert(distances.end(), moved[i].begin(), moved[i].end());
    ++kept;
  }
  if (distances.empty()) throw std::runtime_error("nothing in " + options.corpus + " aligns");
  writer.Close();
  const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
  std::nth_element(distances.begin(), middle, distances.end());
  std::printf("%s: kept %zu of %zu utterances; starts moved by %.1f ms (median)\n",
              options.out.c_str(), kept, utterances.size(), 1000.0 * *middle / kSampleRate);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Gives a corpus the phoneme times of forced alignment.");
  app.add_option("--model", options.model, "frame model")->required();
  app.add_option("--corpus", options.corpus, "corpus to read")->required();
  app.add_option("--out", options.out, "corpus to write")->required();
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--threads", options.threads, "threads to work on");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "align-corpus: %s\n", error.what());
    return 1;
  }
  return 0;
}
