#include "storage/AnnotatedAudio.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "common/Guarded.h"
#include "common/MessageWriter.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/FrameScores.h"
#include "signal/CWaveFrameDef.h"
#include "signal/Mfcc.h"
#include "storage/FrameSegments.h"

namespace veral3 {

struct Annotation {
  std::string phonemes;
  std::vector<FrameSegment> segments;
};

namespace {

const CPhonemeSet& SetOf(LanguageType language) {
  if (const CPhonemeSet* const set = PhonemeSetOf(language)) return *set;
  // The message names the analysis, whose constructor says the same.
  Message(MessageStream::kError)
      << "Error in AnalyzedAudio::AnalyzedAudio(), unknown Language Type\n";
  return *PhonemeSetOf(kLanguageEnglish);
}

const FrameSegment* SegmentAt(const Annotation* annotation, int i) {
  if (!annotation || i < 0) return nullptr;
  const std::size_t index = std::min(static_cast<std::size_t>(i), kMaxFrameSegments - 1);
  return index < annotation->segments.size() ? &annotation->segments[index] : nullptr;
}

}  // namespace
}  // namespace veral3

int AnnotatedAudio::LoadAndAnnotate(unsigned long num_samples, const std::int16_t* samples,
                                    LanguageType language) {
  constexpr const char* kOperation = "LoadAndAnnotate";
  m_annotation = nullptr;
  return veral3::Guarded("AnnotatedAudio", kOperation, [&] {
    const CPhonemeSet& set = veral3::SetOf(language);
    if (num_samples > static_cast<unsigned long>(std::numeric_limits<int>::max())) {
      veral3::ReportError("AnnotatedAudio", kOperation, "too many samples");
      return -1;
    }
    if (!samples && num_samples > 0) {
      veral3::ReportError("AnnotatedAudio", kOperation, "no samples");
      return -1;
    }
    const std::vector<float> mfcc =
        veral3::ComputeMfcc(samples, static_cast<std::uint32_t>(num_samples));
    const auto rows =
        static_cast<std::size_t>(veral3::NumFrames(static_cast<std::uint32_t>(num_samples)));
    if (mfcc.size() != rows * veral3::kMfccSize) return -1;  // the front end has said why
    std::string labels;
    labels.reserve(rows);
    const int scored =
        veral3::VisitFrameScores(set, mfcc, [&](std::size_t, std::span<const double> scores) {
          veral3::AppendFrameLabels(set, scores, labels);
        });
    if (scored < 0) return -1;
    auto annotation = std::make_shared<veral3::Annotation>();
    annotation->segments = veral3::SegmentsOf(labels, static_cast<int>(num_samples));
    for (const veral3::FrameSegment& segment : annotation->segments) {
      annotation->phonemes += segment.phoneme;
    }
    m_annotation = std::move(annotation);
    return 0;
  });
}

char* AnnotatedAudio::GetPhonemes() {
  return m_annotation ? m_annotation->phonemes.data() : m_no_phonemes;
}

const char* AnnotatedAudio::GetPhonemes() const {
  return m_annotation ? m_annotation->phonemes.c_str() : m_no_phonemes;
}

int AnnotatedAudio::GetNumOfPhonemes() const {
  return m_annotation ? static_cast<int>(m_annotation->phonemes.size()) : 0;
}

int AnnotatedAudio::GetPhonemeStartSample(int i) const {
  const veral3::FrameSegment* const segment = veral3::SegmentAt(m_annotation.get(), i);
  return segment ? segment->start : 0;
}

int AnnotatedAudio::GetPhonemeEndSample(int i) const {
  const veral3::FrameSegment* const segment = veral3::SegmentAt(m_annotation.get(), i);
  return segment ? segment->end : 0;
}
