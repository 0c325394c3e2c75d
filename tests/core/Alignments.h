#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "recognition/AlignmentResult.h"

// Alignments made by hand.
namespace veral3::test {

struct Phoneme {
  char symbol;
  int begin_frame;
  int end_frame;
};

// An alignment of `num_frames` frames. Starts are phoneme indices. All pauses have probability 1.
inline AlignmentResult MakeAlignment(int num_frames, const std::vector<Phoneme>& phonemes,
                                     const std::vector<int>& syllable_start,
                                     const std::vector<int>& word_start = {0}) {
  AlignmentResult alignment;
  alignment.num_frames = num_frames;
  for (std::size_t i = 0; i < phonemes.size(); ++i) {
    alignment.phonemes.push_back(phonemes[i].symbol);
    alignment.phoneme_start[i] = phonemes[i].begin_frame * kFrameShift;
    alignment.phoneme_end[i] = phonemes[i].end_frame * kFrameShift;
  }
  std::copy(syllable_start.begin(), syllable_start.end(), alignment.syllable_start.begin());
  alignment.num_syllables = static_cast<int>(syllable_start.size());
  std::copy(word_start.begin(), word_start.end(), alignment.word_start.begin());
  alignment.num_words = static_cast<int>(word_start.size());
  alignment.phoneme_mfcc_prob.assign(phonemes.size(), 1.0);
  alignment.pause_mfcc_prob.assign(phonemes.size() + 1, 1.0);
  alignment.path_posterior.assign(static_cast<std::size_t>(num_frames), 1.0);
  return alignment;
}

// As the reference vectors describe one.
inline AlignmentResult MakeAlignment(int num_frames, const nlohmann::json& json) {
  const auto copy = [&](const char* key, auto& to) {
    const auto from = json.at(key).get<std::vector<std::int32_t>>();
    std::copy(from.begin(), from.end(), to.begin());
    return static_cast<int>(from.size());
  };
  AlignmentResult alignment;
  alignment.num_frames = num_frames;
  alignment.phonemes = json.at("phonemes");
  copy("start", alignment.phoneme_start);
  copy("end", alignment.phoneme_end);
  alignment.num_syllables = copy("syl_start", alignment.syllable_start);
  alignment.num_words = copy("word_start", alignment.word_start);
  return alignment;
}

// An alignment that no aligner makes: any position may be any number, and its arrays need not fit
// one another.
class WildAlignments {
 public:
  explicit WildAlignments(unsigned seed) : m_random(seed) {}

  AlignmentResult Next() {
    AlignmentResult alignment;
    alignment.num_frames = Size(60) - 1;
    alignment.num_samples = Size(10000);
    alignment.phonemes.assign(static_cast<std::size_t>(Size(12)), 'a');
    if (Size(20) == 0) alignment.phonemes.assign(600, 'e');
    Fill(alignment.phoneme_start, 60 * kFrameShift);
    Fill(alignment.phoneme_end, 60 * kFrameShift);
    Fill(alignment.syllable_start, 12);
    Fill(alignment.word_start, 12);
    alignment.num_syllables = Size(20) == 0 ? Number(600) : Size(10);
    alignment.num_words = Size(20) == 0 ? Number(300) : Size(10);
    alignment.mfcc.assign(static_cast<std::size_t>(Size(60 * 39)), 0.5F);
    Fill(alignment.path_posterior, 60);
    Fill(alignment.phoneme_mfcc_prob, 12);
    Fill(alignment.pause_mfcc_prob, 13);
    return alignment;
  }

  // 0 to `end` - 1.
  int Size(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }

  // Mostly what fits, at times anything.
  std::int32_t Number(int end) {
    if (Size(50) == 0) return INT32_MAX;
    if (Size(50) == 0) return INT32_MIN;
    return Size(10) == 0 ? -Size(end) : Size(end);
  }

  template <std::size_t n>
  void Fill(std::array<std::int32_t, n>& values, int end) {
    values.fill(Number(end));
    for (std::int32_t& value : std::span(values).first(16)) value = Number(end);
  }

  template <typename T>
  void Fill(std::vector<T>& values, int end) {
    values.resize(static_cast<std::size_t>(Size(end)));
    for (T& value : values) value = static_cast<T>(Size(1001)) / static_cast<T>(1000);
  }

 private:
  std::mt19937 m_random;
};

}  // namespace veral3::test
