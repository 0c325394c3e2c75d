#include "core/Prosody.h"

#include <utility>

#include "core/SyllablePitch.h"
#include "core/SyllableSpans.h"
#include "recognition/Languages.h"

namespace veral3 {

PitchMeasures MeasurePitch(LanguageType language, const AlignmentResult& alignment,
                           std::vector<std::int32_t> frame_pitch, const ToneScorer& scorer) {
  PitchMeasures measures;
  measures.frame = std::move(frame_pitch);
  const std::span<const std::int32_t> pitch(measures.frame);
  const std::vector<FrameSpan> spans = SyllableSpans(alignment);
  for (const FrameSpan span : spans) {
    measures.syllable.push_back(HighestPitch(pitch, span));
    measures.segments.push_back(CountPitchSegments(language, Slice(pitch, span)));
  }
  measures.average_syllable_length = AverageLength(spans);
  if (HasTones(language)) {
    measures.tones = ClassifyTones(pitch, spans, measures.segments, AveragePitch(measures.syllable),
                                   measures.average_syllable_length, scorer);
  } else {
    measures.tones.assign(spans.size(), ToneProbabilities{});
  }
  return measures;
}

WordSpans WordSpansOf(const AlignmentResult& alignment) {
  return FindWordSpans(
      std::span(alignment.syllable_start)
          .first(static_cast<std::size_t>(CountSyllables(alignment))),
      std::span(alignment.word_start).first(static_cast<std::size_t>(CountWords(alignment))));
}

int CountUtterancePitchSegments(const AlignmentResult& alignment, const ProsodyResult& prosody) {
  std::span<const std::int32_t> pitch(prosody.pitch.frame);
  if (CountPhonemes(alignment) == 0) pitch = {};
  return CountUtterancePitchSegments(pitch, prosody.intensity.frame, prosody.intensity.background);
}

void DrawContours(const AlignmentResult& alignment, ProsodyResult& prosody) {
  prosody.pitch_contour = {};
  prosody.intensity_contour = {};
  if (CountPhonemes(alignment) == 0) return;
  const int start = UtteranceStart(alignment);
  const int end = UtteranceEnd(alignment);
  prosody.pitch_contour = PitchContour(prosody.pitch.frame, start, end);
  prosody.intensity_contour = IntensityContour(prosody.intensity.frame, start, end);
}

}  // namespace veral3
