#include "core/BadSyllables.h"

#include "common/MessageWriter.h"
#include "core/FrameSpan.h"
#include "core/SyllableSpans.h"

namespace veral3 {
namespace {

struct Bounds {
  double pause = 0.0;      // probability of a pause that is one
  double convexity = 0.0;  // of a syllable in one piece
};
constexpr double kMaxSegments = 2.0;

Bounds BoundsOf(LanguageType language) {
  switch (language) {
    case kLanguageEnglish:
      return {0.084536, 0.0};
    case kLanguageChinese:
      return {0.146601, 0.0};
    case kLanguageJapanese:
      return {0.181094, 20184000000.0};
  }
  Message(MessageStream::kError)
      << "Error in GradedAudio::MarkBadSyllables(), unknown LanguageType.\n";
  return {};
}

}  // namespace

std::vector<double> SyllableGoodness(LanguageType language, const AlignmentResult& alignment,
                                     std::span<const std::int32_t> loud_gaps,
                                     std::span<const double> convexity,
                                     std::span<const PitchSegmentCounts> segments) {
  const Bounds bounds = BoundsOf(language);
  const std::span<const double> pause_prob(alignment.pause_mfcc_prob);
  std::vector<double> goodness;
  const int count = CountSyllables(alignment);
  goodness.reserve(static_cast<std::size_t>(count));
  for (int s = 0; s < count; ++s) {
    double good = 1.0;
    const double pause = ReadOr(pause_prob, SyllablePhonemes(alignment, s).first, 1.0);
    if (pause < bounds.pause && ReadOr(loud_gaps, s) > 0) good *= pause / bounds.pause;
    const double n = ReadOr(segments, s).segments;
    if (ReadOr(convexity, s) > bounds.convexity && n > kMaxSegments) {
      good *= (kMaxSegments + 1.0) / (n + 1.0);
    }
    goodness.push_back(good);
  }
  return goodness;
}

std::vector<double> SyllableGoodnessPronunOnly(LanguageType language,
                                               const AlignmentResult& alignment,
                                               std::span<const std::int32_t> loud_gaps) {
  return SyllableGoodness(language, alignment, loud_gaps, {}, {});
}

}  // namespace veral3
