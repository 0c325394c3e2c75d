#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common/CString.h"
#include "signal/CWaveFrameDef.h"

namespace veral3 {

inline constexpr int kMaxPhonemes = 512;
inline constexpr int kMaxSyllables = 512;
inline constexpr int kMaxWords = 256;

// One step of the best path: the state entered, and the sample at which its frame starts.
struct PathEntry {
  char phoneme;          // symbol of the set, '-' pause, '*' start, '$' end
  std::int8_t state;     // 0, 1 or 2
  bool word_start;       // state 0 of the first phoneme of a word's variant
  std::int16_t variant;  // which variant of the word, where word_start
  std::int32_t node;     // number of the network node
  std::int32_t time;     // samples
};

// Everything one alignment found. Filled by ViterbiAligner, read-only afterwards and shared by the
// copies of the analysis that made it. All positions are indices into `phonemes`, all times are
// samples at the start of a frame.
struct AlignmentResult {
  int num_samples = 0;
  int num_frames = 0;
  std::vector<float> mfcc;  // num_frames x 39
  int matched_sentence_index = -1;
  std::vector<PathEntry> path;  // the winner's history, in time order
  int num_syllables = 0;
  int num_words = 0;
  std::string phonemes;  // one symbol an aligned phoneme
  std::array<std::int32_t, kMaxPhonemes> phoneme_start{};
  std::array<std::int32_t, kMaxPhonemes> phoneme_end{};  // start of what follows
  std::array<std::int32_t, kMaxSyllables> syllable_start{};
  std::array<std::int32_t, kMaxSyllables> syllable_mark{};  // tone or stress
  std::vector<CString> words;                               // of the matched sentence
  std::array<std::int32_t, kMaxWords> word_start{};
  int score_columns = 0;               // 3 x size of the phoneme set
  std::vector<double> frame_scores;    // num_frames x score_columns
  std::vector<double> path_posterior;  // a frame: sum over the three states of the path's phoneme
  std::vector<double> phoneme_mfcc_prob;  // a phoneme
  std::vector<double> pause_mfcc_prob;    // a gap: before phoneme 0, between, after the last
  double log_probability = 0.0;

  int NumPhonemes() const { return static_cast<int>(phonemes.size()); }
  std::span<const double> FrameScores(int frame) const {
    return std::span(frame_scores)
        .subspan(static_cast<std::size_t>(frame) * static_cast<std::size_t>(score_columns),
                 static_cast<std::size_t>(score_columns));
  }
};

// First frame of a time given in samples.
constexpr int FrameOfSample(int sample) { return sample / kFrameShift; }

}  // namespace veral3
