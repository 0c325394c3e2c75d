#include "core/WordSpans.h"

#include "core/FrameSpan.h"
#include "core/SyllablePitch.h"

namespace veral3 {

WordSpans FindWordSpans(std::span<const std::int32_t> syllable_start,
                        std::span<const std::int32_t> word_start) {
  WordSpans spans;
  spans.first_syllable.reserve(word_start.size());
  std::size_t syllable = 0;
  for (const std::int32_t start : word_start) {
    while (syllable < syllable_start.size() && syllable_start[syllable] < start) ++syllable;
    spans.first_syllable.push_back(static_cast<std::int32_t>(syllable));
  }
  spans.num_syllables.reserve(word_start.size());
  for (std::size_t word = 0; word < word_start.size(); ++word) {
    const std::int32_t end = word + 1 < word_start.size()
                                 ? spans.first_syllable[word + 1]
                                 : static_cast<std::int32_t>(syllable_start.size());
    spans.num_syllables.push_back(end - spans.first_syllable[word]);
  }
  return spans;
}

int WordPitch(const WordSpans& spans, std::span<const std::int32_t> syllable_pitch, int word) {
  const int first = ReadOr(std::span<const std::int32_t>(spans.first_syllable), word);
  const int count = ReadOr(std::span<const std::int32_t>(spans.num_syllables), word);
  if (count <= 0) return 0;
  return AveragePitch(Slice(syllable_pitch, {first, ToInt(std::int64_t{first} + count)}));
}

}  // namespace veral3
