// Speaks Chinese sentences with espeak-ng and computes the engine's tone features of every
// syllable, as spoken and as other speakers might have said it, with the tone that was spoken.
//
//   make-tone-features --words resources/KCN-UTF8Order.txt --count 4000 --copies 4 --seed 1
//       --out work/tone.vectors
//   train-network --kind vector --features work/tone.vectors ...
//
// The same arguments give the same file, whatever the number of threads.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "training/augment/Augment.h"
#include "training/common/ParallelFor.h"
#include "training/corpus/ChineseTexts.h"
#include "training/corpus/ChineseVoices.h"
#include "training/features/ToneExamples.h"
#include "training/features/VectorFile.h"

namespace veral3::training {
namespace {

struct Options {
  std::string words;
  std::string out;
  int count = 0;
  int copies = 1;  // warped ones, of each utterance
  bool held_out = false;
  int threads = 1;
  std::uint64_t seed = 1;
  double noisy = 0.5;  // chance of rooms, microphones and noise
};

// The examples of one utterance: as recorded, and warped.
std::vector<ToneExample> ExamplesOf(const Utterance& utterance, const Options& options,
                                    Random& random) {
  AugmentOptions augment;
  augment.warp_low = 0.7;  // pitch moves with the length
  augment.warp_high = 1.3;
  const bool noisy = random.Chance(options.noisy);
  const Utterance recorded = noisy ? Augment(utterance, augment, random) : utterance;
  ToneTrack track = ToneTrackOf(recorded);
  track.lost = FallBelowTracker(DeepTrackOf(recorded));
  std::vector<ToneExample> examples = ToneExamplesOf(track, utterance.spoken_tones);
  for (int copy = 0; copy < options.copies; ++copy) {
    const auto warped = ToneExamplesOf(WarpTrack(track, random), utterance.spoken_tones);
    examples.insert(examples.end(), warped.begin(), warped.end());
  }
  return examples;
}

void Run(const Options& options) {
  constexpr int kChunk = 64;  // utterances worked on together
  VectorWriter writer(options.out, kToneFeatureCount, kToneClassCount);
  const ChineseTexts texts(options.words);
  EspeakSpeech espeak;
  for (int first = 0; first < options.count; first += kChunk) {
    std::vector<Utterance> utterances;
    for (int i = first; i < std::min(first + kChunk, options.count); ++i) {
      Random random(MixSeed(options.seed, static_cast<std::uint64_t>(i)));
      const EspeakVoice voice = DrawToneVoice(random, options.held_out);
      const ChineseSentence sentence =
          options.held_out ? texts.DrawHeldOut(random) : texts.Draw(random);
      utterances.push_back(SpeakChinese(espeak, voice, sentence));
    }
    std::vector<std::vector<ToneExample>> examples(utterances.size());
    ParallelFor(utterances.size(), options.threads, [&](std::size_t i) {
      Random random(MixSeed(options.seed + 1, static_cast<std::uint64_t>(first) + i));
      examples[i] = ExamplesOf(utterances[i], options, random);
    });
    for (const auto& of_utterance : examples) {
      for (const ToneExample& example : of_utterance) {
        const std::vector<float> row(example.features.begin(), example.features.end());
        writer.Write(row, example.tone_class);
      }
    }
  }
  writer.Close();
  std::printf("%s: %d utterances, %zu examples\n", options.out.c_str(), options.count,
              writer.NumExamples());
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Speaks Chinese sentences and computes their tone features.");
  app.add_option("--words", options.words, "Chinese dictionary")->required();
  app.add_option("--count", options.count, "utterances")->required();
  app.add_option("--out", options.out, "file of vectors to write")->required();
  app.add_option("--copies", options.copies, "warped copies of each utterance");
  app.add_flag("--held-out", options.held_out, "voices and sentences that training never has");
  app.add_option("--noisy", options.noisy, "chance of rooms, microphones and noise");
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--seed", options.seed, "a different one, different copies");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-tone-features: %s\n", error.what());
    return 1;
  }
  return 0;
}
