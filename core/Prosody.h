#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "common/LanguageType.h"
#include "core/Contours.h"
#include "core/Intensity.h"
#include "core/PitchSegments.h"
#include "core/Tones.h"
#include "core/WordSpans.h"
#include "recognition/AlignmentResult.h"

// Melody, loudness and timing of an aligned recording.
namespace veral3 {

struct PitchMeasures {
  std::vector<std::int32_t> frame;           // [Hz] one a frame, 0 unvoiced
  std::vector<std::int32_t> syllable;        // [Hz] highest of each syllable, 0 unvoiced
  std::vector<PitchSegmentCounts> segments;  // of each syllable
  int average_syllable_length = 0;           // [frames]
  std::vector<ToneProbabilities> tones;      // of each syllable, 0 but in Chinese
};

// Everything is empty or 0 until a step has made it. Each array has as many entries as the
// alignment that it was made from had frames, syllables or words; readers check their indices
// against the array and not against those counts.
struct ProsodyResult {
  PitchMeasures pitch;
  WordSpans words;
  std::vector<std::int32_t> syllable_duration;  // [samples]
  IntensityMeasures intensity;
  int utterance_pitch_segments = 0;
  Contour pitch_contour{};
  Contour intensity_contour{};
};

// The syllable measures of a pitch track (`frame_pitch`, one value a frame of the alignment), with
// the tones in Chinese.
PitchMeasures MeasurePitch(LanguageType language, const AlignmentResult& alignment,
                           std::vector<std::int32_t> frame_pitch, const ToneScorer& scorer);

// The syllables of each word.
WordSpans WordSpansOf(const AlignmentResult& alignment);

// Pitch segments of the whole recording, out of its pitch and intensity. A count of 0, as every
// recording without phonemes has it, is reported.
int CountUtterancePitchSegments(const AlignmentResult& alignment, const ProsodyResult& prosody);

// Sets both contours from the pitch and the intensity; all 0 without phonemes.
void DrawContours(const AlignmentResult& alignment, ProsodyResult& prosody);

}  // namespace veral3
