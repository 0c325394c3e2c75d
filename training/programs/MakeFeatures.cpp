// Augments a corpus and computes the engine's features of it, with phoneme segments by frame.
//
//   make-features --corpus work/a.corpus --copies 2 --warp-low 0.88 --seed 1 --out work/a.features
//   make-features --corpus work/rms.corpus --degrade --morph 3 --pieces 0.3 --paragraphs 0.1
//       --babble work/ked.corpus --seed 2 --out work/rms.features
//
// The same arguments give the same files, whatever the number of threads.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Messages.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/Dictionaries.h"
#include "signal/CWaveFrameDef.h"
#include "training/augment/Augment.h"
#include "training/augment/Morph.h"
#include "training/augment/Pieces.h"
#include "training/augment/WordPlaces.h"
#include "training/common/ParallelFor.h"
#include "training/corpus/CorpusFile.h"
#include "training/engine/Engine.h"
#include "training/features/FeatureFile.h"
#include "training/features/UtteranceFeatures.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> corpora;
  std::vector<std::string> babble;
  std::string out;
  std::string resources = "resources/";
  int copies = 1;
  int morphs = 0;
  double pieces = 0.0;
  double paragraphs = 0.0;
  int threads = 2;
  LanguageType language = kLanguageEnglish;
  std::uint64_t seed = 1;
  bool clean = false;
  bool degrade = false;
  double warp_low = AugmentOptions().warp_low;
  double warp_high = AugmentOptions().warp_high;
};

// Those who may babble: of each corpus the first ones, which are many voices where it has them.
std::vector<Utterance> ReadBabblers(const Options& options) {
  constexpr std::size_t kMost = 200;
  if (!options.degrade) return {};
  return ReadCorpora(options.babble.empty() ? options.corpora : options.babble, kMost);
}

std::shared_ptr<const VeralDictionary> LoadDictionary(const Options& options) {
  const auto language = options.language;
  SetMessageHandler([](MessageStream, std::string_view) {});  // words that it lacks are counted
  LoadDictionaries((std::filesystem::path(options.resources) / "").c_str());
  auto dictionary = DictionaryOf(language);
  if (!dictionary || dictionary->GetWordCount() == 0) {
    throw std::runtime_error("no " + NameOfLanguage(language) + " dictionary in " +
                             options.resources);
  }
  return dictionary;
}

// One recording of a chunk, as it is or by a virtual speaker, that is to become features.
struct Job {
  std::size_t source;
  bool morph;
  std::uint64_t seed;
};

class Maker {
 public:
  Maker(const Options& options, const CPhonemeSet& set)
      : m_options(options), m_set(set), m_babblers(ReadBabblers(options)) {
    if (options.degrade) m_augment = WideAugmentation(m_babblers);
    m_augment.warp_low = options.warp_low;
    m_augment.warp_high = options.warp_high;
    if (options.pieces > 0.0) m_dictionary = LoadDictionary(options);
  }
  Maker(const Maker&) = delete;
  Maker& operator=(const Maker&) = delete;

  // The whole recording first, whatever is made of it besides: it is the same without.
  std::vector<UtteranceFeatures> Make(std::span<const Utterance> chunk, const Job& job) {
    Random random(job.seed);
    const VirtualSpeaker speaker = job.morph ? DrawVirtualSpeaker(random) : VirtualSpeaker{};
    const auto spoken = [&](Utterance utterance) {
      return job.morph ? Morph(utterance, speaker) : utterance;
    };
    const Utterance whole = spoken(chunk[job.source]);
    std::vector<UtteranceFeatures> features;
    const auto add = [&](const Utterance& utterance) {
      features.push_back(
          FeaturesOf(m_options.clean ? utterance : Augment(utterance, m_augment, random), m_set));
    };
    add(whole);
    if (m_options.pieces > 0.0 && random.Chance(m_options.pieces)) {
      std::vector<WordPlace> words = WordPlacesOf(whole, *m_dictionary);
      ++m_cut;
      if (words.empty()) {
        ++m_without_words;
        words = WordlikePlaces(whole, random);
      }
      for (const Utterance& piece : CutIntoPieces(whole, words, {}, random)) add(piece);
    }
    if (m_options.paragraphs > 0.0 && random.Chance(m_options.paragraphs)) {
      // 40 to 500 phonemes, short ones as often as long ones.
      const auto most = static_cast<std::size_t>(40.0 * std::pow(12.5, random.Uniform()));
      const Utterance paragraph = Paragraph(chunk, job.source, most, random);
      if (paragraph.text != whole.text) add(spoken(paragraph));
    }
    return features;
  }

  int Cut() const { return m_cut; }
  int WithoutWords() const { return m_without_words; }

 private:
  const Options& m_options;
  const CPhonemeSet& m_set;
  std::vector<Utterance> m_babblers;
  AugmentOptions m_augment;
  std::shared_ptr<const VeralDictionary> m_dictionary;
  std::atomic<int> m_cut = 0;
  std::atomic<int> m_without_words = 0;
};

void Run(const Options& options) {
  constexpr std::size_t kChunk = 128;  // recordings worked on together, and joined to paragraphs
  const CPhonemeSet* set = PhonemeSetOf(options.language);
  if (set == nullptr) throw std::runtime_error("no such language");
  Maker maker(options, *set);
  FeatureWriter writer(options.out);
  // Virtual speakers count apart, so that everything else is the same without them.
  const std::uint64_t morph_seed = MixSeed(options.seed, ~std::uint64_t{0});
  std::uint64_t number = 0;
  std::uint64_t morph_number = 0;
  std::uint64_t made = 0;
  for (const std::string& path : options.corpora) {
    CorpusReader reader(path);
    for (bool more = true; more;) {
      std::vector<Utterance> chunk;
      std::vector<Job> jobs;
      while (more && chunk.size() < kChunk) {
        auto utterance = reader.Next();
        more = utterance.has_value();
        if (!more) break;
        for (int copy = 0; copy < std::max(options.copies, 1); ++copy) {
          jobs.push_back({chunk.size(), false, MixSeed(options.seed, number++)});
        }
        for (int morph = 0; morph < options.morphs; ++morph) {
          jobs.push_back({chunk.size(), true, MixSeed(morph_seed, morph_number++)});
        }
        chunk.push_back(*std::move(utterance));
      }
      std::vector<std::vector<UtteranceFeatures>> features(jobs.size());
      ParallelFor(jobs.size(), options.threads,
                  [&](std::size_t i) { features[i] = maker.Make(chunk, jobs[i]); });
      for (const auto& of_job : features) {
        for (const UtteranceFeatures& one : of_job) {
          if (!one.segments.empty()) writer.Write(one.mfcc, one.segments);
        }
        made += of_job.size();
      }
    }
  }
  writer.Close();
  std::printf("%s: %llu utterances, %.2f h\n", options.out.c_str(),
              static_cast<unsigned long long>(made),
              static_cast<double>(writer.NumFrames()) * kFrameShift / kSampleRate / 3600);
  if (options.pieces > 0.0) {
    std::printf("%d recordings cut into pieces, the words of %d not found\n", maker.Cut(),
                maker.WithoutWords());
  }
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
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--seed", options.seed, "a different one, different augmentations");
  app.add_option("--warp-low", options.warp_low, "shortest length factor");
  app.add_option("--warp-high", options.warp_high, "longest length factor");
  auto* clean = app.add_flag("--clean", options.clean, "no augmentation at all");
  auto* degrade = app.add_flag("--degrade", options.degrade,
                               "children, tempo, rooms, babble, hum, clipping, telephones, codecs, "
                               "short and long pauses at the edges, levels, too");
  degrade->excludes(clean);
  app.add_option("--babble", options.babble, "corpora of those who babble; else --corpus itself")
      ->needs(degrade);
  app.add_option("--morph", options.morphs, "of each utterance so many more by virtual speakers")
      ->check(CLI::NonNegativeNumber);
  app.add_option("--pieces", options.pieces,
                 "share of the recordings that are also cut into pieces of one to three words; of "
                 "stretches of 3 to 7 phonemes where the dictionary lacks them")
      ->check(CLI::Range(0.0, 1.0));
  app.add_option("--paragraphs", options.paragraphs,
                 "share of the recordings that are also joined to others of their voice")
      ->check(CLI::Range(0.0, 1.0));
  app.add_option("--resources", options.resources, "folder of the dictionary, for --pieces");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-features: %s\n", error.what());
    return 1;
  }
  return 0;
}
