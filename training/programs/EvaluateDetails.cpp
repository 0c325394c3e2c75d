// What stands behind the figures of evaluate-models, on voices and sentences that training never
// had: which phonemes are taken for which, how far a phoneme score can be trusted, and each voice
// alone. One line a measure; every recording is synthesised and clean.
//
//   evaluate-details --language 1 --corpus work/en/held.corpus --name "held-out espeak"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "grading/PhonProbGrader.h"
#include "recognition/CPhonemeSet.h"
#include "signal/CWaveFrameDef.h"
#include "training/common/ParallelFor.h"
#include "training/engine/Engine.h"
#include "training/measure/ForcedAlignment.h"
#include "training/measure/PhonemeScores.h"
#include "training/measure/Scores.h"
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
  std::size_t pairs = 15;
  std::uint64_t seed = 9;
};

// What one utterance contributes.
struct Findings {
  std::vector<std::pair<char, std::vector<double>>> phonemes;  // true symbol, probabilities
  std::vector<double> distances_ms;                            // of aligned starts from true ones
  std::vector<std::pair<int, bool>> scores;  // 0 to 100, whether the phoneme was the one said
};

Findings Examine(const CPhonemeSet& set, const PhonProbGrader& grader, const Utterance& utterance,
                 Random& random) {
  Findings findings;
  if (const auto result = AlignToLabels(utterance, set)) {
    std::size_t phoneme = 0;
    for (const PhonemeLabel& label : utterance.labels) {
      if (label.symbol == '-') continue;
      const double late = 1000.0 * (result->phoneme_start[phoneme] - label.start) / kSampleRate;
      findings.distances_ms.push_back(std::abs(late));
      findings.phonemes.emplace_back(label.symbol, PhonemeDistribution(set, *result, phoneme));
      ++phoneme;
    }
  }
  const Substituted changed = WithSubstitutions(set, utterance, random);
  if (const auto result = AlignToLabels(changed.utterance, set)) {
    const auto& wrong = changed.is_changed;
    for (std::size_t p = 0; p < wrong.size(); ++p) {
      if ((p > 0 && wrong[p - 1]) || (p + 1 < wrong.size() && wrong[p + 1])) continue;
      const std::vector<double> distribution = PhonemeDistribution(set, *result, p);
      const int score = grader.ComputePhonScore(result->phonemes[p], distribution);
      findings.scores.emplace_back(score, !wrong[p]);
    }
  }
  return findings;
}

class Report {
 public:
  Report(const Options& options, const CPhonemeSet& set) : m_options(options), m_set(set) {}

  // The pairs that are confused most often, by their share of the true phoneme.
  void Confusions(const std::vector<Findings>& findings) const {
    std::map<char, std::size_t> truths;
    std::map<std::pair<char, char>, std::size_t> counts;
    for (const Findings& one : findings) {
      for (const auto& [truth, distribution] : one.phonemes) {
        const auto best = std::ranges::max_element(distribution) - distribution.begin();
        const char said = m_set.GetFullSet()[static_cast<std::size_t>(best)];
        ++truths[truth];
        if (said != truth) ++counts[{truth, said}];
      }
    }
    std::vector<std::pair<std::size_t, std::pair<char, char>>> sorted;
    for (const auto& [pair, count] : counts) sorted.emplace_back(count, pair);
    std::ranges::stable_sort(sorted,
                             [](const auto& a, const auto& b) { return a.first > b.first; });
    for (std::size_t i = 0; i < std::min(m_options.pairs, sorted.size()); ++i) {
      const auto& [truth, said] = sorted[i].second;
      std::printf("%s | confusion | %c taken for %c | %zu of %zu\n", m_options.name.c_str(), truth,
                  said, sorted[i].first, truths[truth]);
    }
  }

  // How many phonemes with a score in each range were the ones that were said. One in six was not.
  void Calibration(const std::vector<Findings>& findings) const {
    constexpr std::array<int, 8> kBounds = {0, 1, 20, 40, 60, 80, 100, 101};
    std::array<std::size_t, kBounds.size()> right{};
    std::array<std::size_t, kBounds.size()> all{};
    for (const Findings& one : findings) {
      for (const auto& [score, is_right] : one.scores) {
        const auto bin = static_cast<std::size_t>(std::ranges::upper_bound(kBounds, score) -
                                                  kBounds.begin() - 1);
        ++all[bin];
        right[bin] += is_right;
      }
    }
    for (std::size_t bin = 0; bin + 1 < kBounds.size(); ++bin) {
      std::printf(
          "%s | calibration | score %d to %d | right %.4f | %zu phonemes\n", m_options.name.c_str(),
          kBounds[bin], kBounds[bin + 1] - 1,
          static_cast<double>(right[bin]) / static_cast<double>(std::max<std::size_t>(all[bin], 1)),
          all[bin]);
    }
  }

  void Voices(const std::vector<Utterance>& utterances,
              const std::vector<Findings>& findings) const {
    std::map<std::string, std::vector<const Findings*>> voices;
    for (std::size_t i = 0; i < utterances.size(); ++i) {
      const std::string& voice = utterances[i].voice;
      voices[voice.substr(voice.find('+') + 1)].push_back(&findings[i]);  // the variant
    }
    for (const auto& [voice, ones] : voices) {
      ClassCounts counts(m_set.GetSize());
      std::vector<double> distances;
      std::vector<double> right;
      std::vector<double> wrong;
      for (const Findings* one : ones) {
        for (const auto& [truth, distribution] : one->phonemes) {
          counts.Add(m_set.GetPhonemeIndex(truth), distribution);
        }
        distances.insert(distances.end(), one->distances_ms.begin(), one->distances_ms.end());
        for (const auto& [score, is_right] : one->scores)
          (is_right ? right : wrong).push_back(score);
      }
      const auto near = std::ranges::count_if(distances, [](double d) { return d <= 20.0; });
      const auto alarms = std::ranges::count_if(right, [](double s) { return s < 60.0; });
      const auto share = [](std::ptrdiff_t part, std::size_t whole) {
        return static_cast<double>(part) / static_cast<double>(std::max<std::size_t>(whole, 1));
      };
      std::printf(
          "%s | voice | %s | top-1 %.4f | top-3 %.4f | within 20 ms %.4f | substitutions: "
          "area under curve %.4f | right ones under 60 %.4f | %zu phonemes\n",
          m_options.name.c_str(), voice.c_str(), counts.TopOne(), counts.TopThree(),
          share(near, distances.size()), AreaUnderCurve(right, wrong), share(alarms, right.size()),
          counts.Total());
    }
  }

 private:
  const Options& m_options;
  const CPhonemeSet& m_set;
};

void Run(const Options& options) {
  const auto language = options.language;
  LoadEngine(language, options.engine);
  const CPhonemeSet& set = *PhonemeSetOf(language);
  const PhonProbGrader grader(language);
  const std::vector<Utterance> utterances = ReadCorpora(options.corpora, options.most);
  std::vector<Findings> findings(utterances.size());
  ParallelFor(utterances.size(), options.threads, [&](std::size_t i) {
    Random random(MixSeed(options.seed, i));
    findings[i] = Examine(set, grader, utterances[i], random);
  });
  const Report report(options, set);
  report.Confusions(findings);
  report.Calibration(findings);
  report.Voices(utterances, findings);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Shows what stands behind the figures: confusions, calibration, single voices.");
  app.add_option("--corpus", options.corpora, "held-out corpora")->required();
  app.add_option("--name", options.name, "what the lines printed begin with");
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--resources", options.engine.resources, "folder of dictionaries and models");
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--most", options.most, "utterances of each corpus at most; 0 for all");
  app.add_option("--pairs", options.pairs, "confused pairs to print");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "evaluate-details: %s\n", error.what());
    return 1;
  }
  return 0;
}
