#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/AlignmentReport.h"
#include "tools/Resources.h"

class AlignedAudio;

// What one analysis measured, as plain data for the output formats (tools/AnalysisFormats.h). A
// value that was not measured, or that is no number, is empty.
namespace veral3::tools {

// One phoneme that a segment may be.
struct PhonemeReading {
  std::string symbol;
  double probability = 0.0;  // 0 to 1, of all phonemes together 1
};

struct PhonemeMeasures {
  std::string sounds_like;  // the most likely symbol, "" without a phoneme model
  std::optional<double> sounds_like_probability;
  std::vector<PhonemeReading> readings;  // the three most likely, best first
};

struct SyllableMeasures {
  std::optional<int> pitch;                // [Hz] the highest, empty where nothing is voiced
  int duration = 0;                        // [samples at 22050 Hz]
  double intensity = 0.0;                  // sum of squares of its loudest frame of 551 samples
  std::optional<double> intensity_db;      // that frame against full scale, up to 0 dB
  std::optional<int> stress;               // English: 0 none, 1 main, 2 secondary
  std::optional<int> tone;                 // Chinese: 1 to 4, 5 neutral
  std::vector<double> tone_probabilities;  // Chinese: neutral, 1 to 4; empty: not classified
  double goodness = 1.0;                   // 0 to 1, below 1 after a noise or for a broken pitch
  int pitch_segments = 0;                  // voiced stretches
};

struct WordMeasures {
  std::optional<int> pitch;  // [Hz] mean of its syllables', unvoiced ones counting 0
};

// A stretch of at least one frame before, between or after the phonemes.
struct Pause {
  int after_phoneme = -1;  // number of the phoneme before it; -1 at the start
  int start = 0;           // [samples]
  int end = 0;
  std::optional<double> probability;  // geometric mean over its frames, 0 to 1
};

// Curves for display over the utterance.
struct ContourSet {
  std::vector<int> wave;       // 100 points, 0 to 29490
  std::vector<int> pitch;      // 128 points, 0 (lowest or unvoiced) to 229 (highest)
  std::vector<int> intensity;  // 128 points, 0 (softest) to 229 (loudest)
};

struct AnalysisReport {
  AlignmentReport alignment;
  int start = 0;                               // [samples] of the first phoneme
  int end = 0;                                 // [samples] of the last phoneme
  std::optional<int> mean_pitch;               // [Hz] mean of the syllables' pitches
  int pitch_segments = 0;                      // voiced stretches of the utterance
  std::optional<double> goodness_probability;  // 0 to 1; empty without a goodness model
  std::optional<double> signal_to_noise_db;   // [dB] of powers; empty where noise or speech is none
  std::optional<double> speech_energy_ratio;  // 0 to 1
  std::vector<WordMeasures> words;            // one for each of the alignment's
  std::vector<SyllableMeasures> syllables;
  std::vector<PhonemeMeasures> phonemes;
  std::vector<Pause> pauses;
  ContourSet contours;
};

// Reads an analysed recording whose alignment is reported already.
AnalysisReport MakeAnalysisReport(AlignmentReport alignment, AnalyzedAudio& audio,
                                  const MeasuringModels& models);

// The curves of any aligned recording.
ContourSet ContoursOf(AlignedAudio& audio);

}  // namespace veral3::tools
