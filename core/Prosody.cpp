#include "core/Prosody.h"

#include <utility>

#include "core/SyllablePitch.h"
#include "core/SyllableSpans.h"
#include "core/Timing.h"

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
  if (language == kLanguageChinese) {
    measures.tones = ClassifyTones(pitch, spans, measures.segments, AveragePitch(measures.syllable),
                                   measures.average_syllable_length, scorer);
  } else {
    measures.tones.assign(spans.size(), ToneProbabilities{});
  }
  return measures;
}

ProsodyResult AnalyzeProsody(LanguageType language, const AlignmentResult& alignment,
                             std::span<const std::int16_t> samples,
                             std::vector<std::int32_t> frame_pitch, const ToneScorer& scorer,
                             double previous_ratio) {
  ProsodyResult result;
  result.pitch = MeasurePitch(language, alignment, std::move(frame_pitch), scorer);
  result.words = FindWordSpans(
      std::span(alignment.syllable_start)
          .first(static_cast<std::size_t>(CountSyllables(alignment))),
      std::span(alignment.word_start).first(static_cast<std::size_t>(CountWords(alignment))));
  result.syllable_duration = SyllableDurations(alignment);
  result.intensity = MeasureIntensity(alignment, samples, previous_ratio);

  const std::span<const std::int32_t> pitch(result.pitch.frame);
  const std::span<const double> intensity(result.intensity.frame);
  const bool has_speech = CountPhonemes(alignment) > 0;
  result.utterance_pitch_segments = CountUtterancePitchSegments(
      has_speech ? pitch : pitch.first(0), intensity, result.intensity.background);
  if (has_speech) {
    const int start = UtteranceStart(alignment);
    const int end = UtteranceEnd(alignment);
    result.pitch_contour = PitchContour(pitch, start, end);
    result.intensity_contour = IntensityContour(intensity, start, end);
  }
  return result;
}

}  // namespace veral3
