#include "tools/AnalysisReport.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>

#include "core/AnalyzedAudio.h"
#include "core/Tones.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/Languages.h"
#include "signal/CWaveFrameDef.h"

namespace veral3::tools {
namespace {

constexpr int kWavePoints = 100;
constexpr int kContourPoints = 128;
constexpr std::size_t kReadings = 3;

// Energy of a frame of the loudest samples that 16 bits hold.
constexpr double kFullScale = kFrameLength * 32768.0 * 32768.0;

std::optional<double> Finite(double value) {
  return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<double> Decibels(double ratio) {
  return ratio > 0.0 ? Finite(10.0 * std::log10(ratio)) : std::nullopt;
}

std::optional<int> Voiced(int pitch) { return pitch > 0 ? std::optional(pitch) : std::nullopt; }

std::vector<PhonemeReading> ReadingsOf(const CPhonemeSet& set, const double* row) {
  if (row == nullptr) return {};
  const std::span<const double> scores(row, static_cast<std::size_t>(set.GetSize()));
  double sum = 0.0;
  for (const double score : scores) sum += score;
  if (!(sum > 0.0) || !std::isfinite(sum)) return {};
  std::vector<std::size_t> order(scores.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::ranges::stable_sort(order,
                           [&](std::size_t a, std::size_t b) { return scores[a] > scores[b]; });
  std::vector<PhonemeReading> readings;
  for (const std::size_t i : std::span(order).first(std::min(kReadings, order.size()))) {
    readings.push_back({std::string(1, set.GetFullSet()[i]), scores[i] / sum});
  }
  return readings;
}

PhonemeMeasures MeasuresOfPhoneme(const CPhonemeSet& set, AnalyzedAudio& audio, int i) {
  PhonemeMeasures measures;
  measures.readings = ReadingsOf(set, audio.GetPhonProbDistrArry(i));
  if (measures.readings.empty()) return measures;
  measures.sounds_like = std::string(1, audio.GetSoundsLikePhonemes()[i]);
  measures.sounds_like_probability = Finite(audio.GetSoundsLikePhonProb(i));
  return measures;
}

SyllableMeasures MeasuresOfSyllable(AnalyzedAudio& audio, int i, bool has_tones) {
  SyllableMeasures measures;
  measures.pitch = Voiced(audio.GetSyllablePitch(i));
  measures.duration = audio.GetSyllableDuration(i);
  measures.intensity = audio.GetSyllableIntensity(i);
  measures.intensity_db = Decibels(measures.intensity / kFullScale);
  const LanguageType language = audio.GetLanguageType();
  if (HasStress(language)) measures.stress = audio.GetSyllableToneOrStress(i);
  if (HasTones(language)) measures.tone = audio.GetSyllableToneOrStress(i);
  if (has_tones) {
    for (int tone = 0; tone < kToneClassCount; ++tone) {
      measures.tone_probabilities.push_back(audio.GetSylToneProb(i, tone));
    }
    // A syllable whose pitch is too broken for a tone has a row of zeros.
    if (std::ranges::all_of(measures.tone_probabilities, [](double p) { return p == 0.0; })) {
      measures.tone_probabilities.clear();
    }
  }
  measures.goodness = audio.ProbGoodSyllable(i);
  measures.pitch_segments = audio.GetSylNumOfPitchSegments(i);
  return measures;
}

std::vector<Pause> PausesOf(AnalyzedAudio& audio) {
  std::vector<Pause> pauses;
  const int num_phonemes = audio.GetNumOfPhonemes();
  for (int gap = 0; gap <= num_phonemes; ++gap) {
    Pause pause;
    pause.after_phoneme = gap - 1;
    pause.start = gap == 0 ? 0 : audio.GetPhonemeEndSampleNum(gap - 1);
    pause.end = gap == num_phonemes ? audio.GetNumOfSamples() : audio.GetPhonemeStartSampleNum(gap);
    if (pause.end - pause.start < kFrameShift) continue;
    pause.probability = Finite(std::min(audio.GetPauseMFCCProb(gap), 1.0));
    pauses.push_back(pause);
  }
  return pauses;
}

}  // namespace

ContourSet ContoursOf(AlignedAudio& audio) {
  ContourSet contours;
  for (int i = 0; i < kWavePoints; ++i) contours.wave.push_back(audio.GetWaveY(i));
  for (int i = 0; i < kContourPoints; ++i) {
    contours.pitch.push_back(audio.GetPitchContour(i));
    contours.intensity.push_back(audio.GetIntensityContour(i));
  }
  return contours;
}

AnalysisReport MakeAnalysisReport(AlignmentReport alignment, AnalyzedAudio& audio,
                                  const MeasuringModels& models) {
  AnalysisReport report;
  report.alignment = std::move(alignment);
  report.start = audio.GetUttStartSampleNum();
  report.end = audio.GetUttEndSampleNum();
  report.mean_pitch = Voiced(audio.GetUttAveragePitch());
  report.pitch_segments = audio.GetUttNumOfPitchSegments();
  if (models.goodness) report.goodness_probability = Finite(audio.GetProbOfGoodAlignment());
  report.signal_to_noise_db = Decibels(audio.GetSignalNoiseRatio());
  report.speech_energy_ratio = Finite(audio.GetSpeechUttEnergyRatio());
  const int num_words = audio.GetNumOfWords();
  for (int i = 0; i < num_words; ++i) {
    // A word whose syllables were all passed over has no pitch to ask for.
    const bool has_syllables = report.alignment.words.size() > static_cast<std::size_t>(i) &&
                               report.alignment.words[static_cast<std::size_t>(i)].parts > 0;
    report.words.push_back({has_syllables ? Voiced(audio.GetWordPitch(i)) : std::nullopt});
  }
  const int num_syllables = audio.GetNumOfSyllables();
  for (int i = 0; i < num_syllables; ++i) {
    report.syllables.push_back(MeasuresOfSyllable(audio, i, models.tone));
  }
  if (const CPhonemeSet* const set = PhonemeSetOf(audio.GetLanguageType())) {
    const int num_phonemes = audio.GetNumOfPhonemes();
    for (int i = 0; i < num_phonemes; ++i) {
      report.phonemes.push_back(models.phoneme ? MeasuresOfPhoneme(*set, audio, i)
                                               : PhonemeMeasures());
    }
  }
  report.pauses = PausesOf(audio);
  report.contours = ContoursOf(audio);
  return report;
}

}  // namespace veral3::tools
