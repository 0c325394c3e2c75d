#include "core/SyllableSpans.h"

#include <algorithm>
#include <span>

namespace veral3 {

int CountPhonemes(const AlignmentResult& alignment) {
  return static_cast<int>(std::min<std::size_t>(alignment.phonemes.size(), kMaxPhonemes));
}

int CountSyllables(const AlignmentResult& alignment) {
  return std::clamp(alignment.num_syllables, 0, kMaxSyllables);
}

int CountWords(const AlignmentResult& alignment) {
  return std::clamp(alignment.num_words, 0, kMaxWords);
}

int PhonemeStart(const AlignmentResult& alignment, int phoneme) {
  if (phoneme >= CountPhonemes(alignment)) return 0;
  return ReadOr(std::span<const std::int32_t>(alignment.phoneme_start), phoneme);
}

int PhonemeEnd(const AlignmentResult& alignment, int phoneme) {
  if (phoneme >= CountPhonemes(alignment)) return 0;
  return ReadOr(std::span<const std::int32_t>(alignment.phoneme_end), phoneme);
}

int UtteranceStart(const AlignmentResult& alignment) { return PhonemeStart(alignment, 0); }

int UtteranceEnd(const AlignmentResult& alignment) {
  return PhonemeEnd(alignment, CountPhonemes(alignment) - 1);
}

PhonemeRange SyllablePhonemes(const AlignmentResult& alignment, int syllable) {
  const int count = CountSyllables(alignment);
  if (syllable < 0 || syllable >= count) return {};
  const std::span<const std::int32_t> starts(alignment.syllable_start);
  const int next = syllable + 1 < count ? ReadOr(starts, syllable + 1) : CountPhonemes(alignment);
  return {ReadOr(starts, syllable), ToInt(std::int64_t{next} - 1)};
}

FrameSpan FramesOfPhonemes(const AlignmentResult& alignment, PhonemeRange range) {
  return {FrameOfSample(PhonemeStart(alignment, range.first)),
          FrameOfSample(PhonemeEnd(alignment, range.last))};
}

std::vector<FrameSpan> SyllableSpans(const AlignmentResult& alignment) {
  std::vector<FrameSpan> spans;
  const int count = CountSyllables(alignment);
  spans.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    spans.push_back(FramesOfPhonemes(alignment, SyllablePhonemes(alignment, i)));
  }
  return spans;
}

}  // namespace veral3
