#include "core/Timing.h"

#include "core/SyllableSpans.h"

namespace veral3 {

std::vector<std::int32_t> SyllableDurations(const AlignmentResult& alignment) {
  std::vector<std::int32_t> durations;
  const int count = CountSyllables(alignment);
  durations.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const PhonemeRange phonemes = SyllablePhonemes(alignment, i);
    durations.push_back(ToInt(std::int64_t{PhonemeEnd(alignment, phonemes.last)} -
                              PhonemeStart(alignment, phonemes.first)));
  }
  return durations;
}

}  // namespace veral3
