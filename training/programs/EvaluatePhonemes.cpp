// What phoneme scores are worth, on voices and sentences that training never had: right phonemes,
// what learners are known to say in place of them, and every phoneme as the expected one while
// another was said. One line a measure; every recording is synthesised and clean.
//
//   evaluate-phonemes --language 1 --corpus work/en/held.corpus --name "held-out espeak"
//   ... --frame-model trial.model --phoneme-model trial2.model       # in place of the shipped ones

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "grading/PhonProbGrader.h"
#include "recognition/Dictionaries.h"
#include "signal/CWaveFrameDef.h"
#include "training/common/ParallelFor.h"
#include "training/engine/EngineOptions.h"
#include "training/measure/Exchanges.h"
#include "training/measure/ForcedAlignment.h"
#include "training/measure/LearnerErrors.h"
#include "training/measure/PhonemeScores.h"
#include "training/measure/Scores.h"
#include "training/measure/WordEnds.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> corpora;
  std::vector<std::string> rare;
  EngineFiles engine{.resources = "resources/", .goodness = false};
  std::string name = "test";
  LanguageType language = kLanguageEnglish;
  int threads = 2;
  std::size_t most = 0;
  std::size_t each = 4;           // of every pair of phonemes
  std::size_t most_errors = 150;  // of each of the learners' errors
  std::uint64_t seed = 12;
};

// A phoneme that was said as expected.
struct RightPhoneme {
  char symbol;
  int score;  // as graded
  bool ends_word;
  bool is_short;
  std::vector<double> distribution;
};

class PhonemeEvaluation {
 public:
  explicit PhonemeEvaluation(const Options& options)
      : m_options(options),
        m_language(options.language),
        m_set(*PhonemeSetOf(m_language)),
        m_grader(*PhonProbGraderOf(m_language)),
        m_utterances(ReadCorpora(options.corpora, options.most)),
        m_usual(m_utterances.size()) {
    for (Utterance& one : ReadCorpora(options.rare, options.most)) {
      m_utterances.push_back(std::move(one));
    }
    const auto dictionary = DictionaryOf(m_language);
    for (const Utterance& utterance : m_utterances) {
      m_phonemes.push_back(PhonemesOf(utterance));
      m_word_ends.push_back(
          WordEnds(m_phonemes.back(), PronunciationsOf(*dictionary, utterance.text)));
    }
    ScoreRightPhonemes();
  }

  void RightPhonemes() const {
    const auto plosive = [](char symbol) {
      return std::string_view("pbtdkg").find(symbol) != std::string_view::npos;
    };
    PrintRight("right phonemes", [](const RightPhoneme&) { return true; });
    PrintRight("right phonemes under 40 ms", [](const RightPhoneme& p) { return p.is_short; });
    if (m_language == kLanguageEnglish) {
      PrintRight("right plosives at the end of a word",
                 [&](const RightPhoneme& p) { return p.ends_word && plosive(p.symbol); });
    }
  }

  void LearnersErrors() const {
    const auto errors = LearnerErrorsOf(m_language);
    Random random(MixSeed(m_options.seed, 1));
    const auto exchanges =
        ErrorsIn(m_set, m_phonemes, m_word_ends, errors, m_options.most_errors, random);
    const auto scores = ScoresOf(exchanges, errors.size());
    for (std::size_t e = 0; e < errors.size(); ++e) {
      if (scores[e].empty()) continue;
      std::vector<double> right;
      for (const RightPhoneme& p : m_right) {
        const bool there = errors[e].place != LearnerError::Place::kWordEnd || p.ends_word;
        if (there && errors[e].expected.find(p.symbol) != std::string_view::npos) {
          right.push_back(p.score);
        }
      }
      std::printf("%s | learner's error | %s | caught %.3f | ", m_options.name.c_str(),
                  Written(errors[e]).c_str(), ShareBelow(scores[e], 60.0));
      if (!right.empty()) std::printf("area under curve %.3f | ", AreaUnderCurve(right, scores[e]));
      std::printf("%zu samples\n", scores[e].size());
    }
    std::fflush(stdout);
  }

  void EveryExpectedPhoneme() const {
    std::string symbols = m_set.GetFullSet();
    std::erase(symbols, '-');
    Random random(MixSeed(m_options.seed, 2));
    const auto exchanges = EveryOtherEquallyOften(m_phonemes, symbols, m_options.each, random);
    const auto scores = ScoresOf(exchanges, symbols.size());
    for (std::size_t s = 0; s < symbols.size(); ++s) {
      std::vector<double> right;
      for (const RightPhoneme& p : m_right) {
        if (p.symbol == symbols[s]) right.push_back(p.score);
      }
      std::printf("%s | expected phoneme | %c | another said: ", m_options.name.c_str(),
                  symbols[s]);
      if (!scores[s].empty()) {
        std::printf("median %.0f, full marks %.3f, under 60 %.3f, ", Median(scores[s]),
                    ShareFrom(scores[s], 100.0), ShareBelow(scores[s], 60.0));
      }
      std::printf("%zu samples | said: ", scores[s].size());
      if (!right.empty()) {
        std::printf("median %.0f, under 60 %.3f, ", Median(right), ShareBelow(right, 60.0));
      }
      std::printf("%zu samples\n", right.size());
    }
    std::fflush(stdout);
  }

 private:
  int ScoreOf(const AlignmentResult& result, std::size_t phoneme) const {
    return m_grader.ComputePhonScore(result.phonemes[phoneme],
                                     PhonemeDistribution(m_set, result, phoneme));
  }

  void ScoreRightPhonemes() {
    constexpr std::int32_t kShort = kSampleRate / 25;  // 40 ms
    std::vector<std::vector<RightPhoneme>> found(m_utterances.size());
    ParallelFor(m_utterances.size(), m_options.threads, [&](std::size_t u) {
      const Utterance& utterance = m_utterances[u];
      const auto result = AlignToLabels(utterance, m_set);
      if (!result) return;
      for (std::size_t label = 0; label < utterance.labels.size(); ++label) {
        const auto [symbol, start] = utterance.labels[label];
        if (symbol == '-') continue;
        const std::int32_t end = label + 1 < utterance.labels.size()
                                     ? utterance.labels[label + 1].start
                                     : static_cast<std::int32_t>(utterance.samples.size());
        const std::size_t place = found[u].size();
        found[u].push_back({symbol, ScoreOf(*result, place),
                            std::ranges::binary_search(m_word_ends[u], place), end - start < kShort,
                            PhonemeDistribution(m_set, *result, place)});
      }
    });
    for (std::size_t u = 0; u < found.size(); ++u) {
      if (u == m_usual) m_usual_right = m_right.size();
      std::ranges::move(found[u], std::back_inserter(m_right));
    }
    if (m_usual == found.size()) m_usual_right = m_right.size();
  }

  template <typename Counts>
  void PrintRight(const char* measure, const Counts& counts_in) const {
    ClassCounts counts(m_set.GetSize());
    std::vector<double> scores;
    for (const RightPhoneme& p : std::span(m_right).first(m_usual_right)) {
      if (!counts_in(p)) continue;
      counts.Add(m_set.GetPhonemeIndex(p.symbol), p.distribution);
      scores.push_back(p.score);
    }
    std::printf(
        "%s | %s | top-1 %.4f | top-3 %.4f | under 60 %.4f | median score %.0f | %zu phonemes\n",
        m_options.name.c_str(), measure, counts.TopOne(), counts.TopThree(),
        ShareBelow(scores, 60.0), Median(scores), scores.size());
    std::fflush(stdout);
  }

  // The scores of exchanged phonemes, by group.
  std::vector<std::vector<double>> ScoresOf(const std::vector<Exchange>& exchanges,
                                            std::size_t groups) const {
    constexpr std::size_t kDistance = 5;
    const auto rounds = InRounds(exchanges, kDistance);
    std::vector<std::vector<int>> found(rounds.size());
    ParallelFor(rounds.size(), m_options.threads, [&](std::size_t r) {
      const Utterance& utterance = m_utterances[rounds[r].front().utterance];
      const auto result = AlignToLabels(WithExchanges(utterance, rounds[r]), m_set);
      if (!result) return;
      for (const Exchange& one : rounds[r]) found[r].push_back(ScoreOf(*result, one.phoneme));
    });
    std::vector<std::vector<double>> scores(groups);
    for (std::size_t r = 0; r < rounds.size(); ++r) {
      for (std::size_t i = 0; i < found[r].size(); ++i) {
        scores[rounds[r][i].group].push_back(found[r][i]);
      }
    }
    return scores;
  }

  const Options& m_options;
  LanguageType m_language;
  const CPhonemeSet& m_set;
  const PhonProbGrader& m_grader;
  std::vector<Utterance> m_utterances;
  std::size_t m_usual;                  // of them the first ones; rare sentences follow
  std::size_t m_usual_right = 0;        // phonemes of those, the first of m_right
  std::vector<std::string> m_phonemes;  // of each utterance
  std::vector<std::vector<std::size_t>> m_word_ends;  // of each utterance
  std::vector<RightPhoneme> m_right;
};

void Run(const Options& options) {
  LoadEngine(options.language, options.engine);
  const PhonemeEvaluation evaluation(options);
  evaluation.RightPhonemes();
  evaluation.LearnersErrors();
  evaluation.EveryExpectedPhoneme();
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Shows what phoneme scores are worth on voices that training never had.");
  app.add_option("--corpus", options.corpora, "held-out corpora")->required();
  app.add_option("--rare", options.rare,
                 "corpora of rare sounds, for errors and expected phonemes alone");
  app.add_option("--name", options.name, "what the lines printed begin with");
  veral3::training::AddLanguageOption(app, options.language);
  AddEngineOptions(app, options.engine);
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--most", options.most, "utterances of each corpus at most; 0 for all");
  app.add_option("--each", options.each, "recordings of every pair of expected and said phoneme");
  app.add_option("--most-errors", options.most_errors, "recordings of each learner's error");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "evaluate-phonemes: %s\n", error.what());
    return 1;
  }
  return 0;
}
