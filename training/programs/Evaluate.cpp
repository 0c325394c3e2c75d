// Measures models on voices and sentences that training never had, and prints one line a measure.
// Every recording is synthesised.
//
//   evaluate-models --frame-model resources/EnglishFrame.model --dictionary resources/KEN-...txt
//       --corpus work/held.corpus --name "held-out espeak"
//
// With --strong, what is called augmented is worse than anything in training: how well does it
// hold?

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "common/Messages.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/FrameScores.h"
#include "recognition/Models.h"
#include "recognition/VeralDictionary.h"
#include "signal/CWaveFrameDef.h"
#include "signal/Mfcc.h"
#include "training/augment/Augment.h"
#include "training/common/ParallelFor.h"
#include "training/corpus/CorpusFile.h"
#include "training/corpus/HeldOutTexts.h"
#include "training/features/UtteranceFeatures.h"
#include "training/measure/ForcedAlignment.h"
#include "training/measure/PhonemeScores.h"
#include "training/measure/Scores.h"
#include "training/measure/SentenceChoice.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  std::string frame_model;
  std::string phoneme_model;
  std::string dictionary;
  std::string corpus;
  std::string name = "test";
  LanguageType language = kLanguageEnglish;
  int threads = 2;
  int trials = 80;       // of sentence choice
  std::size_t most = 0;  // utterances; 0 for all
  std::uint64_t seed = 5;
  bool strong = false;
};

class Evaluation {
 public:
  Evaluation(const Options& options, const CPhonemeSet& set) : m_options(options), m_set(set) {
    CorpusReader reader(options.corpus);
    while (auto utterance = reader.Next()) {
      if (options.most > 0 && m_clean.size() == options.most) break;
      Random random(MixSeed(options.seed, m_clean.size()));
      const AugmentOptions augment =
          options.strong ? StrongAugmentation(m_clean.size()) : AugmentOptions{};
      m_augmented.push_back(Augment(*utterance, augment, random));
      m_clean.push_back(*std::move(utterance));
    }
  }

  // How many frames have their phoneme on top, by the sum of its states.
  void Frames() const {
    ClassCounts all(m_set.GetSize());
    ClassCounts speech(m_set.GetSize());
    std::mutex lock;
    ParallelFor(m_augmented.size(), m_options.threads, [&](std::size_t i) {
      const UtteranceFeatures features = FeaturesOf(m_augmented[i], m_set);
      const int num_frames = NumFrames(static_cast<std::uint32_t>(m_augmented[i].samples.size()));
      const auto columns = static_cast<std::size_t>(m_set.GetSize()) * 3;
      std::vector<double> scores(static_cast<std::size_t>(num_frames) * columns);
      if (ComputeFrameScores(m_set, features.mfcc, scores) < 0) return;
      std::vector<std::uint8_t> labels(static_cast<std::size_t>(num_frames));
      StateLabels(features.segments, num_frames, m_set.GetPhonemeIndex('-'), {}, labels);
      ClassCounts own(m_set.GetSize());
      ClassCounts own_speech(m_set.GetSize());
      for (std::size_t t = 0; t < labels.size(); ++t) {
        if (labels[t] == kUnusedState) continue;
        const auto sums = PhonemeSums(std::span(scores).subspan(t * columns, columns));
        own.Add(labels[t] / 3, sums);
        if (labels[t] / 3 != m_set.GetPhonemeIndex('-')) own_speech.Add(labels[t] / 3, sums);
      }
      const std::lock_guard guard(lock);
      all.Merge(own);
      speech.Merge(own_speech);
    });
    Print("frame phoneme accuracy, " + Kind(true), all, "frames");
    Print("the same without pauses", speech, "frames");
  }

  // Phonemes aligned to their own labels: which has the highest mean posterior over its frames.
  void AlignedPhonemes(bool augmented) const {
    const std::vector<Utterance>& utterances = augmented ? m_augmented : m_clean;
    ClassCounts counts(m_set.GetSize());
    std::mutex lock;
    ParallelFor(utterances.size(), m_options.threads, [&](std::size_t i) {
      const auto result = AlignToLabels(utterances[i], m_set);
      if (!result) return;
      ClassCounts own(m_set.GetSize());
      for (std::size_t p = 0; p < result->phonemes.size(); ++p) {
        std::vector<double> mean(static_cast<std::size_t>(m_set.GetSize()), 0.0);
        for (int t = FrameOfSample(result->phoneme_start[p]);
             t < FrameOfSample(result->phoneme_end[p]); ++t) {
          const auto sums = PhonemeSums(result->FrameScores(t));
          for (std::size_t c = 0; c < mean.size(); ++c) mean[c] += sums[c];
        }
        own.Add(m_set.GetPhonemeIndex(result->phonemes[p]), mean);
      }
      const std::lock_guard guard(lock);
      counts.Merge(own);
    });
    Print("aligned phonemes by frames, " + Kind(augmented), counts, "phonemes");
  }

  // The phoneme classifier on phonemes aligned to their own labels.
  void ClassifiedPhonemes(bool augmented) const {
    const std::vector<Utterance>& utterances = augmented ? m_augmented : m_clean;
    ClassCounts counts(m_set.GetSize());
    std::mutex lock;
    ParallelFor(utterances.size(), m_options.threads, [&](std::size_t i) {
      const auto result = AlignToLabels(utterances[i], m_set);
      if (!result) return;
      ClassCounts own(m_set.GetSize());
      for (std::size_t p = 0; p < result->phonemes.size(); ++p) {
        own.Add(m_set.GetPhonemeIndex(result->phonemes[p]), PhonemeDistribution(m_set, *result, p));
      }
      const std::lock_guard guard(lock);
      counts.Merge(own);
    });
    Print("aligned phonemes by the phoneme model, " + Kind(augmented), counts, "phonemes");
  }

  // Every sixth phoneme or so is said to be another of its kind, and the recording is aligned to
  // that: how well do phoneme scores tell those from the right ones, and how many right ones score
  // under 60?
  void Substitutions(bool augmented) const {
    const std::vector<Utterance>& utterances = augmented ? m_augmented : m_clean;
    std::vector<double> right;
    std::vector<double> wrong;
    std::mutex lock;
    ParallelFor(utterances.size(), m_options.threads, [&](std::size_t i) {
      Random random(MixSeed(m_options.seed + 2000, i));
      const auto [changed, is_changed] = WithSubstitutions(m_set, utterances[i], random);
      const auto result = AlignToLabels(changed, m_set);
      if (!result) return;
      const std::lock_guard guard(lock);
      for (std::size_t p = 0; p < is_changed.size(); ++p) {
        const bool beside_changed =
            (p > 0 && is_changed[p - 1]) || (p + 1 < is_changed.size() && is_changed[p + 1]);
        if (beside_changed) continue;
        (is_changed[p] ? wrong : right).push_back(Score(*result, p));
      }
    });
    const auto alarms = std::ranges::count_if(right, [](double s) { return s < 60.0; });
    std::printf(
        "%s | substituted phonemes, %s | area under curve %.4f | right ones under 60 %.4f | "
        "%zu right, %zu wrong\n",
        m_options.name.c_str(), Kind(augmented).c_str(), AreaUnderCurve(right, wrong),
        static_cast<double>(alarms) / static_cast<double>(right.size()), right.size(),
        wrong.size());
  }

  // How far aligned phoneme starts are from the true ones, without augmentation.
  void Boundaries() const {
    std::vector<double> late;
    std::mutex lock;
    ParallelFor(m_clean.size(), m_options.threads, [&](std::size_t i) {
      const auto result = AlignToLabels(m_clean[i], m_set);
      if (!result) return;
      std::size_t phoneme = 0;
      const std::lock_guard guard(lock);
      for (const PhonemeLabel& label : m_clean[i].labels) {
        if (label.symbol == '-') continue;
        late.push_back(1000.0 * (result->phoneme_start[phoneme++] - label.start) / kSampleRate);
      }
    });
    std::vector<double> distances;
    for (const double one : late) distances.push_back(std::abs(one));
    const auto near = std::ranges::count_if(distances, [](double d) { return d <= 20.0; });
    std::printf(
        "%s | boundaries, clean | within 20 ms %.4f | median %.2f ms, late by %.2f ms | "
        "%zu phonemes\n",
        m_options.name.c_str(), static_cast<double>(near) / static_cast<double>(distances.size()),
        Median(distances), Median(late), distances.size());
  }

  // Which of eight sentences was read: the right one and seven others.
  void SentenceChoice(bool one_word_changed) const {
    const VeralDictionary dictionary(m_options.dictionary.c_str());
    const auto texts = HeldOutTextsOf(m_options.language, m_options.dictionary);
    const auto trials = std::min(static_cast<std::size_t>(m_options.trials), m_augmented.size());
    std::vector<char> right(trials, 0);
    std::vector<char> tried(trials, 0);
    ParallelFor(trials, m_options.threads, [&](std::size_t i) {
      Random random(MixSeed(m_options.seed + 1000, i));
      const Utterance& utterance = m_augmented[i];
      const Candidates candidates =
          EightCandidates(*texts, utterance.text, one_word_changed, random);
      const int chosen = ChooseSentence(m_set, dictionary, candidates, utterance.samples);
      tried[i] = chosen != kRefusedSentence;
      right[i] = chosen == candidates.right;
    });
    std::printf("%s | right sentence of 8, %s%s | %td of %td\n", m_options.name.c_str(),
                one_word_changed ? "one word changed" : "unrelated",
                m_options.strong ? ", strongly augmented" : "", std::ranges::count(right, 1),
                std::ranges::count(tried, 1));
  }

 private:
  double Score(const AlignmentResult& result, std::size_t phoneme) const {
    return UnclippedScore(m_options.language, result.phonemes[phoneme],
                          PhonemeDistribution(m_set, result, phoneme));
  }

  std::vector<double> PhonemeSums(std::span<const double> states) const {
    std::vector<double> sums;
    for (std::size_t s = 0; s + 2 < states.size(); s += 3) {
      sums.push_back(states[s] + states[s + 1] + states[s + 2]);
    }
    return sums;
  }

  std::string Kind(bool augmented) const {
    if (!augmented) return "clean";
    return m_options.strong ? "strongly augmented" : "augmented";
  }

  void Print(const std::string& what, const ClassCounts& counts, const char* unit) const {
    std::printf("%s | %s | top-1 %.4f | top-3 %.4f | macro F1 %.4f | %zu %s\n",
                m_options.name.c_str(), what.c_str(), counts.TopOne(), counts.TopThree(),
                counts.MacroF1(), counts.Total(), unit);
    std::fflush(stdout);
  }

  const Options& m_options;
  const CPhonemeSet& m_set;
  std::vector<Utterance> m_clean;
  std::vector<Utterance> m_augmented;
};

void Run(const Options& options) {
  SetMessageHandler([](MessageStream, std::string_view) {});
  const CPhonemeSet* set = PhonemeSetOf(options.language);
  if (set == nullptr) throw std::runtime_error("no such language");
  const LanguageRow& row = RowOf(options.language);
  if (LoadModelFile(options.frame_model.c_str(), row.frame_model.type) < 0) {
    throw std::runtime_error("cannot load " + options.frame_model);
  }
  const Evaluation evaluation(options, *set);
  evaluation.Frames();
  evaluation.AlignedPhonemes(true);
  if (!options.strong) {
    evaluation.AlignedPhonemes(false);
    evaluation.Boundaries();
  }
  if (!options.phoneme_model.empty()) {
    if (LoadModelFile(options.phoneme_model.c_str(), row.phoneme_model.type) < 0) {
      throw std::runtime_error("cannot load " + options.phoneme_model);
    }
    evaluation.ClassifiedPhonemes(true);
    if (!options.strong) {
      evaluation.ClassifiedPhonemes(false);
      evaluation.Substitutions(false);
    }
    evaluation.Substitutions(true);
  }
  if (!options.dictionary.empty()) {
    evaluation.SentenceChoice(false);
    evaluation.SentenceChoice(true);
  }
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Measures models on synthesised voices that training never had.");
  app.add_option("--frame-model", options.frame_model, "frame model")->required();
  app.add_option("--phoneme-model", options.phoneme_model, "phoneme model, for its figures");
  app.add_option("--dictionary", options.dictionary, "dictionary for the choice of sentences");
  app.add_option("--corpus", options.corpus, "held-out corpus")->required();
  app.add_option("--name", options.name, "what the lines printed begin with");
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--most", options.most, "utterances at most; 0 for all");
  app.add_option("--trials", options.trials, "recordings for the choice of sentences");
  app.add_flag("--strong", options.strong, "augment beyond what training had");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "evaluate-models: %s\n", error.what());
    return 1;
  }
  return 0;
}
