#pragma once

#include <string>
#include <vector>

#include "common/LanguageType.h"

class AnalyzedAudio;

// What one alignment found, as plain data for the output formats (tools/AlignmentFormats.h).
namespace veral3::tools {

// A stretch of the recording and what was said in it. Times are samples at 22050 Hz; the end is the
// start of whatever follows.
struct Segment {
  std::string text;  // UTF-8: a word, the phoneme symbols of a syllable, or one symbol
  int start = 0;
  int end = 0;
  double confidence = 0.0;  // geometric mean of its frames' probabilities, 0 to 1
  int parts = 0;            // of a word its syllables, of a syllable its phonemes
};

struct AlignmentReport {
  std::string file;   // as the user named it
  std::string error;  // why there is no alignment; then nothing below is filled
  LanguageType language = kLanguageEnglish;
  int sentence_index = 0;  // 0-based, in the order given
  std::string sentence;    // UTF-8
  double log_probability = 0.0;
  int num_samples = 0;

  // In time order, without the pauses between them. The syllables follow one another in the order
  // of the words, the phonemes in that of the syllables.
  std::vector<Segment> words;
  std::vector<Segment> syllables;
  std::vector<Segment> phonemes;
};

// Reads an aligned recording. `sentence` is the text as the user gave it.
AlignmentReport MakeReport(std::string file, std::string sentence, AnalyzedAudio& audio);

}  // namespace veral3::tools
