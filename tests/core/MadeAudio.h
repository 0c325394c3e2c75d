#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/AnalysisState.h"
#include "core/AnalyzedAudio.h"

// Recordings whose analysis is made by hand.
namespace veral3::test {

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

// `Audio`: AnalyzedAudio or GradedAudio.
template <typename Audio>
class Made final : public Audio {
 public:
  using Audio::Audio;

  // What no application can do: the state is not const, only its readers see it so.
  AnalysisState& Hand() { return const_cast<AnalysisState&>(*this->State()); }
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

using MadeAudio = Made<AnalyzedAudio>;

// Everything that a recording answers through AlignedAudio, as arrays.
struct RecordingArrays {
  std::string phonemes;
  std::vector<int> start, end;  // [samples]
  std::vector<int> syllable_start, syllable_pitch, syllable_duration, syllable_mark;
  std::vector<double> syllable_intensity;
  std::vector<std::array<double, 5>> tone_prob;
  std::vector<int> word_start;
  int num_samples = 0;
  int pitch_segments = 0;
  std::array<int, 100> wave{};
  std::array<int, 128> pitch_contour{}, intensity_contour{};
};

inline RecordingArrays ArraysOf(const nlohmann::json& json) {
  RecordingArrays arrays;
  arrays.phonemes = json.at("phonemes");
  json.at("start").get_to(arrays.start);
  json.at("end").get_to(arrays.end);
  json.at("syl_start").get_to(arrays.syllable_start);
  json.at("syl_pitch").get_to(arrays.syllable_pitch);
  json.at("syl_duration").get_to(arrays.syllable_duration);
  json.at("syl_tone").get_to(arrays.syllable_mark);
  json.at("syl_intensity").get_to(arrays.syllable_intensity);
  json.at("tone_prob").get_to(arrays.tone_prob);
  json.at("word_start").get_to(arrays.word_start);
  json.at("n_samples").get_to(arrays.num_samples);
  json.at("utt_segments").get_to(arrays.pitch_segments);
  json.at("wave").get_to(arrays.wave);
  json.at("pitch_contour").get_to(arrays.pitch_contour);
  json.at("intensity_contour").get_to(arrays.intensity_contour);
  return arrays;
}

// Puts the arrays where an alignment and an analysis put theirs.
template <typename Audio>
void Fill(Made<Audio>& audio, const RecordingArrays& arrays) {
  auto result = std::make_shared<AlignmentResult>();
  result->matched_sentence_index = 0;
  result->phonemes = arrays.phonemes;
  std::ranges::copy(arrays.start, result->phoneme_start.begin());
  std::ranges::copy(arrays.end, result->phoneme_end.begin());
  result->num_syllables = static_cast<int>(arrays.syllable_start.size());
  std::ranges::copy(arrays.syllable_start, result->syllable_start.begin());
  std::ranges::copy(arrays.syllable_mark, result->syllable_mark.begin());
  result->num_words = static_cast<int>(arrays.word_start.size());
  std::ranges::copy(arrays.word_start, result->word_start.begin());

  auto prosody = std::make_shared<ProsodyResult>();
  prosody->pitch.syllable.assign(arrays.syllable_pitch.begin(), arrays.syllable_pitch.end());
  prosody->pitch.tones.assign(arrays.tone_prob.begin(), arrays.tone_prob.end());
  prosody->words =
      FindWordSpans(std::span(result->syllable_start).first(arrays.syllable_start.size()),
                    std::span(result->word_start).first(arrays.word_start.size()));
  prosody->syllable_duration.assign(arrays.syllable_duration.begin(),
                                    arrays.syllable_duration.end());
  prosody->intensity.syllable = arrays.syllable_intensity;
  prosody->utterance_pitch_segments = arrays.pitch_segments;
  prosody->pitch_contour = arrays.pitch_contour;
  prosody->intensity_contour = arrays.intensity_contour;

  AnalysisState& state = audio.Hand();
  state.num_samples = arrays.num_samples;
  state.num_possible_sentences = 1;
  state.result = std::move(result);
  state.prosody = std::move(prosody);
  state.waveform = std::make_shared<std::array<int, kWaveformPoints>>(arrays.wave);
}

}  // namespace veral3::test
