// Measures a tone model on Chinese sentences of voices that training never had, with the engine's
// own pitch tracker, tone features and classifier. Figures are of synthesised voices.
//
//   evaluate-tones --model resources/ChineseTone.model --words resources/KCN-UTF8Order.txt
//   ... --frame-model resources/ChineseFrame.model     # syllables placed by the aligner
//
// First how many tones are right, clean, by the mean pitch of the utterance, and with noise 10 dB
// below the speech; then whether readings without melody and readings in wrong tones are told from
// right ones. Syllables that fall below the 75 Hz of the engine's tracker stand in lines of their
// own.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/ModelScorers.h"
#include "core/PitchSegments.h"
#include "core/SyllablePitch.h"
#include "grading/PitchGrading.h"
#include "recognition/Models.h"
#include "signal/CWaveFrameDef.h"
#include "training/augment/Augment.h"
#include "training/common/ParallelFor.h"
#include "training/corpus/ChineseTexts.h"
#include "training/corpus/ChineseVoices.h"
#include "training/corpus/CorpusFile.h"
#include "training/features/ToneExamples.h"
#include "training/measure/ForcedAlignment.h"
#include "training/measure/Scores.h"

namespace veral3::training {
namespace {

struct Options {
  std::string name = "Chinese, held-out espeak";
  std::string model = "resources/ChineseTone.model";
  std::string words = "resources/KCN-UTF8Order.txt";
  std::string corpus;
  std::string frame_model;  // empty: syllables where the synthesiser put them
  int count = 500;
  std::uint64_t seed = 1;
  int threads = 1;
  bool by_voice = false;
  double at_least = 0.0;  // share of tones right below which the program fails
};

constexpr std::array<const char*, kToneClassCount> kClassNames = {"neutral", "1", "2", "3", "4"};

// Classes of voices by the mean pitch of the utterance [Hz]: men from 85, women, children.
constexpr std::array<double, 8> kPitchClasses = {0.0,   85.0,  110.0, 140.0,
                                                 180.0, 230.0, 290.0, 1000.0};

// The syllables that a measure counts.
enum class Counted { kAll, kWithinTracker, kBelowTracker };

// What the engine said of the syllables of one utterance: rows of zeros for those that it does not
// classify.
std::vector<ToneProbabilities> Classify(const ToneTrack& track) {
  const std::span<const std::int32_t> pitch(track.pitch);
  std::vector<std::int32_t> highest;
  std::vector<PitchSegmentCounts> segments;
  for (const FrameSpan span : track.syllables) {
    highest.push_back(HighestPitch(pitch, span));
    segments.push_back(CountPitchSegments(kLanguageChinese, Slice(pitch, span)));
  }
  return ClassifyTones(pitch, track.syllables, segments, AveragePitch(highest),
                       AverageLength(track.syllables), ScorerOf(ToneClassifier()));
}

// The syllables as the aligner finds them in the engine, not where the labels have them.
void PlaceByAlignment(const Utterance& utterance, ToneTrack& track) {
  const auto result = AlignToLabels(utterance, *PhonemeSetOf(kLanguageChinese));
  if (!result) throw std::runtime_error("an utterance does not align");
  Utterance aligned = utterance;
  aligned.labels = LabelsOf(*result);
  track.syllables = SyllableFrames(aligned);
}

// White to brown noise at 10 dB below the speech, after silence of a third of a second.
Utterance WithNoise(const Utterance& clean, Random& random) {
  const auto silence = static_cast<std::size_t>(kSampleRate / 3);
  std::vector<float> signal(silence, 0.0f);
  signal.insert(signal.end(), clean.samples.begin(), clean.samples.end());
  signal.resize(signal.size() + silence, 0.0f);
  double energy = 0.0;
  for (const std::int16_t sample : clean.samples) energy += static_cast<double>(sample) * sample;
  const double rms = std::sqrt(energy / static_cast<double>(clean.samples.size()));
  AddNoise(signal, random.Uniform(), rms * std::pow(10.0, -10.0 / 20.0), random);
  Utterance noisy = clean;
  noisy.samples.clear();
  for (const float x : signal) {
    noisy.samples.push_back(
        static_cast<std::int16_t>(std::lround(std::clamp(double{x}, -32767.0, 32767.0))));
  }
  for (PhonemeLabel& label : noisy.labels) label.start += static_cast<std::int32_t>(silence);
  noisy.labels.insert(noisy.labels.begin(), {'-', 0});
  return noisy;
}

class ToneEvaluation {
 public:
  explicit ToneEvaluation(const Options& options) : m_options(options), m_texts(options.words) {
    if (LoadModelFile(options.model.c_str(), kToneModelChinese) < 0) {
      throw std::runtime_error("cannot load " + options.model);
    }
    if (!options.frame_model.empty() &&
        LoadModelFile(options.frame_model.c_str(), kFrameModelChinese) < 0) {
      throw std::runtime_error("cannot load " + options.frame_model);
    }
  }

  // Says every held-out sentence right, flat and with some tones changed, by the same voice.
  void Speak() {
    EspeakSpeech espeak;
    for (int i = 0; i < m_options.count; ++i) {
      Random random(MixSeed(m_options.seed, static_cast<std::uint64_t>(i)));
      EspeakVoice voice = DrawToneVoice(random, true);
      const ChineseSentence sentence = m_texts.DrawHeldOut(random);
      m_right.push_back(SpeakChinese(espeak, voice, sentence));
      m_voices.push_back(VoiceOf(m_right.back()));
      m_swapped.push_back(
          SpeakChinese(espeak, voice, WithSpokenTones(sentence, Swapped(sentence, random))));
      voice.range = 0;
      m_flat.push_back(SpeakChinese(espeak, voice, sentence));
    }
  }

  // How many tones of a corpus are right.
  void Corpus(const std::string& path) const {
    CorpusReader reader(path);
    std::vector<Utterance> utterances;
    while (auto utterance = reader.Next()) utterances.push_back(*std::move(utterance));
    Print("recordings of the corpus", CountAll(utterances, ClassifyAll(utterances, false)));
  }

  // Share of right tones, of the syllables that the tracker follows.
  double Accuracy() {
    m_right_tones = ClassifyAll(m_right, false);
    const auto any_voice = [](const Voice&) { return true; };
    const double right =
        Report("clean", m_right, m_right_tones, any_voice, Counted::kWithinTracker);
    Report("clean, syllables below 75 Hz", m_right, m_right_tones, any_voice,
           Counted::kBelowTracker);
    for (std::size_t c = 0; c + 1 < kPitchClasses.size(); ++c) {
      const auto of_class = [c](const Voice& voice) {
        return voice.mean_pitch >= kPitchClasses[c] && voice.mean_pitch < kPitchClasses[c + 1];
      };
      const std::string name = "clean, mean pitch " + NameOfClass(c);
      Report(name.c_str(), m_right, m_right_tones, of_class, Counted::kWithinTracker);
      Report((name + ", syllables below 75 Hz").c_str(), m_right, m_right_tones, of_class,
             Counted::kBelowTracker);
    }
    Report("noise at 10 dB", m_right, ClassifyAll(m_right, true), any_voice,
           Counted::kWithinTracker);
    if (m_options.by_voice) ByVoice();
    return right;
  }

  // How well wrong readings are told from right ones, by the probability of the tone that should be
  // there and by the grade of a learner against a tutor.
  void Detection() const {
    const auto flat = ClassifyAll(m_flat, false);
    const auto swapped = ClassifyAll(m_swapped, false);
    std::vector<double> right_syllables;
    std::vector<double> wrong_syllables;
    std::vector<double> right_utterances;
    std::vector<double> flat_utterances;
    std::array<double, 4> grade_sum{};
    std::array<int, 4> grade_count{};
    const auto grade = [&](std::size_t kind, const ToneProbabilities& tutor,
                           const ToneProbabilities& learner) {
      grade_sum[kind] += GradeTone(tutor, learner);
      ++grade_count[kind];
    };
    for (std::size_t i = 0; i < m_right.size(); ++i) {
      double right_sum = 0.0;
      double flat_sum = 0.0;
      const std::string& tones = m_right[i].spoken_tones;
      for (std::size_t s = 0; s < tones.size(); ++s) {
        const auto wanted = static_cast<std::size_t>(ToneClassOf(tones[s]));
        const bool changed = m_swapped[i].spoken_tones[s] != tones[s];
        (changed ? wrong_syllables : right_syllables).push_back(swapped[i][s][wanted]);
        right_sum += m_right_tones[i][s][wanted];
        flat_sum += flat[i][s][wanted];
        const ToneProbabilities& tutor = m_right_tones[i][s];
        // The same voice, but among other tones.
        grade(changed ? 1 : 0, tutor, swapped[i][s]);
        grade(2, tutor, flat[i][s]);
      }
      right_utterances.push_back(right_sum / static_cast<double>(tones.size()));
      flat_utterances.push_back(flat_sum / static_cast<double>(tones.size()));
    }
    const char* name = m_options.name.c_str();
    std::printf(
        "%s | swapped tones | %zu of %zu syllables, area under curve of the probability of "
        "the tone that should be there %.4f\n",
        name, wrong_syllables.size(), wrong_syllables.size() + right_syllables.size(),
        AreaUnderCurve(right_syllables, wrong_syllables));
    std::printf("%s | flat readings | area under curve of an utterance's mean probability %.4f\n",
                name, AreaUnderCurve(right_utterances, flat_utterances));
    std::printf(
        "%s | grade of a syllable against the right reading | right tone %.1f, swapped %.1f, "
        "flat %.1f\n",
        name, grade_sum[0] / grade_count[0], grade_sum[1] / std::max(grade_count[1], 1),
        grade_sum[2] / grade_count[2]);
  }

 private:
  // One syllable in four in another tone.
  static std::string Swapped(const ChineseSentence& sentence, Random& random) {
    std::string tones = sentence.spoken_tones;
    for (char& tone : tones) {
      if (tone == '5' || !random.Chance(0.25)) continue;
      const char old = tone;
      while (tone == old) tone = static_cast<char>('0' + random.Between(1, 4));
    }
    // A third before a third would be said as a second after all.
    for (std::size_t i = 0; i + 1 < tones.size(); ++i) {
      if (tones[i] == '3' && tones[i + 1] == '3') tones[i] = sentence.spoken_tones[i];
      if (tones[i] == '3' && tones[i + 1] == '3') tones[i + 1] = sentence.spoken_tones[i + 1];
    }
    return tones;
  }

  std::vector<std::vector<ToneProbabilities>> ClassifyAll(const std::vector<Utterance>& utterances,
                                                          bool noisy) const {
    std::vector<std::vector<ToneProbabilities>> tones(utterances.size());
    ParallelFor(utterances.size(), m_options.threads, [&](std::size_t i) {
      Random random(MixSeed(m_options.seed + 1, i));
      const Utterance utterance = noisy ? WithNoise(utterances[i], random) : utterances[i];
      ToneTrack track = ToneTrackOf(utterance);
      if (!m_options.frame_model.empty()) PlaceByAlignment(utterance, track);
      tones[i] = Classify(track);
    });
    return tones;
  }

  // How an utterance lies to the engine's tracker.
  struct Voice {
    double mean_pitch;        // [Hz]
    std::vector<bool> below;  // one a syllable
  };

  struct Counts {
    ClassCounts counts{kToneClassCount};
    std::array<std::array<int, kToneClassCount + 1>, kToneClassCount> confusion{};

    void Add(char tone, const ToneProbabilities& row) {
      const int truth = ToneClassOf(tone);
      const bool classified = row != ToneProbabilities{};
      const auto said =
          classified ? static_cast<std::size_t>(MostLikelyTone(row)) : std::size_t{kToneClassCount};
      ++confusion[static_cast<std::size_t>(truth)][said];
      // What was not classified is not right.
      ToneProbabilities scores = row;
      if (!classified) scores[static_cast<std::size_t>(truth + 1) % kToneClassCount] = 1.0;
      counts.Add(truth, scores);
    }
  };

  static Voice VoiceOf(const Utterance& utterance) {
    const ToneTrack deep = DeepTrackOf(utterance);
    return {MeanPitch(deep), FallBelowTracker(deep)};
  }

  static std::string NameOfClass(std::size_t c) {
    const auto hz = [](double value) { return std::to_string(std::lround(value)); };
    if (c == 0) return "below " + hz(kPitchClasses[1]) + " Hz";
    if (c + 2 == kPitchClasses.size()) return "from " + hz(kPitchClasses[c]) + " Hz";
    return hz(kPitchClasses[c]) + " to " + hz(kPitchClasses[c + 1]) + " Hz";
  }

  static Counts CountAll(const std::vector<Utterance>& utterances,
                         const std::vector<std::vector<ToneProbabilities>>& tones) {
    Counts counts;
    for (std::size_t i = 0; i < utterances.size(); ++i) {
      for (std::size_t s = 0; s < tones[i].size(); ++s) {
        counts.Add(utterances[i].spoken_tones[s], tones[i][s]);
      }
    }
    return counts;
  }

  double Report(const char* what, const std::vector<Utterance>& utterances,
                const std::vector<std::vector<ToneProbabilities>>& tones,
                const std::function<bool(const Voice&)>& belongs, Counted counted) const {
    Counts counts;
    for (std::size_t i = 0; i < utterances.size(); ++i) {
      if (!belongs(m_voices[i])) continue;
      for (std::size_t s = 0; s < tones[i].size(); ++s) {
        const bool below = m_voices[i].below[s];
        if (counted == Counted::kAll || below == (counted == Counted::kBelowTracker)) {
          counts.Add(utterances[i].spoken_tones[s], tones[i][s]);
        }
      }
    }
    if (counts.counts.Total() > 0) Print(what, counts);
    return counts.counts.TopOne();
  }

  void Print(const char* what, const Counts& counts) const {
    std::printf("%s | tones, %s | %zu syllables, right %.4f, macro F1 %.4f\n",
                m_options.name.c_str(), what, counts.counts.Total(), counts.counts.TopOne(),
                counts.counts.MacroF1());
    std::printf("  spoken     as:  neutral       1       2       3       4  not classified\n");
    for (std::size_t truth = 0; truth < counts.confusion.size(); ++truth) {
      std::printf("  %-13s", kClassNames[truth]);
      for (const int count : counts.confusion[truth]) std::printf("%8d", count);
      std::printf("\n");
    }
  }

  void ByVoice() const {
    std::map<std::string, ClassCounts> voices;
    for (std::size_t i = 0; i < m_right.size(); ++i) {
      ClassCounts& counts = voices.try_emplace(m_right[i].voice, kToneClassCount).first->second;
      for (std::size_t s = 0; s < m_right_tones[i].size(); ++s) {
        counts.Add(ToneClassOf(m_right[i].spoken_tones[s]), m_right_tones[i][s]);
      }
    }
    for (const auto& [voice, counts] : voices) {
      std::printf("  %-36s %5zu syllables, right %.4f\n", voice.c_str(), counts.Total(),
                  counts.TopOne());
    }
  }

  const Options& m_options;
  ChineseTexts m_texts;
  std::vector<Utterance> m_right;
  std::vector<Voice> m_voices;  // of m_right
  std::vector<Utterance> m_swapped;
  std::vector<Utterance> m_flat;
  std::vector<std::vector<ToneProbabilities>> m_right_tones;
};

void Run(const Options& options) {
  ToneEvaluation evaluation(options);
  evaluation.Speak();
  const double right = evaluation.Accuracy();
  if (!options.corpus.empty()) evaluation.Corpus(options.corpus);
  evaluation.Detection();
  if (right < options.at_least) throw std::runtime_error("too few tones are right");
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Measures a tone model on held-out synthesised voices.");
  app.add_option("--name", options.name, "what the lines begin with");
  app.add_option("--model", options.model, "tone model");
  app.add_option("--words", options.words, "Chinese dictionary");
  app.add_option("--corpus", options.corpus, "recordings to measure on besides");
  app.add_option("--frame-model", options.frame_model, "place syllables by alignment with it");
  app.add_option("--count", options.count, "sentences");
  app.add_option("--seed", options.seed, "other sentences and voices");
  app.add_option("--threads", options.threads, "threads to work on");
  app.add_flag("--by-voice", options.by_voice, "a line a voice");
  app.add_option("--at-least", options.at_least, "fail below this share of right tones");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "evaluate-tones: %s\n", error.what());
    return 1;
  }
  return 0;
}
