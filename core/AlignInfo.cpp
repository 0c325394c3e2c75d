#include "core/AlignInfo.h"

#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

#include "common/MessageWriter.h"
#include "recognition/AlignmentResult.h"
#include "recognition/Languages.h"

namespace veral3 {
namespace {

std::size_t Index(int i) { return static_cast<std::size_t>(i); }

// The layout: where each field begins. Writer and reader both walk it.
template <typename Info, typename Visit>
void VisitFields(Info& info, Visit visit) {
  visit(0, info.num_samples);
  visit(4, info.num_phonemes);
  visit(6, info.num_syllables);
  visit(8, info.num_words);
  visit(10, info.num_pitch_segments);
  visit(12, info.phonemes);
  visit(140, info.phoneme_start);
  visit(396, info.phoneme_end);
  visit(652, info.syllable_start);
  visit(780, info.syllable_pitch);
  visit(908, info.syllable_duration);
  visit(1036, info.syllable_intensity);
  visit(1292, info.tone_or_stress);
  visit(1420, info.word_start);
  visit(1548, info.wave);
  visit(1648, info.pitch_contour);
  visit(1776, info.intensity_contour);
  visit(1904, info.tone_prob);
}

template <std::size_t width>
using Bits = std::conditional_t<width == 1, std::uint8_t,
                                std::conditional_t<width == 2, std::uint16_t, std::uint32_t>>;

// Each returns the offset behind the field.
template <typename T>
std::size_t Put(std::span<std::uint8_t> bytes, std::size_t offset, const T& value) {
  const auto bits = std::bit_cast<Bits<sizeof(T)>>(value);
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    bytes[offset++] = static_cast<std::uint8_t>(bits >> (8 * i) & 0xFFU);
  }
  return offset;
}

template <typename T, std::size_t n>
std::size_t Put(std::span<std::uint8_t> bytes, std::size_t offset, const std::array<T, n>& values) {
  for (const T& value : values) offset = Put(bytes, offset, value);
  return offset;
}

template <typename T>
std::size_t Get(std::span<const std::uint8_t> bytes, std::size_t offset, T& value) {
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) bits |= std::uint32_t{bytes[offset++]} << (8 * i);
  value = std::bit_cast<T>(static_cast<Bits<sizeof(T)>>(bits));
  return offset;
}

template <typename T, std::size_t n>
std::size_t Get(std::span<const std::uint8_t> bytes, std::size_t offset, std::array<T, n>& values) {
  for (T& value : values) offset = Get(bytes, offset, value);
  return offset;
}

std::int16_t Frame(int sample) { return static_cast<std::int16_t>(FrameOfSample(sample)); }

// A double beyond a float's range becomes infinite, as arithmetic has it.
float Narrow(double value) {
  if (std::abs(value) > static_cast<double>(std::numeric_limits<float>::max())) {
    return std::copysign(std::numeric_limits<float>::infinity(), value < 0 ? -1.0F : 1.0F);
  }
  return static_cast<float>(value);
}

std::int16_t Hundredths(double probability) {
  const double scaled = probability * kAlignInfoToneScale;
  constexpr double kLimit = 32768.0;
  return std::abs(scaled) < kLimit ? static_cast<std::int16_t>(scaled) : std::int16_t{0};
}

bool Fits(int count, int most, const char* what) {
  if (count <= most) return true;
  Message(MessageStream::kError) << "ERROR in AnalyzedAudio::GetAlignInfo(), " << count << " "
                                 << what << ", more than " << most << "\n";
  return false;
}

void TakeDownPhonemes(AlignedAudio& audio, AlignInfo& info) {
  const char* phonemes = audio.GetPhonemes();
  for (int i = 0; i < info.num_phonemes; ++i) {
    info.phonemes[Index(i)] = phonemes[i];
    info.phoneme_start[Index(i)] = Frame(audio.GetPhonemeStartSampleNum(i));
    info.phoneme_end[Index(i)] = Frame(audio.GetPhonemeEndSampleNum(i));
  }
}

void TakeDownSyllables(AlignedAudio& audio, AlignInfo& info) {
  const bool tonal = HasTones(audio.GetLanguageType());
  for (int s = 0; s < info.num_syllables; ++s) {
    const std::size_t at = Index(s);
    info.syllable_start[at] = static_cast<std::int16_t>(audio.GetSyllableStartPosition(s));
    info.syllable_pitch[at] = static_cast<std::int16_t>(audio.GetSyllablePitch(s));
    // In samples, unlike the phonemes' frames: readers rely on it.
    info.syllable_duration[at] = static_cast<std::int16_t>(audio.GetSyllableDuration(s));
    info.syllable_intensity[at] = Narrow(audio.GetSyllableIntensity(s));
    if (!tonal) continue;
    info.tone_or_stress[at] = static_cast<std::int16_t>(audio.GetSyllableToneOrStress(s));
    for (int k = 0; k < kAlignInfoTones; ++k) {
      info.tone_prob[at][Index(k)] = Hundredths(audio.GetSylToneProb(s, k));
    }
  }
}

void TakeDownContours(AlignedAudio& audio, AlignInfo& info) {
  for (int i = 0; i < kAlignInfoWavePoints; ++i) {
    info.wave[Index(i)] = static_cast<std::uint8_t>(audio.GetWaveY(i) / kAlignInfoWaveScale);
  }
  for (int i = 0; i < kAlignInfoContourPoints; ++i) {
    info.pitch_contour[Index(i)] = static_cast<std::uint8_t>(audio.GetPitchContour(i));
    info.intensity_contour[Index(i)] = static_cast<std::uint8_t>(audio.GetIntensityContour(i));
  }
}

}  // namespace

std::array<std::uint8_t, kAlignInfoSize> EncodeAlignInfo(const AlignInfo& info) {
  std::array<std::uint8_t, kAlignInfoSize> bytes{};
  VisitFields(info, [&](std::size_t offset, const auto& field) { Put(bytes, offset, field); });
  return bytes;
}

AlignInfo DecodeAlignInfo(std::span<const std::uint8_t, kAlignInfoSize> bytes) {
  AlignInfo info;
  VisitFields(info, [&](std::size_t offset, auto& field) { Get(bytes, offset, field); });
  return info;
}

bool HasSoundCounts(const AlignInfo& info) {
  const auto sound = [](int count, int most) { return count >= 0 && count <= most; };
  return sound(info.num_phonemes, kAlignInfoPhonemes) &&
         sound(info.num_syllables, kAlignInfoSyllables) && sound(info.num_words, kAlignInfoWords);
}

int TakeDown(AlignedAudio& audio, AlignInfo& info) {
  // One phoneme less than there is room for: a zero byte follows the last one.
  if (!Fits(audio.GetNumOfPhonemes(), kAlignInfoPhonemes - 1, "phonemes") ||
      !Fits(audio.GetNumOfSyllables(), kAlignInfoSyllables, "syllables") ||
      !Fits(audio.GetNumOfWords(), kAlignInfoWords, "words")) {
    return -1;
  }
  AlignInfo taken;
  taken.num_samples = audio.GetNumOfSamples();
  taken.num_phonemes = static_cast<std::int16_t>(audio.GetNumOfPhonemes());
  taken.num_syllables = static_cast<std::int16_t>(audio.GetNumOfSyllables());
  taken.num_words = static_cast<std::int16_t>(audio.GetNumOfWords());
  taken.num_pitch_segments = static_cast<std::int16_t>(audio.GetUttNumOfPitchSegments());
  TakeDownPhonemes(audio, taken);
  TakeDownSyllables(audio, taken);
  for (int w = 0; w < taken.num_words; ++w) {
    taken.word_start[Index(w)] = static_cast<std::int16_t>(audio.GetWordStartPosition(w));
  }
  TakeDownContours(audio, taken);
  info = taken;
  return 0;
}

}  // namespace veral3
