// Examples for the utterance-goodness model: recordings with sentences that they are, or are not, a
// reading of, each as the 16 features that the engine gives its classifier. Class 0 is a
// reading, well or badly pronounced, 1 is none.
//
//   make-goodness-features --language 1 --corpus work/en/goodness1.corpus
//       --foreign work/zh/goodness.corpus --count 8000 --seed 31 --out work/en/goodness.vectors
//
// The same arguments give the same file, whatever the number of threads.

#include <CLI/CLI.hpp>
#include <array>
#include <cstdio>
#include <exception>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "training/common/ParallelFor.h"
#include "training/engine/Engine.h"
#include "training/features/VectorFile.h"
#include "training/goodness/Judgement.h"
#include "training/goodness/Readings.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> corpora;
  std::vector<std::string> foreign;
  std::string out;
  EngineFiles engine{.resources = "resources/", .goodness = false};
  int language = kLanguageEnglish;
  int count = 0;
  int threads = 1;
  std::uint64_t seed = 1;
};

// How often each kind comes, in hundredths. Readings come nearly twice as often as the rest, and
// badly pronounced ones among them: a low probability takes a learner's scores away.
constexpr std::array<std::pair<ReadingKind, int>, 13> kShares = {{
    {ReadingKind::kRight, 36},
    {ReadingKind::kRightWithPauses, 14},
    {ReadingKind::kMispronounced, 14},
    {ReadingKind::kOtherSentence, 10},
    {ReadingKind::kWordsChanged, 6},
    {ReadingKind::kCutOff, 5},
    {ReadingKind::kRepeated, 3},
    {ReadingKind::kSpeechBefore, 4},
    {ReadingKind::kSpeechAfter, 4},
    {ReadingKind::kSilence, 1},
    {ReadingKind::kNoise, 1},
    {ReadingKind::kTones, 1},
    {ReadingKind::kOtherLanguage, 1},
}};

// Half of the recordings are further from what the models have heard than any of those were: other
// vocal tracts and duller microphones, as people will have.
AugmentOptions DrawAugmentation(Random& random) {
  if (random.Chance(0.5)) return {};
  return {.warp_low = 0.72,
          .warp_high = 1.25,
          .warp_chance = 1.0,
          .reverb_chance = 0.6,
          .telephone_chance = 0.35,
          .noise_chance = 0.9,
          .equaliser_db = 6.5};
}

ReadingKind DrawKind(Random& random, bool has_foreign) {
  int place = random.Between(0, 99);
  for (const auto& [kind, share] : kShares) {
    if (place < share) {
      return kind == ReadingKind::kOtherLanguage && !has_foreign ? ReadingKind::kOtherSentence
                                                                 : kind;
    }
    place -= share;
  }
  return ReadingKind::kRight;
}

struct Example {
  ReadingKind kind = ReadingKind::kRight;
  std::optional<Judgement> judgement;
};

void Run(const Options& options) {
  const auto language = static_cast<LanguageType>(options.language);
  LoadEngine(language, options.engine);
  std::vector<Utterance> utterances = ReadCorpora(options.corpora);
  const auto unknown = std::erase_if(
      utterances, [&](const Utterance& one) { return !KnowsAllWords(language, one.text); });
  const std::vector<Utterance> foreign = ReadCorpora(options.foreign);
  const ReadingMaker maker(*PhonemeSetOf(language), utterances, foreign);

  std::vector<Example> examples(static_cast<std::size_t>(options.count));
  ParallelFor(examples.size(), options.threads, [&](std::size_t i) {
    Random random(MixSeed(options.seed, i));
    const std::size_t number = i % utterances.size();
    Example& example = examples[i];
    example.kind = DrawKind(random, maker.HasForeign());
    std::vector<std::int32_t> starts;
    if (example.kind == ReadingKind::kRightWithPauses) {
      starts = WordStarts(language, utterances[number]);
    }
    const AugmentOptions augment = DrawAugmentation(random);
    example.judgement = Judge(language, maker.Make(number, example.kind, augment, random, starts));
  });

  VectorWriter writer(options.out, kGoodnessFeatureCount, 2);
  std::map<ReadingKind, std::pair<int, int>> counts;  // made, not aligned
  for (const Example& example : examples) {
    auto& [made, not_aligned] = counts[example.kind];
    ++made;
    if (!example.judgement) {
      ++not_aligned;
      continue;
    }
    const std::vector<float> row(example.judgement->features.begin(),
                                 example.judgement->features.end());
    writer.Write(row, IsReading(example.kind) ? 0 : 1);
  }
  writer.Close();
  std::printf("%s: %zu examples of %zu utterances (%zu with unknown words left out)\n",
              options.out.c_str(), writer.NumExamples(), utterances.size(), unknown);
  for (const auto& [kind, count] : counts) {
    std::printf("  %s: %d, of which %d could not be aligned\n", std::string(NameOf(kind)).c_str(),
                count.first, count.second);
  }
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Makes examples for the utterance-goodness model.");
  app.add_option("--corpus", options.corpora, "corpora whose sentences are read")->required();
  app.add_option("--foreign", options.foreign, "corpora of other languages");
  app.add_option("--out", options.out, "file of examples to write")->required();
  app.add_option("--count", options.count, "examples")->required();
  app.add_option("--language", options.language, "1 English, 2 Chinese, 3 Japanese");
  app.add_option("--resources", options.engine.resources, "folder of dictionaries and models");
  app.add_option("--seed", options.seed, "a different one, different examples");
  app.add_option("--threads", options.threads, "threads to work on");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-goodness-features: %s\n", error.what());
    return 1;
  }
  return 0;
}
