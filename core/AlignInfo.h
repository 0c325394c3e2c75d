#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "core/AlignedAudio.h"

// The alignment record: one aligned and analysed recording in 2544 bytes, from which a tutor is
// read back without analysing it again. docs/formats/alignment-record.md has it to the byte.
namespace veral3 {

inline constexpr std::size_t kAlignInfoSize = 2544;
inline constexpr int kAlignInfoPhonemes = 128;
inline constexpr int kAlignInfoSyllables = 64;
inline constexpr int kAlignInfoWords = 64;
inline constexpr int kAlignInfoTones = 5;
inline constexpr int kAlignInfoWavePoints = 100;
inline constexpr int kAlignInfoContourPoints = 128;
inline constexpr int kAlignInfoWaveScale = 128;     // a waveform byte stands for so many units
inline constexpr double kAlignInfoToneScale = 100;  // tone probabilities are hundredths

// The record's fields in its own units. What nobody has written is 0.
struct AlignInfo {
  std::int32_t num_samples = 0;
  std::int16_t num_phonemes = 0;
  std::int16_t num_syllables = 0;
  std::int16_t num_words = 0;
  std::int16_t num_pitch_segments = 0;
  std::array<char, kAlignInfoPhonemes> phonemes{};
  std::array<std::int16_t, kAlignInfoPhonemes> phoneme_start{};  // [frames]
  std::array<std::int16_t, kAlignInfoPhonemes> phoneme_end{};    // [frames]
  std::array<std::int16_t, kAlignInfoSyllables> syllable_start{};
  std::array<std::int16_t, kAlignInfoSyllables> syllable_pitch{};     // [Hz]
  std::array<std::int16_t, kAlignInfoSyllables> syllable_duration{};  // [samples]
  std::array<float, kAlignInfoSyllables> syllable_intensity{};
  std::array<std::int16_t, kAlignInfoSyllables> tone_or_stress{};  // Chinese only
  std::array<std::int16_t, kAlignInfoWords> word_start{};
  std::array<std::uint8_t, kAlignInfoWavePoints> wave{};
  std::array<std::uint8_t, kAlignInfoContourPoints> pitch_contour{};
  std::array<std::uint8_t, kAlignInfoContourPoints> intensity_contour{};
  std::array<std::array<std::int16_t, kAlignInfoTones>, kAlignInfoSyllables> tone_prob{};  // 1/100

  bool operator==(const AlignInfo&) const = default;
};

// The bytes of a record and back; little-endian on every machine. Any bytes decode.
std::array<std::uint8_t, kAlignInfoSize> EncodeAlignInfo(const AlignInfo& info);
AlignInfo DecodeAlignInfo(std::span<const std::uint8_t, kAlignInfoSize> bytes);

// Whether the counts are those of something: none negative, none larger than its fields.
bool HasSoundCounts(const AlignInfo& info);

// Takes down what `audio` answers. Returns 0, or -1 with a message when it has more than 127
// phonemes, 64 syllables or 64 words; `info` is then as it was.
int TakeDown(AlignedAudio& audio, AlignInfo& info);

}  // namespace veral3
