// Grades readings with one known fault each against a tutor's reading, all synthesised, and prints
// the median scores of each fault, before the utterance-goodness factor that scales them all; then
// how often scores stand in the expected order.
//
//   evaluate-grading --language 1

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "training/engine/Engine.h"
#include "training/grading/SenseGrades.h"
#include "training/grading/SenseReadings.h"
#include "training/measure/Scores.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  EngineFiles engine{.resources = "resources/", .goodness = false};
  LanguageType language = kLanguageEnglish;
};

enum class Component { kPronunciation, kPitch, kTiming, kIntensity, kTotal };

int ScoreOf(const SenseGrades& grades, Component component) {
  switch (component) {
    case Component::kPronunciation:
      return grades.components.pronunciation;
    case Component::kPitch:
      return grades.components.pitch;
    case Component::kTiming:
      return grades.components.timing;
    case Component::kIntensity:
      return grades.components.intensity;
    case Component::kTotal:
      return grades.total;
  }
  return 0;
}

// All graded readings of one sentence and voice.
using Trial = std::map<SenseFault, SenseGrades>;

class Report {
 public:
  Report(std::string name, std::vector<Trial> trials)
      : m_name(std::move(name)), m_trials(std::move(trials)) {}

  void Medians(SenseFault fault) const {
    std::printf(
        "%s | grading, %s | median: pronunciation %.0f, pitch %.0f, timing %.0f, "
        "intensity %.0f, total %.0f | %zu readings\n",
        m_name.c_str(), std::string(NameOf(fault)).c_str(),
        MedianOf(fault, Component::kPronunciation), MedianOf(fault, Component::kPitch),
        MedianOf(fault, Component::kTiming), MedianOf(fault, Component::kIntensity),
        MedianOf(fault, Component::kTotal), Values(fault, Component::kTotal).size());
  }

  // A recording graded against itself, where no syllable is marked down.
  void SameRecording() const {
    int good = 0;
    int full = 0;
    for (const Trial& trial : m_trials) {
      const auto one = trial.find(SenseFault::kNone);
      if (one == trial.end() || !one->second.syllables_good) continue;
      const ComponentScores& scores = one->second.components;
      ++good;
      full += scores.pitch == 100 && scores.timing == 100 && scores.intensity == 100;
    }
    std::printf(
        "%s | grading, order | the tutor's own recording has 100 in pitch, timing and "
        "intensity | %d of %d\n",
        m_name.c_str(), full, good);
  }

  void Lower(SenseFault fault, Component component, const char* what) const {
    int lower = 0;
    int count = 0;
    for (const Trial& trial : m_trials) {
      const auto none = trial.find(SenseFault::kNone);
      const auto other = trial.find(fault);
      if (none == trial.end() || other == trial.end()) continue;
      ++count;
      lower += ScoreOf(other->second, component) < ScoreOf(none->second, component);
    }
    std::printf("%s | grading, order | %s is lower with %s | %d of %d\n", m_name.c_str(), what,
                std::string(NameOf(fault)).c_str(), lower, count);
  }

  // Of the components that a fault should leave alone, the largest change of a median.
  void Undisturbed(SenseFault fault, const std::vector<Component>& components) const {
    double most = 0.0;
    for (const Component component : components) {
      most = std::max(
          most, std::abs(MedianOf(fault, component) - MedianOf(SenseFault::kNone, component)));
    }
    std::printf(
        "%s | grading, order | undisturbed components with %s: medians move by at most "
        "%.0f points\n",
        m_name.c_str(), std::string(NameOf(fault)).c_str(), most);
  }

 private:
  std::vector<double> Values(SenseFault fault, Component component) const {
    std::vector<double> values;
    for (const Trial& trial : m_trials) {
      if (const auto one = trial.find(fault); one != trial.end()) {
        values.push_back(ScoreOf(one->second, component));
      }
    }
    return values;
  }
  double MedianOf(SenseFault fault, Component component) const {
    return Median(Values(fault, component));
  }

  std::string m_name;
  std::vector<Trial> m_trials;
};

void Run(const Options& options) {
  const auto language = options.language;
  LoadEngine(language, options.engine);
  LoadCertainGoodness();
  EspeakSpeech espeak;
  const SenseReadings readings(language, espeak);
  std::vector<Trial> trials;
  for (std::size_t sentence = 0; sentence < readings.Sentences().size(); ++sentence) {
    for (std::size_t voice = 0; voice < readings.NumVoices(); ++voice) {
      const auto tutor = readings.Speak(sentence, voice, SenseFault::kNone);
      Trial trial;
      for (const SenseFault fault : readings.Faults()) {
        // The synthesiser never speaks the same twice, so the tutor's recording itself.
        const auto learner =
            fault == SenseFault::kNone ? tutor : readings.Speak(sentence, voice, fault);
        const auto grades = GradeOne(language, readings.Sentences()[sentence].text, tutor, learner);
        if (grades) trial[fault] = *grades;
      }
      trials.push_back(std::move(trial));
    }
  }
  const Report report(NameOfLanguage(language), std::move(trials));
  for (const SenseFault fault : readings.Faults()) report.Medians(fault);
  report.SameRecording();
  using enum Component;
  report.Lower(SenseFault::kConsonants, kPronunciation, "pronunciation");
  report.Undisturbed(SenseFault::kConsonants, {kPitch, kTiming, kIntensity});
  report.Lower(SenseFault::kFlat, kPitch, "pitch");
  report.Undisturbed(SenseFault::kFlat, {kPronunciation, kTiming, kIntensity});
  report.Lower(SenseFault::kPause, kTiming, "timing");
  report.Undisturbed(SenseFault::kPause, {kPronunciation, kPitch, kIntensity});
  report.Lower(SenseFault::kOtherSentence, kTotal, "the total");
  if (language == kLanguageChinese) {
    report.Lower(SenseFault::kTones, kPitch, "pitch");
    report.Undisturbed(SenseFault::kTones, {kPronunciation, kTiming, kIntensity});
  }
  if (language == kLanguageJapanese) {
    report.Lower(SenseFault::kShortVowels, kTotal, "the total");
    report.Lower(SenseFault::kShortVowels, kTiming, "timing");
  }
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Grades synthesised readings with known faults.");
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--resources", options.engine.resources, "folder of dictionaries and models");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "evaluate-grading: %s\n", error.what());
    return 1;
  }
  return 0;
}
