// How much of the figures is left in noise, in rooms, through telephones and codecs, cut short, by
// children, slow and fast: right readings by voices that training never had, one fault at a time.
// One line a condition; every recording is synthesised.
//
//   evaluate-conditions --language 1 --corpus work/en/held.corpus --name "held-out espeak"
//   ... --others work/en/held-rms.corpus     # who babbles; by default the corpus' own other voices

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "grading/PhonProbGrader.h"
#include "grading/TotalScore.h"
#include "recognition/Dictionaries.h"
#include "training/augment/Conditions.h"
#include "training/common/ParallelFor.h"
#include "training/corpus/HeldOutTexts.h"
#include "training/engine/EngineOptions.h"
#include "training/goodness/Judgement.h"
#include "training/measure/ForcedAlignment.h"
#include "training/measure/PhonemeScores.h"
#include "training/measure/Scores.h"
#include "training/measure/SentenceChoice.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> corpora;
  std::vector<std::string> others;
  std::string dictionary;
  EngineFiles engine;
  std::string name = "test";
  LanguageType language = kLanguageEnglish;
  int threads = 2;
  std::size_t most = 80;
  std::uint64_t seed = 14;
};

// What one recording contributes.
struct Findings {
  std::vector<std::pair<char, std::vector<double>>> phonemes;  // what was said, probabilities
  std::vector<double> scores;                                  // of these, as graded
  double factor = 0.0;  // what all scores are multiplied by; 0 where the recording does not align
  bool chosen = false;  // of eight sentences, seven of which have one word changed
};

class ConditionEvaluation {
 public:
  explicit ConditionEvaluation(const Options& options)
      : m_options(options),
        m_language(options.language),
        m_set(*PhonemeSetOf(m_language)),
        m_texts(HeldOutTextsOf(m_language, options.dictionary)),
        m_utterances(ReadCorpora(options.corpora, options.most)),
        m_others(options.others.empty() ? m_utterances : ReadCorpora(options.others, 200)) {
    std::erase_if(m_utterances,
                  [&](const Utterance& one) { return !KnowsAllWords(m_language, one.text); });
  }

  void Report(Condition condition) const {
    std::vector<Findings> findings(m_utterances.size());
    ParallelFor(m_utterances.size(), m_options.threads, [&](std::size_t i) {
      Random random(MixSeed(m_options.seed + static_cast<std::uint64_t>(condition), i));
      findings[i] = Examine(UnderCondition(m_utterances[i], condition, m_others, random), i);
    });
    ClassCounts counts(m_set.GetSize());
    std::vector<double> scores;
    std::vector<double> factors;
    for (const Findings& one : findings) {
      for (const auto& [said, distribution] : one.phonemes) {
        counts.Add(m_set.GetPhonemeIndex(said), distribution);
      }
      scores.insert(scores.end(), one.scores.begin(), one.scores.end());
      factors.push_back(one.factor);
    }
    std::printf(
        "%s | condition, %s | top-1 %.4f | under 60 %.4f | factor: median %.3f, tenth percentile "
        "%.3f | right sentence of 8 %td of %zu | %zu phonemes\n",
        m_options.name.c_str(), std::string(NameOf(condition)).c_str(), counts.TopOne(),
        ShareBelow(scores, 60.0), Median(factors), Percentile(factors, 10.0),
        std::ranges::count(findings, true, &Findings::chosen), findings.size(), scores.size());
    std::fflush(stdout);
  }

 private:
  Findings Examine(const Utterance& heard, std::size_t number) const {
    Findings findings;
    if (const auto result = AlignToLabels(heard, m_set)) {
      for (std::size_t p = 0; p < result->phonemes.size(); ++p) {
        const auto& [said, distribution] = findings.phonemes.emplace_back(
            result->phonemes[p], PhonemeDistribution(m_set, *result, p));
        findings.scores.push_back(
            PhonProbGraderOf(m_language)->ComputePhonScore(said, distribution));
      }
    }
    if (const auto judgement = Judge(m_language, heard.text, heard.samples)) {
      findings.factor = GoodnessFactor(judgement->probability);
    }
    // The same eight sentences under every condition.
    Random random(MixSeed(m_options.seed + 1000, number));
    const Candidates candidates = EightCandidates(*m_texts, heard.text, true, random);
    findings.chosen = ChooseSentence(m_set, *DictionaryOf(m_language), candidates, heard.samples) ==
                      candidates.right;
    return findings;
  }

  const Options& m_options;
  LanguageType m_language;
  const CPhonemeSet& m_set;
  std::unique_ptr<HeldOutTexts> m_texts;
  std::vector<Utterance> m_utterances;
  std::vector<Utterance> m_others;
};

void Run(const Options& options) {
  LoadEngine(options.language, options.engine);
  const ConditionEvaluation evaluation(options);
  for (const Condition condition : kConditions) evaluation.Report(condition);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Measures models on right readings under one fault at a time.");
  app.add_option("--corpus", options.corpora, "held-out corpora")->required();
  app.add_option("--others", options.others, "corpora of the voices that babble");
  app.add_option("--dictionary", options.dictionary, "dictionary for the choice of sentences")
      ->required();
  app.add_option("--name", options.name, "what the lines printed begin with");
  veral3::training::AddLanguageOption(app, options.language);
  AddEngineOptions(app, options.engine);
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--most", options.most, "utterances of each corpus at most; 0 for all");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "evaluate-conditions: %s\n", error.what());
    return 1;
  }
  return 0;
}
