#include "core/TrainingExports.h"

#include <array>
#include <span>
#include <vector>

#include "common/MessageWriter.h"
#include "common/TextLines.h"
#include "core/FrameSpan.h"
#include "core/PhonemeDistributions.h"
#include "core/SyllablePitch.h"
#include "core/SyllableSpans.h"
#include "core/Tones.h"

namespace veral3 {
namespace {

constexpr int kSecondTone = 2;
constexpr int kThirdTone = 3;

template <typename Values>
void Line(TextLines& lines, const Values& values, const char* separator) {
  const char* before = "";
  for (const auto& value : values) {
    lines << before << value;
    before = separator;
  }
  lines.End();
}

// `count` columns, "1" in the place `index` if there is such a place.
void LabelLine(TextLines& lines, int count, int index) {
  for (int i = 0; i < count; ++i) lines << (i > 0 ? "," : "") << (i == index ? '1' : '0');
  lines.End();
}

int MarkOf(const AlignmentResult& alignment, int syllable) {
  if (syllable >= CountSyllables(alignment)) return 0;
  return ReadOr(std::span<const std::int32_t>(alignment.syllable_mark), syllable);
}

bool IsThird(const AlignmentResult& alignment, int syllable) {
  return MarkOf(alignment, syllable) == kThirdTone;
}

}  // namespace

void WriteGoodnessExample(const GoodnessFeatures& features, bool good, std::ostream& feature_lines,
                          std::ostream& label_lines) {
  TextLines feature_writer(feature_lines);
  Line(feature_writer, features, ",");
  TextLines label_writer(label_lines);
  label_writer << (good ? "1.0, 0.0" : "0.0, 1.0");
  label_writer.End();
}

void WriteToneExamples(const AlignmentResult& alignment, const PitchMeasures& pitch,
                       std::ostream& feature_lines, std::ostream& label_lines) {
  TextLines features(feature_lines);
  TextLines labels(label_lines);
  const std::vector<FrameSpan> spans = SyllableSpans(alignment);
  const int average_pitch = AveragePitch(pitch.syllable);
  const int count = static_cast<int>(spans.size());
  for (int i = 0; i < count; ++i) {
    const bool before_third = IsThird(alignment, i) && IsThird(alignment, i + 1);
    if (before_third && IsThird(alignment, i + 2)) {
      Message(MessageStream::kError)
          << "// Skipping syllables[" << i + 1 << "]: Triple 3rd tones!\n";
      ++i;  // two of the three
      continue;
    }
    Line(features,
         ToneFeaturesOf(pitch.frame, spans, average_pitch, pitch.average_syllable_length, i), ", ");
    LabelLine(labels, kToneClassCount, before_third ? kSecondTone : MarkOf(alignment, i));
  }
}

void WritePhonemeExamples(const CPhonemeSet& set, const AlignmentResult& alignment,
                          std::ostream& feature_lines, std::ostream& label_lines) {
  TextLines features(feature_lines);
  TextLines labels(label_lines);
  std::array<float, kPhonemeInputSize> input;
  for (int i = 0; i < CountPhonemes(alignment); ++i) {
    AssemblePhonemeInput(alignment.mfcc, FramesOfPhonemes(alignment, {i, i}), input);
    Line(features, input, ",");
    LabelLine(labels, set.GetSize(),
              set.GetPhonemeIndex(alignment.phonemes[static_cast<std::size_t>(i)]));
  }
}

void WriteSyllableTraits(const AlignmentResult& alignment, const ProsodyResult& prosody,
                         std::ostream& lines) {
  TextLines out(lines);
  const int count = CountSyllables(alignment);
  for (int i = 0; i < count; ++i) {
    const PitchSegmentCounts pitch =
        ReadOr(std::span<const PitchSegmentCounts>(prosody.pitch.segments), i);
    out << ReadOr(std::span<const double>(prosody.intensity.convexity), i) << "," << pitch.segments
        << "," << pitch.gap_total << "," << pitch.voiced_frames << ","
        << (i == count - 1 ? "1" : "0");
    out.End();
  }
}

void WritePhonemeTraits(const AlignmentResult& alignment, std::ostream& lines) {
  TextLines out(lines);
  for (int i = 0; i < CountPhonemes(alignment); ++i) {
    const std::int64_t length = std::int64_t{PhonemeEnd(alignment, i)} - PhonemeStart(alignment, i);
    out << i << "," << alignment.phonemes[static_cast<std::size_t>(i)] << "," << length << ","
        << ReadOr(std::span<const double>(alignment.phoneme_mfcc_prob), i);
    out.End();
  }
}

void WritePauseTraits(const AlignmentResult& alignment, const GoodnessResult& goodness,
                      std::ostream& lines) {
  TextLines out(lines);
  for (int i = 1; i < CountSyllables(alignment); ++i) {
    const int gap = ReadOr(std::span<const std::int32_t>(alignment.syllable_start), i);
    out << i << "," << ReadOr(std::span<const std::int32_t>(goodness.loud_gaps), i) << ","
        << ReadOr(std::span<const double>(alignment.pause_mfcc_prob), gap);
    out.End();
  }
}

}  // namespace veral3
