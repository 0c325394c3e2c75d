#include "tools/GradeReport.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/Tones.h"
#include "grading/GradedAudio.h"
#include "grading/TotalScore.h"
#include "recognition/Languages.h"
#include "tools/Numbers.h"

namespace veral3::tools {
namespace {

std::optional<double> Finite(double value) {
  return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

WordGrade GradeOfWord(GradedAudio& learner, int i) {
  WordGrade grade;
  grade.scores = {learner.GetWordScore(i), learner.GetWordPronunScore(i),
                  learner.GetWordPitchScore(i), learner.GetWordTimingScore(i),
                  learner.GetWordIntensityScore(i)};
  if (HasStress(learner.GetLanguageType())) {
    grade.contrasts = {Finite(learner.GetWordPitchConstrast(i)),
                       Finite(learner.GetWordTimingConstrast(i)),
                       Finite(learner.GetWordIntensityConstrast(i))};
  }
  return grade;
}

// Whether a syllable's tone was classified: one whose pitch is too broken has only zeros.
bool HasTone(AlignedAudio& audio, int i) {
  for (int tone = 0; tone < kToneClassCount; ++tone) {
    if (audio.GetSylToneProb(i, tone) != 0.0) return true;
  }
  return false;
}

SyllableGrade GradeOfSyllable(GradedAudio& learner, AlignedAudio& tutor, int i) {
  SyllableGrade grade;
  grade.scores = {std::nullopt, learner.GetSyllablePronunScore(i), learner.GetSyllablePitchScore(i),
                  learner.GetSyllableTimingScore(i), learner.GetSyllableIntensityScore(i)};
  grade.pitch_advice = learner.GetSyllablePitchAdvice(i);
  grade.timing_advice = learner.GetSyllableTimingAdvice(i);
  grade.intensity_advice = learner.GetSyllableIntensityAdvice(i);
  grade.unnecessary_pause = learner.GetSyllableUnnecessaryPause(i);
  if (HasTones(learner.GetLanguageType())) {
    if (HasTone(tutor, i)) grade.tutor_tone = learner.GetCorrectTone(i);
    if (HasTone(learner, i)) grade.learner_tone = learner.GetStudentTone(i);
  }
  return grade;
}

}  // namespace

GradeReport MakeGradeReport(AnalysisReport analysis, GradedAudio& learner, AlignedAudio* tutor) {
  GradeReport report;
  report.analysis = std::move(analysis);
  report.pronunciation_only = tutor == nullptr;
  report.scores.total = learner.GetTotalScore();
  report.scores.pronunciation = learner.GetPronunScore();
  if (tutor != nullptr) {
    report.scores.pitch = learner.GetPitchScore();
    report.scores.timing = learner.GetTimingScore();
    report.scores.intensity = learner.GetIntensityScore();
  }
  if (const std::optional<double>& goodness = report.analysis.goodness_probability) {
    const double kept = tutor != nullptr ? GoodnessFactor(*goodness) : *goodness;
    report.lowered_to = std::clamp(kept, 0.0, 1.0);
  }
  const int num_words = learner.GetNumOfWords();
  for (int i = 0; i < num_words; ++i) {
    report.words.push_back(tutor != nullptr ? GradeOfWord(learner, i) : WordGrade());
  }
  const int num_syllables = learner.GetNumOfSyllables();
  for (int i = 0; i < num_syllables; ++i) {
    SyllableGrade grade;
    if (tutor != nullptr) {
      grade = GradeOfSyllable(learner, *tutor, i);
    } else {
      grade.scores.pronunciation = learner.GetSyllablePronunScore(i);
    }
    report.syllables.push_back(grade);
  }
  const int num_phonemes = learner.GetNumOfPhonemes();
  for (int i = 0; i < num_phonemes; ++i) {
    report.phonemes.emplace_back(learner.GetPhonemePonunScore(i));
  }
  return report;
}

std::string LoweredText(const GradeReport& report) {
  if (!report.lowered_to || *report.lowered_to >= kTellLoweredBelow) return "";
  return std::string(report.pronunciation_only ? "total" : "scores") + " lowered to " +
         Fixed(100.0 * *report.lowered_to, 0) + " %: this may not be a reading of the sentence";
}

DrawnRecording DrawingOf(std::string file, AlignedAudio& audio,
                         std::span<const std::int16_t> samples) {
  DrawnRecording drawn;
  drawn.file = std::move(file);
  drawn.samples.assign(samples.begin(), samples.end());
  drawn.utterance = {audio.GetUttStartSampleNum(), audio.GetUttEndSampleNum()};
  const int num_phonemes = audio.GetNumOfPhonemes();
  // From the start of phoneme `first` to the end of the one before `next`.
  const auto span = [&](int first, int next) {
    const int start = audio.GetPhonemeStartSampleNum(first);
    return DrawnRecording::Span{start,
                                next > first ? audio.GetPhonemeEndSampleNum(next - 1) : start};
  };
  const int num_words = audio.GetNumOfWords();
  for (int i = 0; i < num_words; ++i) {
    drawn.words.push_back(
        span(audio.GetWordStartPosition(i),
             i + 1 < num_words ? audio.GetWordStartPosition(i + 1) : num_phonemes));
  }
  const int num_syllables = audio.GetNumOfSyllables();
  for (int i = 0; i < num_syllables; ++i) {
    drawn.syllables.push_back(
        span(audio.GetSyllableStartPosition(i),
             i + 1 < num_syllables ? audio.GetSyllableStartPosition(i + 1) : num_phonemes));
  }
  drawn.contours = ContoursOf(audio);
  return drawn;
}

}  // namespace veral3::tools
