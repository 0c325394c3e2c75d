#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "core/AlignedAudio.h"
#include "core/WordSpans.h"

// The two recordings of a grading as plain arrays. Learner and tutor may have read different texts:
// whatever one lacks reads as pitch, duration, intensity and probabilities of 0, at the end of its
// utterance. Nothing is read outside an array.
namespace veral3 {

inline constexpr int kToneClasses = 5;
using ToneRow = std::array<double, kToneClasses>;

struct RecordingView {
  LanguageType language{};
  std::string phonemes;
  std::vector<int> phoneme_start;  // [samples], one a phoneme
  std::vector<int> phoneme_end;
  std::vector<int> syllable_start;     // index of a syllable's first phoneme
  std::vector<int> syllable_pitch;     // [Hz]
  std::vector<int> syllable_duration;  // [samples]
  std::vector<double> syllable_intensity;
  std::vector<ToneRow> tone_probability;
  int pitch_segments = 0;

  int NumPhonemes() const { return static_cast<int>(phonemes.size()); }
  int NumSyllables() const { return static_cast<int>(syllable_start.size()); }

  int UttStart() const { return phoneme_start.empty() ? 0 : phoneme_start.front(); }
  int UttEnd() const { return phoneme_end.empty() ? 0 : phoneme_end.back(); }
  int PhonemeStart(int phoneme) const { return At(phoneme_start, phoneme, UttEnd()); }
  int PhonemeEnd(int phoneme) const { return At(phoneme_end, phoneme, UttEnd()); }
  int SyllableStart(int syllable) const { return At(syllable_start, syllable, NumPhonemes()); }
  int Duration(int syllable) const { return At(syllable_duration, syllable, 0); }
  double Intensity(int syllable) const { return At(syllable_intensity, syllable, 0.0); }
  ToneRow Tones(int syllable) const { return At(tone_probability, syllable, ToneRow{}); }

 private:
  template <typename T>
  static T At(const std::vector<T>& values, int index, T otherwise) {
    if (index < 0 || static_cast<std::size_t>(index) >= values.size()) return otherwise;
    return values[static_cast<std::size_t>(index)];
  }
};

struct LearnerView : RecordingView {
  WordSpans words;
  std::vector<double> goodness;  // factor a syllable, 0 to 1

  // Rows of probabilities over the phoneme set, one a phoneme.
  std::size_t distribution_width = 0;
  std::vector<double> distributions;

  int NumWords() const { return static_cast<int>(words.num_syllables.size()); }
  double Goodness(int syllable) const {
    const auto at = static_cast<std::size_t>(syllable);
    return syllable >= 0 && at < goodness.size() ? goodness[at] : 0.0;
  }
  // Empty where a phoneme has none.
  std::span<const double> Distribution(int phoneme) const {
    const std::size_t begin = static_cast<std::size_t>(phoneme) * distribution_width;
    if (phoneme < 0 || begin + distribution_width > distributions.size()) return {};
    return std::span(distributions).subspan(begin, distribution_width);
  }
};

// Reads a recording through its operations, as far as they say it goes.
RecordingView ViewOf(AlignedAudio& audio);

}  // namespace veral3
