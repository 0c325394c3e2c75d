// Measures the utterance-goodness model on voices and sentences that training never had: how well
// its probability tells right readings from each kind of wrong one, and what is left of the scores
// of either. One line a measure; every recording is synthesised.
//
//   evaluate-goodness --language 1 --corpus work/en/held.corpus --foreign work/zh/held.corpus
//       --name "held-out espeak"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "grading/TotalScore.h"
#include "training/common/ParallelFor.h"
#include "training/engine/Engine.h"
#include "training/goodness/Judgement.h"
#include "training/goodness/Readings.h"
#include "training/measure/Scores.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> corpora;
  std::vector<std::string> foreign;
  EngineFiles engine;
  std::string name = "test";
  int language = kLanguageEnglish;
  int threads = 1;
  std::size_t most = 0;
  std::uint64_t seed = 7;
};

struct Outcome {
  std::vector<double> probabilities;  // of those that were aligned
  int not_aligned = 0;
};

Outcome Measure(const Options& options, const std::vector<Utterance>& utterances,
                const ReadingMaker& maker, ReadingKind kind) {
  const auto language = static_cast<LanguageType>(options.language);
  std::vector<std::optional<Judgement>> judgements(utterances.size());
  ParallelFor(utterances.size(), options.threads, [&](std::size_t i) {
    Random random(MixSeed(options.seed + static_cast<std::uint64_t>(kind), i));
    std::vector<std::int32_t> starts;
    if (kind == ReadingKind::kRightWithPauses) starts = WordStarts(language, utterances[i]);
    judgements[i] = Judge(language, maker.Make(i, kind, AugmentOptions{}, random, starts));
  });
  Outcome outcome;
  for (const auto& judgement : judgements) {
    if (judgement) {
      outcome.probabilities.push_back(judgement->probability);
    } else {
      ++outcome.not_aligned;
    }
  }
  return outcome;
}

void Run(const Options& options) {
  const auto language = static_cast<LanguageType>(options.language);
  LoadEngine(language, options.engine);
  std::vector<Utterance> utterances = ReadCorpora(options.corpora, options.most);
  std::erase_if(utterances,
                [&](const Utterance& one) { return !KnowsAllWords(language, one.text); });
  const std::vector<Utterance> foreign = ReadCorpora(options.foreign, 400);
  const ReadingMaker maker(*PhonemeSetOf(language), utterances, foreign);
  std::vector<double> right;
  for (const ReadingKind kind : kReadingKinds) {
    if (kind == ReadingKind::kOtherLanguage && !maker.HasForeign()) continue;
    const Outcome outcome = Measure(options, utterances, maker, kind);
    std::vector<double> factors;
    for (const double p : outcome.probabilities) factors.push_back(GoodnessFactor(p));
    std::printf("%s | goodness, %s | ", options.name.c_str(), std::string(NameOf(kind)).c_str());
    if (kind == ReadingKind::kRight || kind == ReadingKind::kRightWithPauses) {
      right.insert(right.end(), outcome.probabilities.begin(), outcome.probabilities.end());
    } else if (!IsReading(kind)) {
      std::printf("area under curve %.4f | ", AreaUnderCurve(right, outcome.probabilities));
    }
    std::printf("factor: median %.3f, tenth percentile %.3f, ninetieth %.3f | %zu readings",
                Median(factors), Percentile(factors, 10.0), Percentile(factors, 90.0),
                factors.size());
    if (outcome.not_aligned > 0) std::printf(", %d could not be aligned", outcome.not_aligned);
    std::printf("\n");
    std::fflush(stdout);
  }
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Measures the utterance-goodness model on voices that training never had.");
  app.add_option("--corpus", options.corpora, "held-out corpora")->required();
  app.add_option("--foreign", options.foreign, "held-out corpora of other languages");
  app.add_option("--name", options.name, "what the lines printed begin with");
  app.add_option("--language", options.language, "1 English, 2 Chinese, 3 Japanese");
  app.add_option("--resources", options.engine.resources, "folder of dictionaries and models");
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--most", options.most, "utterances of each corpus at most; 0 for all");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "evaluate-goodness: %s\n", error.what());
    return 1;
  }
  return 0;
}
