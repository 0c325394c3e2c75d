#pragma once

#include <optional>

#include "tools/AlignmentReport.h"
#include "tools/AnalysisReport.h"
#include "tools/GradeReport.h"

namespace veral3::tools::test {

// "go away", with a pause before, between and after the words.
inline AlignmentReport SampleReport() {
  AlignmentReport report;
  report.file = "a.wav";
  report.sentence_index = 1;
  report.sentence = "go away";
  report.log_probability = -123.456;
  report.num_samples = 22050;
  report.words = {{"GO", 2200, 6600, 0.5, 1}, {"AWAY", 8800, 17600, 0.25, 2}};
  report.syllables = {
      {"g@U", 2200, 6600, 0.5, 3}, {"@", 8800, 9900, 0.25, 1}, {"wEI", 9900, 17600, 0.25, 3}};
  report.phonemes = {{"g", 2200, 3300, 0.5},   {"@", 3300, 5500, 0.5},   {"U", 5500, 6600, 0.5},
                     {"@", 8800, 9900, 0.25},  {"w", 9900, 11000, 0.25}, {"E", 11000, 15400, 0.25},
                     {"I", 15400, 17600, 0.25}};
  return report;
}

// The same, measured: with all that can be missing once there and once not.
inline AnalysisReport SampleAnalysis() {
  AnalysisReport report;
  report.alignment = SampleReport();
  report.start = 2200;
  report.end = 17600;
  report.mean_pitch = 120;
  report.pitch_segments = 3;
  report.goodness_probability = 0.9375;
  report.signal_to_noise_db = 21.25;
  report.speech_energy_ratio = 0.5;
  report.words = {{180}, {90}};
  report.syllables = {{180, 4400, 1e9, -27.5, 1, std::nullopt, {}, 1.0, 1},
                      {180, 1100, 1e8, -37.5, 0, std::nullopt, {}, 0.5, 2},
                      {std::nullopt, 7700, 0.0, std::nullopt, 1, std::nullopt, {}, 1.0, 0}};
  report.phonemes.resize(7);
  report.phonemes[0] = {"k", 0.5, {{"k", 0.5}, {"g", 0.375}, {"-", 0.125}}};
  report.pauses = {{-1, 0, 2200, 0.25}, {2, 6600, 8800, std::nullopt}, {6, 17600, 22050, 1.0}};
  report.contours.wave.assign(100, 7);
  report.contours.pitch.assign(128, 8);
  report.contours.intensity.assign(128, 9);
  return report;
}

// The same, graded against a tutor.
inline GradeReport SampleGrade() {
  GradeReport report;
  report.analysis = SampleAnalysis();
  report.tutor_file = "t.wav";
  report.teacher = "Ms. Lin";
  report.scores = {81, 90, 80, 70, 60};
  report.lowered_to = 0.90625;
  report.words = {{{91, 91, 92, 93, 94}, {1.0, 1.0, 1.0}},
                  {{72, 70, 60, 80, 90}, {1.5, 1e10, 1.0}}};
  report.syllables = {{{std::nullopt, 91, 92, 93, 94}, '-', '-', '-', false, {}, {}},
                      {{std::nullopt, 80, 70, 60, 50}, 'h', 'S', '-', true, {}, {}},
                      {{std::nullopt, 95, 40, 96, 97}, 'L', '-', 'l', false, {}, {}}};
  for (int i = 0; i < 7; ++i) report.phonemes.emplace_back(100 - 10 * i);
  report.drawn.file = "a.wav";
  report.drawn.samples.assign(22050, 0);
  for (std::size_t i = 2200; i < 17600; ++i) {
    report.drawn.samples[i] = static_cast<std::int16_t>(i % 100 < 50 ? 8000 : -8000);
  }
  report.drawn.utterance = {2200, 17600};
  report.drawn.words = {{2200, 6600}, {8800, 17600}};
  report.drawn.syllables = {{2200, 6600}, {8800, 9900}, {9900, 17600}};
  report.drawn.contours = report.analysis.contours;
  return report;
}

// The same, its pronunciation graded alone.
inline GradeReport SamplePronunciationGrade() {
  GradeReport report = SampleGrade();
  report.pronunciation_only = true;
  report.tutor_file.clear();
  report.teacher.clear();
  report.scores = {85, 90, {}, {}, {}};
  report.words.assign(2, {});
  for (SyllableGrade& syllable : report.syllables) {
    const std::optional<int> pronunciation = syllable.scores.pronunciation;
    syllable = {};
    syllable.scores.pronunciation = pronunciation;
  }
  return report;
}

}  // namespace veral3::tools::test
