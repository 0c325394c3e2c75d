#pragma once

#include "tools/AlignmentReport.h"

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

}  // namespace veral3::tools::test
