// Measures the utterance-goodness model on voices and sentences that training never had: what is
// left of the scores of readings right and wrong, by what is wrong with them, by the share of the
// sentence that is wrong, by length and by condition of the recording; and how well its probability
// tells wrong readings from right ones. One line a measure; every recording is synthesised.
//
//   evaluate-goodness --language 1 --corpus work/en/held.corpus --foreign work/zh/held.corpus
//       --name "held-out espeak"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "grading/TotalScore.h"
#include "training/augment/Augment.h"
#include "training/augment/Conditions.h"
#include "training/common/ParallelFor.h"
#include "training/engine/Engine.h"
#include "training/features/VectorFile.h"
#include "training/goodness/Judgement.h"
#include "training/goodness/Readings.h"
#include "training/measure/Scores.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  std::vector<std::string> corpora;
  std::vector<std::string> foreign;
  EngineFiles engine;
  std::string name = "test";
  std::string vectors;
  std::vector<std::string> only;
  LanguageType language = kLanguageEnglish;
  int threads = 1;
  int count = 100;
  std::size_t most = 0;
  std::uint64_t seed = 7;
};

// How the reading reaches the engine.
enum class Recorded {
  kPlain,   // between a little silence, at any level
  kVaried,  // other vocal tracts, rooms, microphones and noises, as training has them
};

struct Measure {
  std::string name;
  ReadingKind kind = ReadingKind::kRight;
  double share = 0.0;
  int fewest = 0;  // words of the sentence; 0: recordings as they are
  int most = 0;
  Recorded recorded = Recorded::kPlain;
  std::optional<Condition> condition = {};  // in place of that
  std::uint64_t seed = 0;
  bool curve = false;  // area under the curve against the right readings of the first measure
};

// Every kind, of recordings as they are.
std::vector<Measure> Kinds(bool has_foreign) {
  std::vector<Measure> measures;
  for (const ReadingKind kind : kReadingKinds) {
    if (kind == ReadingKind::kOtherLanguage && !has_foreign) continue;
    Measure measure{.name = std::string(NameOf(kind)),
                    .kind = kind,
                    .share = 0.3,
                    .recorded = Recorded::kVaried};
    measure.curve = kind > ReadingKind::kMispronounced;
    if (kind == ReadingKind::kReplaced) {
      measure.name = "one third of the words changed";
      measure.share = 1.0 / 3.0;
    } else if (kind == ReadingKind::kCutOff) {
      measure.name = "cut off halfway";
      measure.share = 0.5;
    } else if (IsGraded(kind)) {
      measure.name += ", three of ten";
    }
    measures.push_back(measure);
  }
  return measures;
}

// Sentences of ten words, of which some are wrong in any way; and of five, one of which is.
std::vector<Measure> Shares() {
  constexpr std::array kWordFaults = {ReadingKind::kReplaced, ReadingKind::kOmitted,
                                      ReadingKind::kInserted, ReadingKind::kSwapped};
  std::vector<Measure> measures = {{.name = "0 of 10 words wrong", .fewest = 10, .most = 10}};
  for (const int wrong : {1, 2, 3, 5, 8, 10}) {
    for (const ReadingKind kind : kWordFaults) {
      if (kind == ReadingKind::kSwapped && wrong > 5) continue;
      if (kind != ReadingKind::kReplaced && wrong > 8) continue;
      // Words that are left out, or too many, stand beside those that are right.
      const int said = kind == ReadingKind::kOmitted ? 10 - wrong : 10;
      measures.push_back(
          {.name = std::to_string(wrong) + " of 10 words wrong, " + std::string(NameOf(kind)),
           .kind = kind,
           .share = wrong / 10.0,
           .fewest = said,
           .most = said});
    }
  }
  measures.push_back({.name = "1 of 5 words wrong, words replaced",
                      .kind = ReadingKind::kReplaced,
                      .share = 0.2,
                      .fewest = 5,
                      .most = 5});
  for (const int tenths : {1, 2, 5, 8}) {
    measures.push_back({.name = "cut off, " + std::to_string(tenths) + " of 10 phonemes lost",
                        .kind = ReadingKind::kCutOff,
                        .share = tenths / 10.0,
                        .fewest = 10,
                        .most = 10});
  }
  return measures;
}

// Right, half wrong and unrelated readings of any length.
std::vector<Measure> Lengths(const PassageDrawer& drawer) {
  const auto words = [&](int phonemes) { return static_cast<int>(drawer.WordsOf(phonemes)); };
  struct Length {
    std::string name;
    int fewest;
    int most;
  };
  const std::vector<Length> lengths = {
      {"1 word", 1, 1},
      {"2 to 3 words", 2, 3},
      {"4 to 10 words", 4, 10},
      {"11 to 25 words", 11, 25},
      {"100 to 200 phonemes", words(110), words(190)},
      {"200 to 500 phonemes", words(210), words(480)},
  };
  std::vector<Measure> measures;
  for (const Length& length : lengths) {
    const auto add = [&](ReadingKind kind, double share) {
      const std::string what = kind == ReadingKind::kReplaced && length.most > 1
                                   ? "half of the words replaced"
                                   : std::string(NameOf(kind));
      measures.push_back({.name = what + ", " + length.name,
                          .kind = kind,
                          .share = share,
                          .fewest = length.fewest,
                          .most = length.most});
    };
    add(ReadingKind::kRight, 0.0);
    add(ReadingKind::kReplaced, 0.5);
    add(ReadingKind::kOtherSentence, 1.0);
  }
  return measures;
}

// Right and unrelated readings of recordings as they are, with one fault of the recording.
std::vector<Measure> Conditions() {
  std::vector<Measure> measures;
  for (const ReadingKind kind : {ReadingKind::kRight, ReadingKind::kOtherSentence}) {
    for (const Condition condition : kConditions) {
      measures.push_back({.name = std::string(NameOf(kind)) + ", " + std::string(NameOf(condition)),
                          .kind = kind,
                          .share = 1.0,
                          .condition = condition});
    }
  }
  measures.push_back(
      {.name = "right reading begun up to 100 ms late, clean", .kind = ReadingKind::kTrimmed});
  return measures;
}

AugmentOptions AugmentationOf(Recorded recorded) {
  if (recorded == Recorded::kVaried) return {};
  return {.warp_chance = 0.0,
          .reverb_chance = 0.0,
          .low_pass_chance = 0.0,
          .telephone_chance = 0.0,
          .noise_chance = 0.0,
          .equaliser_db = 0.0};
}

class Evaluation {
 public:
  explicit Evaluation(const Options& options)
      : m_options(options),
        m_language(options.language),
        m_utterances(ReadCorpora(options.corpora, options.most)),
        m_recordings(PassagesOf(m_language, m_utterances, options.threads)),
        m_foreign(ReadCorpora(options.foreign, 400)),
        m_drawer(m_recordings),
        m_maker(*PhonemeSetOf(m_language), m_drawer, m_foreign) {}

  void Run() {
    std::vector<Measure> measures = Kinds(m_maker.HasForeign());
    const auto add = [&](const std::vector<Measure>& more) {
      measures.insert(measures.end(), more.begin(), more.end());
    };
    add(Shares());
    add(Lengths(m_drawer));
    add(Conditions());
    for (std::size_t i = 0; i < measures.size(); ++i) measures[i].seed = m_options.seed + i;
    if (!m_options.only.empty()) {
      std::erase_if(measures, [&](const Measure& measure) {
        return std::ranges::none_of(m_options.only, [&](const std::string& part) {
          return measure.name.find(part) != std::string::npos;
        });
      });
      for (Measure& measure : measures) measure.curve = false;
    }
    std::optional<VectorWriter> writer;
    if (!m_options.vectors.empty()) {
      writer.emplace(m_options.vectors, kGoodnessFeatureCount, static_cast<int>(measures.size()));
    }
    for (std::size_t i = 0; i < measures.size(); ++i) {
      const auto judgements = JudgementsOf(measures[i]);
      Print(measures[i], judgements);
      if (!writer) continue;
      for (const auto& judgement : judgements) {
        if (!judgement) continue;
        const std::vector<float> row(judgement->features.begin(), judgement->features.end());
        writer->Write(row, static_cast<int>(i));
      }
    }
    if (writer) writer->Close();
  }

 private:
  std::vector<std::optional<Judgement>> JudgementsOf(const Measure& measure) {
    const std::size_t count = measure.fewest == 0 ? std::min<std::size_t>(m_recordings.size(), 250)
                                                  : static_cast<std::size_t>(m_options.count);
    std::vector<std::optional<Judgement>> judgements(count);
    ParallelFor(count, m_options.threads, [&](std::size_t i) {
      Random random(MixSeed(measure.seed, i));
      const Passage passage =
          measure.fewest == 0 ? m_recordings[i]
                              : m_drawer.Draw(random.Between(measure.fewest, measure.most), random);
      const Reading reading = m_maker.Make(passage, measure.kind, measure.share, random);
      const Utterance clean = RecordingOf(reading, measure.kind, passage.voice);
      const Utterance recorded =
          measure.condition ? UnderCondition(clean, *measure.condition, m_utterances, random)
                            : Augment(clean, AugmentationOf(measure.recorded), random);
      judgements[i] = Judge(m_language, reading.sentence, recorded.samples);
    });
    return judgements;
  }

  void Print(const Measure& measure, const std::vector<std::optional<Judgement>>& judgements) {
    std::vector<double> probabilities;
    std::vector<double> factors;
    for (const auto& judgement : judgements) {
      if (!judgement) continue;
      probabilities.push_back(judgement->probability);
      factors.push_back(GoodnessFactor(judgement->probability));
    }
    std::printf("%s | goodness, %s | ", m_options.name.c_str(), measure.name.c_str());
    if (m_right.empty()) m_right = probabilities;
    if (measure.curve) {
      std::printf("area under curve %.4f | ", AreaUnderCurve(m_right, probabilities));
    }
    std::printf("factor: median %.3f, tenth percentile %.3f, ninetieth %.3f | %zu readings",
                Median(factors), Percentile(factors, 10.0), Percentile(factors, 90.0),
                factors.size());
    if (factors.size() < judgements.size()) {
      std::printf(", %zu could not be aligned", judgements.size() - factors.size());
    }
    std::printf("\n");
    std::fflush(stdout);
  }

  const Options& m_options;
  LanguageType m_language;
  std::vector<Utterance> m_utterances;
  std::vector<Passage> m_recordings;
  std::vector<Utterance> m_foreign;
  PassageDrawer m_drawer;
  ReadingMaker m_maker;
  std::vector<double> m_right;  // probabilities of the first measure
};

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  using veral3::training::Options;
  Options options;
  CLI::App app("Measures the utterance-goodness model on voices that training never had.");
  app.add_option("--corpus", options.corpora, "held-out corpora")->required();
  app.add_option("--foreign", options.foreign, "held-out corpora of other languages");
  app.add_option("--name", options.name, "what the lines printed begin with");
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--resources", options.engine.resources, "folder of dictionaries and models");
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_option("--most", options.most, "utterances of each corpus at most; 0 for all");
  app.add_option("--count", options.count, "readings a measure");
  app.add_option("--only", options.only,
                 "measures whose names have one of these; without areas under curves");
  app.add_option("--vectors", options.vectors,
                 "keep the features here, the number of the line as class");
  CLI11_PARSE(app, argc, argv);
  try {
    const auto language = options.language;
    veral3::training::LoadEngine(language, options.engine);
    veral3::training::Evaluation(options).Run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "evaluate-goodness: %s\n", error.what());
    return 1;
  }
  return 0;
}
