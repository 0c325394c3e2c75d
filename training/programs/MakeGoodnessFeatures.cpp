// Examples for the utterance-goodness model: recordings with sentences of which a known share is
// read otherwise than it stands there, each as the 16 features that the engine gives its
// classifier, with the probability that the classifier should answer (goodness/Readings.h).
//
//   make-goodness-features --language 1 --corpus work/en/goodness1.corpus
//       --foreign work/zh/goodness.corpus --count 8000 --seed 31 --out work/en/goodness.vectors
//
// The same arguments give the same file, whatever the number of threads.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "training/augment/Augment.h"
#include "training/common/ParallelFor.h"
#include "training/engine/Engine.h"
#include "training/features/VectorFile.h"
#include "training/goodness/Judgement.h"
#include "training/goodness/Readings.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> corpora;
  std::vector<std::string> foreign;
  std::string out;
  EngineFiles engine{.resources = "resources/", .goodness = false};
  LanguageType language = kLanguageEnglish;
  int count = 0;
  std::size_t most = 0;
  int threads = 1;
  std::uint64_t seed = 1;
};

// How often each kind comes, in hundredths. Right readings come nearly twice as often as all the
// rest: where a bad recording leaves doubt, a low probability takes a learner's scores away.
constexpr std::array<std::pair<ReadingKind, int>, 18> kShares = {{
    {ReadingKind::kRight, 38},
    {ReadingKind::kRightWithPauses, 10},
    {ReadingKind::kTrimmed, 8},
    {ReadingKind::kMispronounced, 7},
    {ReadingKind::kReplaced, 11},
    {ReadingKind::kOmitted, 5},
    {ReadingKind::kInserted, 3},
    {ReadingKind::kSwapped, 3},
    {ReadingKind::kCutOff, 3},
    {ReadingKind::kBegunLate, 1},
    {ReadingKind::kRepeated, 1},
    {ReadingKind::kSpeechBefore, 1},
    {ReadingKind::kSpeechAfter, 1},
    {ReadingKind::kOtherSentence, 4},
    {ReadingKind::kOtherLanguage, 1},
    {ReadingKind::kSilence, 1},
    {ReadingKind::kNoise, 1},
    {ReadingKind::kTones, 1},
}};

ReadingKind DrawKind(Random& random) {
  int place = random.Between(0, 99);
  for (const auto& [kind, share] : kShares) {
    if (place < share) return kind;
    place -= share;
  }
  return ReadingKind::kRight;
}

// From one word to as many as the longest passage has, short and long ones alike: half as many
// words, twice as often.
int DrawWords(double longest, Random& random) {
  return static_cast<int>(std::lround(std::exp(random.Uniform(0.0, std::log(longest)))));
}

// A fifth of the recordings are clean, as the models like them best; the others are what people's
// rooms and phones make of them, half of those besides from vocal tracts and dull microphones
// beyond what the frame and phoneme models heard: their own training voices look too good to them.
AugmentOptions DrawAugmentation(std::span<const Utterance> others, Random& random) {
  const double place = random.Uniform();
  if (place < 0.2) {
    return {.warp_chance = 0.3,
            .reverb_chance = 0.0,
            .low_pass_chance = 0.2,
            .telephone_chance = 0.0,
            .noise_chance = 0.2,
            .equaliser_db = 1.5,
            .noise_low_db = 25.0,
            .level_range_db = 45.0,
            .edges_chance = 0.5};
  }
  AugmentOptions options = WideAugmentation(others);
  if (place < 0.6) return options;
  options.warp_low = 0.72;
  options.warp_high = 1.25;
  options.warp_chance = 1.0;
  options.telephone_chance = 0.2;
  options.equaliser_db = 6.5;
  return options;
}

struct Example {
  ReadingKind kind = ReadingKind::kRight;
  double wrong = 0.0;
  std::optional<Judgement> judgement;
};

Example MakeExample(LanguageType language, const ReadingMaker& maker, const PassageDrawer& drawer,
                    std::span<const Utterance> others, double longest, Random& random) {
  Example example;
  example.kind = DrawKind(random);
  if (example.kind == ReadingKind::kOtherLanguage && !maker.HasForeign()) {
    example.kind = ReadingKind::kOtherSentence;
  }
  Passage passage = drawer.Draw(DrawWords(longest, random), random);
  const bool needs_two =
      example.kind == ReadingKind::kInserted || example.kind == ReadingKind::kSwapped;
  if (needs_two && passage.words.size() < 2) example.kind = ReadingKind::kReplaced;
  const Reading reading = maker.Make(passage, example.kind, random.Uniform(), random);
  example.wrong = reading.wrong;
  const Utterance clean = RecordingOf(reading, example.kind, passage.voice);
  example.judgement = Judge(language, reading.sentence,
                            Augment(clean, DrawAugmentation(others, random), random).samples);
  return example;
}

void Report(const Options& options, std::span<const Example> examples, std::size_t recordings) {
  std::map<ReadingKind, std::pair<int, int>> counts;  // made, not aligned
  for (const Example& example : examples) {
    auto& [made, not_aligned] = counts[example.kind];
    ++made;
    not_aligned += !example.judgement;
  }
  std::printf("%s: %zu examples of %zu recordings\n", options.out.c_str(), examples.size(),
              recordings);
  for (const auto& [kind, count] : counts) {
    std::printf("  %s: %d, of which %d could not be aligned\n", std::string(NameOf(kind)).c_str(),
                count.first, count.second);
  }
}

void Run(const Options& options) {
  const auto language = options.language;
  LoadEngine(language, options.engine);
  std::vector<Utterance> utterances = ReadCorpora(options.corpora, options.most);
  const std::vector<Passage> recordings = PassagesOf(language, utterances, options.threads);
  const std::vector<Utterance> foreign = ReadCorpora(options.foreign, 400);
  const PassageDrawer drawer(recordings);
  const ReadingMaker maker(*PhonemeSetOf(language), drawer, foreign);
  // Any of them may babble.
  Random shuffle(MixSeed(options.seed, 0));
  shuffle.Shuffle(std::span(utterances));
  utterances.resize(std::min<std::size_t>(utterances.size(), 300));
  const double longest = drawer.WordsOf(PassageDrawer::kMostPhonemes);

  std::vector<Example> examples(static_cast<std::size_t>(options.count));
  ParallelFor(examples.size(), options.threads, [&](std::size_t i) {
    Random random(MixSeed(options.seed, i + 1));
    examples[i] = MakeExample(language, maker, drawer, utterances, longest, random);
  });

  VectorWriter writer(options.out, kGoodnessFeatureCount, 2);
  for (const Example& example : examples) {
    if (!example.judgement) continue;
    const auto good = static_cast<float>(WantedProbability(example.wrong));
    const std::vector<float> row(example.judgement->features.begin(),
                                 example.judgement->features.end());
    writer.Write(row, std::array{good, 1.0f - good});
  }
  writer.Close();
  Report(options, examples, recordings.size());
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
  app.add_option("--most", options.most, "utterances of each corpus at most; 0 for all");
  veral3::training::AddLanguageOption(app, options.language);
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
